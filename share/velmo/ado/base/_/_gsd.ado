*! version 1.0.0  21nov2026
* egen's sd(): the standard deviation of a group, over n - 1
program define _gsd
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	_bystats `typlist' `varlist' = sd(`x') if `sample', by(`by')
end
