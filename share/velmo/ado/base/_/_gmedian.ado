*! version 1.0.0  21nov2026
* egen's median(): the median of a group
program define _gmedian
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(passthru)]
	_gpctile `typlist' `varlist' = `exp' `if' `in', `by' p(50)
end
