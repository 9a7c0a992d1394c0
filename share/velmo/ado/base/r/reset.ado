*! version 1.0.0  22nov2026
* reset: after regress, whether powers of the fitted values add to the fit (Ramsey 1969)
program define reset, rclass
	version 7.0
	syntax [, POWers(numlist integer >1 <=9)]
	_lastregress ols
	if "`powers'" == "" {
		local powers 2 3 4
	}
	if "`regressors'" == "" {
		error 102
	}
	if "`e(clustvar)'" != "" {
		local options cluster(`e(clustvar)')
	}
	else if "`e(vcetype)'" != "" {
		local options = cond("`e(vcetype)'" == "Robust", "robust", lower(substr("`e(vcetype)'", 8, .)))
	}
	tempvar touse fit
	tempname keep scale middle
	quietly {
		generate byte `touse' = e(sample)
		_predict double `fit' if `touse', xb
		summarize `fit' if `touse', meanonly
	}
	scalar `middle' = 0
	if "`constant'" == "" & index("2 3 4 5 6 7 8 9", "`powers'") == 1 {
		* then powers about the middle span the same, and are less collinear
		scalar `middle' = (r(min)+r(max))/2
	}
	scalar `scale' = max(abs(r(min)-`middle'), abs(r(max)-`middle'))
	foreach p of local powers {
		tempvar power
		quietly generate double `power' = ((`fit'-`middle')/`scale')^`p'
		local terms `terms' `power'
	}
	estimates hold `keep', restore
	quietly regress `depvar' `regressors' `terms' `weight' if `touse', `constant' `options'
	quietly test `terms'
	return add
	display as text _newline "RESET test: powers `powers' of the fitted values add nothing"
	display as text "    F(" as result r(df) as text ", " as result r(df_r) as text ")" _column(19) "= " /*
		*/ as result %9.2f r(F)
	display as text "    Prob > F" _column(19) "= " as result %9.4f r(p)
end
