*! version 1.0.0  22nov2026
* effects: marginal effects on the probability after logit and probit, with errors by the delta method
program define effects, rclass
	version 7.0
	syntax [varlist(default=none ts)] [, AT(string) DUMmies Level(integer -1)]
	_level `level'
	if "`e(predict)'" != "logit_p" & "`e(predict)'" != "probit_p" {
		error 301
	}
	if "`at'" == "" {
		local at average
	}
	if "`at'" != "average" & "`at'" != "mean" {
		display as error "at() is mean or average"
		exit 198
	}
	tempname b V B J M norm
	tempvar xb use
	matrix `b' = get(_b)
	matrix `V' = get(VCE)
	local names : colnames `b'
	local names : subinstr local names "_cons" "", word
	if "`varlist'" == "" {
		local varlist `names'
	}
	foreach x of local varlist {
		if index(" `names' ", " `x' ") == 0 {
			display as error "`x' has no coefficient"
			exit 111
		}
	}
	if "`varlist'" == "" {
		error 102
	}
	quietly generate byte `use' = e(sample)
	quietly _predict double `xb' if `use', xb
	local w
	if "`e(wtype)'" != "" {
		local w [`=cond("`e(wtype)'" == "fweight", "fweight", "aweight")' `e(wexp)']
	}
	quietly matrix vecaccum `M' = `use' `names' `w' if `use'
	local n = r(N)
	scalar `norm' = `M'[1,"_cons"]
	matrix `M' = `M'/`norm'
	local k : word count `varlist'
	matrix `B' = J(1,`k',0)
	matrix `J' = J(`k',colsof(`b'),0)
	if "`at'" == "mean" {
		quietly summarize `xb' `w' if `use'
		quietly replace `xb' = r(mean)
	}
	local i 0
	foreach x of local varlist {
		local i = `i' + 1
		local j = colnumb(`b', "`x'")
		local dummy 0
		if "`dummies'" != "" {
			quietly count if `use' & `x' != 0 & `x' != 1
			local dummy = r(N) == 0
		}
		quietly Effect `B' `J' `i' `j' `b' `xb' `use' `norm' `dummy' "`w'" /*
			*/ `=cond("`at'" == "mean", `M'[1,`j'], .)' `x' `names'
	}
	matrix colnames `B' = `varlist'
	matrix `J' = `J'*`V'*`J''
	matrix rownames `J' = `varlist'
	matrix colnames `J' = `varlist'
	display
	display as text "Marginal effects after `e(cmd)', " cond("`at'" == "mean", "at the means", "averaged") _continue
	display as text _col(56) "Number of obs = " as result %7.0f `n'
	display
	_coefrow head "dF/dx" `level'
	local i 0
	foreach x of local varlist {
		local i = `i' + 1
		_coefrow row `x' `B'[1,`i'] sqrt(`J'[`i',`i']) `level'
	}
	_coefrow foot
	return scalar N = `n'
	matrix rename `B' return(b)
	matrix rename `J' return(V)
end

* One effect into B, and its derivatives by the coefficients into a row of J. xbar is the mean that stands for x, or
* missing. The derivative of the density and the step of a dummy go by the same sums, of g times the regressors.
program define Effect
	args B J i j b xb use norm dummy w xbar x
	macro shift 12
	local names `*'
	tempvar low high g
	tempname row f
	generate double `low' = `xb' - `dummy'*`b'[1,`j']*cond(`xbar' < ., `xbar', `x') if `use'
	generate double `high' = `low' + `dummy'*`b'[1,`j'] if `use'
	local logit = "`e(predict)'" == "logit_p"
	local fhigh = cond(`logit', "1/(2+exp(`high')+exp(-`high'))", "normd(`high')")
	generate double `g' = `fhigh'
	matrix vecaccum `row' = `g' `names' `w' if `use'
	scalar `f' = `row'[1,"_cons"]/`norm'
	if `dummy' {
		local flow = cond(`logit', "1/(2+exp(`low')+exp(-`low'))", "normd(`low')")
		local F = cond(`logit', "1/(1+exp(-`high'))-1/(1+exp(-`low'))", "norm(`high')-norm(`low')")
		replace `g' = `F'
		matrix vecaccum `row' = `g' `names' `w' if `use'
		matrix `B'[1,`i'] = `row'[1,"_cons"]/`norm'
		replace `g' = `fhigh'-`flow'
	}
	else {
		matrix `B'[1,`i'] = `f'*`b'[1,`j']
		replace `g' = `b'[1,`j']*`g'*cond(`logit', 1-2/(1+exp(-`high')), -`high')
	}
	matrix vecaccum `row' = `g' `names' `w' if `use'
	matrix `row' = `row'/`norm'
	local k = colsof(`b')
	forvalues c = 1/`k' {
		matrix `J'[`i',`c'] = `row'[1,`c']
	}
	matrix `J'[`i',`j'] = cond(`dummy', 0, `J'[`i',`j']) + `f'
end
