*! version 1.0.0  21nov2026
* egen's sum(): the total of a group, missing values being nothing; with missing, the total of no values is missing
program define _gsum
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist) Missing]
	tempvar x sample some
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	quietly {
		generate byte `some' = 1
		if "`missing'" != "" {
			`s(by)' replace `some' = sum(`x' < .) > 0
		}
		`s(by)' generate `typlist' `varlist' = sum(`x')
		`s(by)' replace `varlist' = cond(`sample' & `some'[_N], `varlist'[_N], .)
	}
end
