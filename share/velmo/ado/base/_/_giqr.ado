*! version 1.0.0  21nov2026
* egen's iqr(): the interquartile range of a group
program define _giqr
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	_bystats `typlist' `varlist' = iqr(`x') if `sample', by(`by')
end
