*! version 1.0.0  21nov2026
* egen's rsd(): the standard deviation of the nonmissing values of a row, over n - 1
program define _grsd
	version 7.0
	_egvars `0'
	syntax varlist(numeric) [if] [in] [, BY(string)]
	tempvar sample total n ss
	mark `sample' `if' `in'
	quietly {
		generate double `total' = 0
		generate int `n' = 0
		foreach v of local varlist {
			replace `total' = `total' + `v' if `v' < .
			replace `n' = `n' + (`v' < .)
		}
		replace `total' = `total' / `n'
		generate double `ss' = 0
		foreach v of local varlist {
			replace `ss' = `ss' + (`v' - `total')^2 if `v' < .
		}
		generate `type' `new' = sqrt(`ss' / (`n' - 1)) if `sample' & `n' > 1
	}
end
