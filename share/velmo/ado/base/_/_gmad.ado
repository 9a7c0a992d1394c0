*! version 1.0.0  21nov2026
* egen's mad(): the median absolute deviation from the median of a group
program define _gmad
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample median
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	_bystats double `median' = median(`x') if `sample', by(`by')
	quietly replace `x' = abs(`x' - `median')
	_bystats `typlist' `varlist' = median(`x') if `sample', by(`by')
end
