*! version 1.0.0  21nov2026
* egen's max(): the largest value of a group
program define _gmax
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	quietly {
		generate `typlist' `varlist' = `x'
		`s(by)' replace `varlist' = max(`varlist'[_n-1], `x')
		`s(by)' replace `varlist' = cond(`sample', `varlist'[_N], .)
	}
end
