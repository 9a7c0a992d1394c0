*! version 1.0.0  21nov2026
* egen's group(): numbers the groups of equal values 1, 2, ... in their order; within each group of by()
program define _ggroup
	version 7.0
	_egvars `0'
	syntax varlist [if] [in] [, BY(varlist) Missing Label]
	tempvar use first
	mark `use' `if' `in'
	if "`missing'" == "" {
		markout `use' `varlist', strok
	}
	quietly {
		sort `use' `by' `varlist'
		generate byte `first' = .
		generate long `new' = .
		by `use' `by' `varlist': replace `first' = _n == 1
		by `use' `by': replace `new' = sum(`first')
		replace `new' = . if !`use'
	}
	label variable `new' "group(`varlist')"
	if "`label'" != "" {
		if "`by'" != "" {
			display as error "label may not be combined with by"
			exit 190
		}
		_egfree `s(newvar)'
		Label `new' `first' `use' `varlist'
	}
end

* A value label, named as the variable will be, from the values of the first observation of each group.
program define Label
	gettoken new 0 : 0
	gettoken first 0 : 0
	gettoken use 0 : 0
	tempvar text
	_gconcat str1 `text' = (`0') if `first' & `use', decode punct(" ")
	quietly replace `first' = !(`first' & `use')
	sort `first' `new'
	quietly count if !`first'
	local name `s(newvar)'
	forvalues i = 1/`r(N)' {
		if `text'[`i'] != "" {
			label define `name' `i' = `text'[`i'], add
		}
	}
	label values `new' `name'
end
