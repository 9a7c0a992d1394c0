*! version 1.0.0  22nov2026
* corrmatrix: correlate, and its numbers as matrices
program define corrmatrix, rclass byable(recall)
	version 7.0
	syntax varlist(numeric ts) [aweight fweight] [if] [in] [, Covariance]
	marksample touse
	correlate `varlist' [`weight'`exp'] if `touse', `covariance'
	tempname C M S
	quietly matrix accum `C' = `varlist' [`weight'`exp'] if `touse', deviations noconstant means(`M')
	local n = r(N)
	local k = colsof(`C')
	matrix `C' = `C'/(`n'-1)
	matrix `M' = `M'[1,1..`k']'
	matrix `S' = `M'
	forvalues i = 1/`k' {
		matrix `S'[`i',1] = sqrt(`C'[`i',`i'])
	}
	matrix colnames `M' = mean
	matrix colnames `S' = sd
	if "`covariance'" == "" {
		matrix `C' = corr(`C')
	}
	return scalar N = `n'
	foreach m in means sds C {
		local from = cond("`m'" == "means", "M", cond("`m'" == "sds", "S", "C"))
		matrix rename ``from'' return(`m')
	}
end
