*! version 1.0.0  21nov2026
* egen's mean(): the mean of a group
program define _gmean
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	quietly {
		`s(by)' generate `typlist' `varlist' = sum(`x') / sum(`x' < .)
		`s(by)' replace `varlist' = cond(`sample', `varlist'[_N], .)
	}
end
