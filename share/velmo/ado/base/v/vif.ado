*! version 1.0.0  22nov2026
* vif: after regress, by how much the other regressors inflate the variance of each coefficient
program define vif, rclass
	version 7.0
	syntax
	_lastregress ols
	if "`regressors'" == "" {
		error 102
	}
	local about = cond("`constant'" == "", "deviations", "")
	tempvar touse
	tempname A mean
	quietly generate byte `touse' = e(sample)
	quietly matrix accum `A' = `regressors' `weight' if `touse', noconstant `about'
	matrix `A' = corr(`A')
	matrix `A' = syminv(`A')
	scalar `mean' = 0
	local k : word count `regressors'
	display
	display as text "    Variable {c |}       VIF       1/VIF"
	display as text "{hline 13}{c +}{hline 22}"
	forvalues i = 1/`k' {
		local x : word `i' of `regressors'
		display as text %12s abbrev("`x'",12) " {c |}" as result %10.2f `A'[`i',`i'] "  " %10.6f 1/`A'[`i',`i']
		return scalar vif_`i' = `A'[`i',`i']
		scalar `mean' = `mean'+`A'[`i',`i']/`k'
	}
	display as text "{hline 13}{c +}{hline 22}"
	display as text "    Mean VIF {c |}" as result %10.2f `mean'
	return scalar mean = `mean'
end
