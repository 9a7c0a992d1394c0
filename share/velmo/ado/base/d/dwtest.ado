*! version 1.0.0  22nov2026
* dwtest: after regress, the Durbin-Watson statistic of serial correlation (1950), in the order of time
program define dwtest, rclass sortpreserve
	version 7.0
	syntax
	_lastregress ols
	if "`e(wtype)'" != "" {
		error 135
	}
	_tsorder
	tempvar touse e d
	tempname dw
	quietly {
		generate byte `touse' = e(sample)
		_predict double `e' if `touse', residuals
		generate double `d' = (`e'-L.`e')^2
		replace `e' = `e'^2
		summarize `d', meanonly
		scalar `dw' = r(sum)
		summarize `e', meanonly
	}
	scalar `dw' = `dw'/r(sum)
	local k = e(df_m)+("`constant'" == "")
	display as text _newline "Durbin-Watson statistic (" as result `k' as text ", " as result e(N) as text ") = " /*
		*/ as result %9.0g `dw'
	return scalar N = e(N)
	return scalar d = `dw'
end
