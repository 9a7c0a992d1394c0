*! version 1.0.0  22nov2026
* ivtest: after regress with instruments, how well they predict each regressor that isn't one (F of the first stage),
* and whether there are too many of them for the model to hold (Sargan 1958)
program define ivtest, rclass
	version 7.0
	syntax
	_lastregress iv
	local instruments `e(instruments)'
	foreach x of local regressors {
		if index(" `instruments' ", " `x' ") {
			local plain `plain' `x'
		}
		else {
			local predicted `predicted' `x'
		}
	}
	if "`predicted'" == "" {
		error 102
	}
	foreach z of local instruments {
		if index(" `plain' ", " `z' ") == 0 {
			local others `others' `z'
		}
	}
	tempvar touse e
	tempname keep s
	quietly generate byte `touse' = e(sample)
	quietly _predict double `e' if `touse', residuals
	estimates hold `keep', restore
	display
	display as text "First stage  {c |}         F       df     df_r   Prob > F"
	display as text "{hline 13}{c +}{hline 38}"
	local i 0
	foreach x of local predicted {
		quietly regress `x' `plain' `others' `weight' if `touse', `constant'
		quietly test `others'
		local i = `i'+1
		display as text %12s abbrev("`x'",12) " {c |}" as result %10.2f r(F) %9.0g r(df) %9.0g r(df_r) %11.4f r(p)
		return scalar F_`i' = r(F)
		if `i' == 1 {
			return add
		}
	}
	return scalar F = return(F_1)
	quietly regress `e' `plain' `others' `weight' if `touse', `constant'
	local df = e(df_m)-`: word count `regressors''
	scalar `s' = cond(`df' > 0, e(N)*e(mss)/(e(mss)+e(rss)), .)
	display as text _newline "Sargan's test of overidentification"
	display as text "    chi2(" as result `df' as text ")" _column(19) "= " as result %9.2f `s'
	display as text "    Prob > chi2   = " as result %9.4f chiprob(`df', `s')
	return scalar p_s = cond(`df' > 0, chiprob(`df', `s'), .)
	return scalar df_s = `df'
	return scalar sargan = `s'
end
