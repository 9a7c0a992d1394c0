*! version 1.0.0  21nov2026
* egen's count(): the number of nonmissing values of a group, of strings too
program define _gcount
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(passthru)]
	_egstat count long `varlist' = `exp' `if' `in', `by' strings
end
