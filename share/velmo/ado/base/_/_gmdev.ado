*! version 1.0.0  21nov2026
* egen's mdev(): the mean absolute deviation from the mean of a group
program define _gmdev
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample mean
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	_bystats double `mean' = mean(`x') if `sample', by(`by')
	quietly replace `x' = abs(`x' - `mean')
	_bystats `typlist' `varlist' = mean(`x') if `sample', by(`by')
end
