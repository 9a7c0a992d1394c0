*! version 1.0.0  21nov2026
* egen's skew(): the skewness of a group, as summarize, detail has it
program define _gskew
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	_bystats `typlist' `varlist' = skewness(`x') if `sample', by(`by')
end
