*! version 1.0.0  21nov2026
* egen's rmean(): the mean of the nonmissing values of a row
program define _grmean
	version 7.0
	_egvars `0'
	syntax varlist(numeric) [if] [in] [, BY(string)]
	tempvar sample total n
	mark `sample' `if' `in'
	quietly {
		generate double `total' = 0
		generate int `n' = 0
		foreach v of local varlist {
			replace `total' = `total' + `v' if `v' < .
			replace `n' = `n' + (`v' < .)
		}
		generate `type' `new' = `total' / `n' if `sample'
	}
end
