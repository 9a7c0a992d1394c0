*! version 1.0.0  21nov2026
* egen's rfirst(): the first nonmissing value of a row
program define _grfirst
	version 7.0
	_egvars `0'
	syntax varlist(numeric) [if] [in] [, BY(string)]
	tempvar sample value
	mark `sample' `if' `in'
	quietly {
		generate double `value' = .
		foreach v of local varlist {
			replace `value' = `v' if `value' >= .
		}
		generate `type' `new' = `value' if `sample'
	}
end
