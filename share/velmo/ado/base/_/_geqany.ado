*! version 1.0.0  21nov2026
* egen's eqany(): 1 in a row where a variable has one of values(), else 0
program define _geqany
	version 7.0
	_egvars `0'
	syntax varlist(numeric) [if] [in], Values(numlist missingokay) [BY(string)]
	tempvar sample
	mark `sample' `if' `in'
	quietly {
		generate byte `new' = 0 if `sample'
		foreach v of local varlist {
			_typed `v'
			foreach value of local values {
				replace `new' = 1 if `v' == `typed'(`value') & `sample'
			}
		}
	}
end
