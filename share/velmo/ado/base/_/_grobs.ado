*! version 1.0.0  21nov2026
* egen's robs(): the number of nonmissing values of a row, of strings too
program define _grobs
	version 7.0
	_egvars `0'
	syntax varlist [if] [in] [, BY(string)]
	tempvar sample n
	mark `sample' `if' `in'
	quietly {
		generate int `n' = 0
		foreach v of local varlist {
			replace `n' = `n' + !missing(`v')
		}
		generate long `new' = `n' if `sample'
	}
end
