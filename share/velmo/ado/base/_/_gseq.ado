*! version 1.0.0  21nov2026
* egen's seq(): from(), from()+1, ... to() over and over, each block() times, downwards if to() is below from()
program define _gseq
	version 7.0
	_egvars `0'
	syntax [if] [in] [, BY(varlist) From(integer 1) To(string) Block(integer 1)]
	if `block' < 1 {
		display as error "block() must be positive"
		exit 198
	}
	if "`to'" == "" {
		local to = `from' + _N - 1
	}
	confirm integer number `to'
	tempvar sample order i
	mark `sample' `if' `in'
	quietly {
		generate long `order' = _n
		sort `sample' `by' `order'
		generate long `i' = .
		by `sample' `by': replace `i' = int((_n - 1) / `block')
		generate long `new' = `from' + cond(`to' < `from', -1, 1) * mod(`i', abs(`to' - `from') + 1) if `sample'
	}
end
