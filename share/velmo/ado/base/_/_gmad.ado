*! version 1.0.0  21nov2026
* egen's mad(): the median absolute deviation from the median of a group
program define _gmad
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample median deviation
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	if "`by'" != "" {
		local by , by(`by')
	}
	_gmedian double `median' = `x' if `sample' `by'
	quietly generate double `deviation' = abs(`x' - `median')
	_gmedian `typlist' `varlist' = `deviation' if `sample' `by'
end
