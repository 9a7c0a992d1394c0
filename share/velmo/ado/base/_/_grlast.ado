*! version 1.0.0  21nov2026
* egen's rlast(): the last nonmissing value of a row
program define _grlast
	version 7.0
	_egvars `0'
	syntax varlist(numeric) [if] [in] [, BY(string)]
	tempvar sample value
	mark `sample' `if' `in'
	quietly {
		generate double `value' = .
		foreach v of local varlist {
			replace `value' = `v' if `v' < .
		}
		generate `type' `new' = `value' if `sample'
	}
end
