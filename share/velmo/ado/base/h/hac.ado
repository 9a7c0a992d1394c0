*! version 1.0.0  22nov2026
* hac: least squares with variances that hold for residuals correlated over time (Newey and West 1987)
program define hac, eclass byable(recall) sortpreserve
	version 7.0
	gettoken first : 0, parse(" ,")
	if _local(first) == "" | _local(first) == "," {
		if _by() {
			error 190
		}
		if "`e(cmd)'" != "hac" {
			error 301
		}
		syntax [, Level(integer -1)]
		_level `level'
		Show `level'
		exit
	}
	_tsorder
	syntax varlist(numeric ts) [aweight pweight] [if] [in], LAGs(integer) [Level(integer -1) noCONstant]
	_level `level'
	if `lags' < 0 {
		display as error "lags() must not be negative"
		exit 198
	}
	marksample touse
	quietly count if `touse'
	if r(N) == 0 {
		error 2000
	}
	* what fails from here on leaves the earlier estimates
	tempname D M V earlier
	capture estimates hold `earlier', restore
	error _rc == 1
	if "`weight'" != "" {
		tempvar w
		quietly generate double `w' `exp' if `touse'
		local weights [aweight = `w']
	}
	gettoken depvar regressors : varlist
	quietly regress `varlist' `weights' if `touse', mse1 `constant'
	matrix `D' = e(V)
	quietly regress `varlist' `weights' if `touse', `constant'
	quietly replace `touse' = e(sample)
	Middle `M' `touse' `lags' "`time'" "`panel'" `w'
	local k = colsof(`D')
	matrix `V' = `D'*`M'*`D'*(e(N)/(e(N)-e(df_m)-("`constant'" == "")))
	matrix `V' = (`V'+`V'')/2
	Post `V' `touse' `lags' "`weight'" `"`exp'"'
	capture estimates drop `earlier'
	error _rc == 1
	if "`weight'" != "" {
		quietly summarize `w' if e(sample), meanonly
		display as text "(sum of wgt is " %12.4e r(sum) ")"
	}
	Show `level'
end

* The sum of products of scores, of neighbours in time with weights that fall with the distance. A chain of neighbours
* ends where an observation is missing.
program define Middle
	args M touse lags time panel w
	tempname b H G
	tempvar u run
	matrix `b' = e(b)
	local names : colnames `b'
	local k = colsof(`b')
	quietly {
		_predict double `u' if `touse', residuals
		if "`w'" != "" {
			summarize `w' if `touse', meanonly
			replace `u' = `u'*`w'/r(mean)
		}
		local follows "`time' == `time'[_n-1]+1"
		if "`panel'" != "" {
			local follows "`follows' & `panel' == `panel'[_n-1]"
		}
		generate long `run' = 0
		replace `run' = cond(_n > 1 & `follows', `run'[_n-1], 0)+1 if `touse'
		foreach x of local names {
			tempvar h g
			local term = cond("`x'" == "_cons", "1", "`x'")
			generate double `h' = `u'*`term' if `touse'
			generate double `g' = .
			local now `now' `h'
			local then `then' `g'
		}
		matrix accum `M' = `now' if `touse', noconstant
		summarize `run', meanonly
		local reach = min(`lags', r(max)-1)
		forvalues l = 1/`reach' {
			forvalues i = 1/`k' {
				replace `: word `i' of `then'' = `: word `i' of `now''[_n-`l']
			}
			matrix accum `H' = `now' `then' if `touse' & `run' > `l', noconstant
			matrix `G' = `H'[1..`k',`k'+1...]
			matrix `M' = `M'+(`G'+`G'')*(1-`l'/(`lags'+1))
		}
	}
	matrix rownames `M' = `names'
	matrix colnames `M' = `names'
end

* What regress left becomes the estimates anew, with the other variances.
program define Post, eclass
	args V touse lags kind exp
	tempname b
	matrix `b' = e(b)
	local names : colnames `b'
	matrix rownames `V' = `names'
	matrix colnames `V' = `names'
	foreach s in N df_m df_r r2 rmse mss rss r2_a ll ll_0 {
		tempname `s'
		scalar ``s'' = e(`s')
	}
	local depvar `e(depvar)'
	local n = e(N)
	local df = e(df_r)
	estimates post `b' `V', depname(`depvar') obs(`n') dof(`df') esample(`touse')
	foreach s in N df_m df_r r2 rmse mss rss r2_a ll ll_0 {
		if ``s'' < . | index("N df_m df_r r2 r2_a", "`s'") {
			estimates scalar `s' = ``s''
		}
	}
	estimates scalar lags = `lags'
	estimates scalar F = cond(`df_m' > 0, ., 0)
	local tested : subinstr local names "_cons" "", word
	if "`tested'" != "" {
		quietly test `tested'
		estimates scalar F = r(F)
	}
	if "`kind'" != "" {
		estimates local wtype `kind'
		estimates local wexp : local exp
	}
	estimates local depvar `depvar'
	estimates local model ols
	estimates local vcetype HAC
	estimates local predict regres_p
	estimates local cmd hac
end

program define Show
	args level
	display
	display as text "Regression with HAC standard errors" _column(56) "Number of obs =" /*
		*/ as result %8.0f e(N)
	display as text _column(56) "F(" %3.0f e(df_m) "," %6.0f e(df_r) ") =" as result %8.2f e(F)
	display as text _column(56) "Prob > F      = " as result %7.4f fprob(e(df_m), e(df_r), e(F))
	display as text _column(56) "R-squared     = " as result %7.4f e(r2)
	display as text "Maximum lag = " as result e(lags) as text _column(56) "Root MSE      = " as result %7.2g e(rmse) _newline
	estimates display, level(`level')
end
