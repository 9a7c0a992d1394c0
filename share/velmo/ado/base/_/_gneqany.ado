*! version 1.0.0  21nov2026
* egen's neqany(): the number of variables that have one of values()
program define _gneqany
	version 7.0
	_egvars `0'
	syntax varlist(numeric) [if] [in], Values(numlist missingokay) [BY(string)]
	tempvar sample n
	mark `sample' `if' `in'
	quietly {
		generate int `n' = 0
		foreach v of local varlist {
			_typed `v'
			foreach value of local values {
				replace `n' = `n' + (`v' == `typed'(`value'))
			}
		}
		generate long `new' = `n' if `sample'
	}
end
