*! version 1.0.0  21nov2026
* egen's pc(): a value as a percentage of the total of its group; with prop, as a fraction
program define _gpc
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist) PRop]
	tempvar x sample total
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	local whole = cond("`prop'" == "", 100, 1)
	_bystats double `total' = sum(`x') if `sample', by(`by')
	quietly generate `typlist' `varlist' = `whole' * (`x' / `total')
end
