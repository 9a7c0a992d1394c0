*! version 1.0.0  21nov2026
* egen's rmin(): the smallest value of a row
program define _grmin
	version 7.0
	_egvars `0'
	syntax varlist(numeric) [if] [in] [, BY(string)]
	tempvar sample best
	mark `sample' `if' `in'
	quietly {
		generate double `best' = .
		foreach v of local varlist {
			replace `best' = min(`best', `v')
		}
		generate `type' `new' = `best' if `sample'
	}
end
