*! version 1.0.0  21nov2026
* egen's min(): the smallest value of a group
program define _gmin
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	_bystats `typlist' `varlist' = min(`x') if `sample', by(`by')
end
