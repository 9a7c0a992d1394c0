*! version 1.0.0  21nov2026
* egen's mean(): the mean of a group
program define _gmean
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	_bystats `typlist' `varlist' = mean(`x') if `sample', by(`by')
end
