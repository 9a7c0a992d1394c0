*! version 1.0.0  22nov2026
* _lastregress ols|iv: error 301 unless the last estimates are such ones of regress; leaves with the caller depvar,
* regressors (without those that were dropped), constant (noconstant without one) and weight ([kind = exp])
program define _lastregress
	version 7.0
	args model
	if "`e(cmd)'" != "regress" | "`e(model)'" != "`model'" {
		error 301
	}
	tempname b
	matrix `b' = e(b)
	local names : colnames `b'
	local constant noconstant
	foreach name of local names {
		if "`name'" == "_cons" {
			local constant
		}
		else if _b[`name'] != 0 | _se[`name'] != 0 {
			local regressors `regressors' `name'
		}
	}
	if "`e(wtype)'" != "" {
		local weight "[`e(wtype)' `e(wexp)']"
	}
	c_local depvar `e(depvar)'
	c_local regressors `regressors'
	c_local constant `constant'
	c_local weight : local weight
end
