*! version 1.0.0  22nov2026
* vce: the variances and covariances of the coefficients, or their correlations
program define vce, rclass
	version 7.0
	syntax [, Correlation]
	tempname V
	local form = cond("`correlation'" == "", "covariance", "")
	correlate, _coef `form'
	matrix `V' = e(V)
	matrix rename `V' return(V)
end
