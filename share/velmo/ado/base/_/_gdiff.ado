*! version 1.0.0  21nov2026
* egen's diff(): 1 in a row whose variables differ, 0 where they are all equal
program define _gdiff
	version 7.0
	_egvars `0'
	syntax varlist(min=2) [if] [in] [, BY(string)]
	tempvar sample
	mark `sample' `if' `in'
	quietly {
		gettoken first rest : varlist
		generate byte `new' = 0 if `sample'
		foreach v of local rest {
			replace `new' = 1 if `v' != `first' & `sample'
		}
	}
end
