*! version 1.0.0  21nov2026
* egen's tag(): 1 in the first observation of each group of equal values, 0 in the others
program define _gtag
	version 7.0
	_egvars `0'
	syntax varlist [if] [in] [, BY(varlist) Missing]
	tempvar use group number
	mark `use' `if' `in'
	if "`missing'" == "" {
		markout `use' `varlist', strok
	}
	quietly {
		_bygroup `group' = `by' `varlist' if `use', missing number(`number')
		generate byte `new' = `number' == 1
	}
end
