*! version 1.0.0  21nov2026
* egen's tag(): 1 in the first observation of each group of equal values, 0 in the others
program define _gtag
	version 7.0
	_egvars `0'
	syntax varlist [if] [in] [, BY(varlist) Missing]
	tempvar use order
	mark `use' `if' `in'
	if "`missing'" == "" {
		markout `use' `varlist', strok
	}
	quietly {
		generate long `order' = _n
		sort `use' `by' `varlist' `order'
		generate byte `new' = .
		by `use' `by' `varlist': replace `new' = _n == 1 & `use'
	}
end
