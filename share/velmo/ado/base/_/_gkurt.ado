*! version 1.0.0  21nov2026
* egen's kurt(): the kurtosis of a group, as summarize, detail has it
program define _gkurt
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	_bystats `typlist' `varlist' = kurtosis(`x') if `sample', by(`by')
end
