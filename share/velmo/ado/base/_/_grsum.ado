*! version 1.0.0  21nov2026
* egen's rsum(): the total of a row, missing values being nothing; with missing, the total of no values is missing
program define _grsum
	version 7.0
	_egvars `0'
	syntax varlist(numeric) [if] [in] [, BY(string) Missing]
	tempvar sample total n
	mark `sample' `if' `in'
	quietly {
		generate double `total' = 0
		generate int `n' = 0
		foreach v of local varlist {
			replace `total' = `total' + `v' if `v' < .
			replace `n' = `n' + (`v' < .)
		}
		local some = cond("`missing'" == "", 0, 1)
		generate `type' `new' = `total' if `sample' & `n' >= `some'
	}
end
