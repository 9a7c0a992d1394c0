*! version 1.0.0  21nov2026
* egen's sum(): the total of a group, missing values being nothing; with missing, the total of no values is missing
program define _gsum
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist) Missing]
	tempvar x sample n
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	_bystats `typlist' `varlist' = sum(`x') `n' = count(`x') if `sample', by(`by')
	if "`missing'" != "" {
		quietly replace `varlist' = . if !`n'
	}
end
