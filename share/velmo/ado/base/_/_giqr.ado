*! version 1.0.0  21nov2026
* egen's iqr(): the interquartile range of a group
program define _giqr
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(passthru)]
	tempvar low high
	_gpctile double `low' = `exp' `if' `in', `by' p(25)
	_gpctile double `high' = `exp' `if' `in', `by' p(75)
	quietly generate `typlist' `varlist' = `high' - `low'
end
