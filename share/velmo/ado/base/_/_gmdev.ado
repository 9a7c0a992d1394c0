*! version 1.0.0  21nov2026
* egen's mdev(): the mean absolute deviation from the mean of a group
program define _gmdev
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample mean
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	quietly {
		`s(by)' generate double `mean' = sum(`x') / sum(`x' < .)
		`s(by)' replace `mean' = `mean'[_N]
		`s(by)' generate `typlist' `varlist' = sum(abs(`x' - `mean')) / sum(`x' < .)
		`s(by)' replace `varlist' = cond(`sample', `varlist'[_N], .)
	}
end
