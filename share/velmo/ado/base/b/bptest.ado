*! version 1.0.0  22nov2026
* bptest: after regress, whether the variance of the residuals goes with the regressors (Breusch and Pagan 1979,
* studentised after Koenker 1981), or with their squares and products too (White 1980)
program define bptest, rclass
	version 7.0
	syntax [, White]
	_lastregress ols
	if "`regressors'" == "" {
		error 102
	}
	if "`e(wtype)'" != "" & "`e(wtype)'" != "fweight" {
		error 135
	}
	tempvar touse e
	tempname keep chi2
	quietly {
		generate byte `touse' = e(sample)
		_predict double `e' if `touse', residuals
		replace `e' = `e'^2
	}
	local terms `regressors'
	if "`white'" != "" {
		local k : word count `regressors'
		forvalues i = 1/`k' {
			forvalues j = 1/`i' {
				tempvar product
				local x : word `i' of `regressors'
				local z : word `j' of `regressors'
				quietly generate double `product' = `x'*`z' if `touse'
				local terms `terms' `product'
			}
		}
	}
	estimates hold `keep', restore
	quietly regress `e' `terms' `weight' if `touse'
	local df = e(df_m)
	scalar `chi2' = e(N)*e(r2)
	display as text _newline cond("`white'" == "", "Breusch-Pagan", "White") " test of equal variances of the residuals"
	display as text "    chi2(" as result `df' as text ")" _column(19) "= " as result %9.2f `chi2'
	display as text "    Prob > chi2   = " as result %9.4f chiprob(`df', `chi2')
	return scalar p = chiprob(`df', `chi2')
	return scalar df = `df'
	return scalar chi2 = `chi2'
end
