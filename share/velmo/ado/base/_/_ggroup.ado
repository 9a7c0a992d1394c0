*! version 1.0.0  21nov2026
* egen's group(): numbers the groups of equal values 1, 2, ... in their order; within each group of by()
program define _ggroup
	version 7.0
	_egvars `0'
	syntax varlist [if] [in] [, BY(varlist) Missing Label]
	tempvar use number first least
	mark `use' `if' `in'
	if "`missing'" == "" {
		markout `use' `varlist', strok
	}
	quietly {
		_bygroup `new' = `by' `varlist' if `use', missing number(`number') first(`first')
		if "`by'" != "" {
			_bystats `least' = min(`new') if `use', by(`by')
			replace `new' = `new' - `least' + 1
		}
	}
	label variable `new' "group(`varlist')"
	if "`label'" != "" {
		if "`by'" != "" {
			display as error "label may not be combined with by"
			exit 190
		}
		_egfree `s(newvar)'
		quietly Label `new' `number' `first' `varlist'
	}
end

* A value label, named as the variable will be, from the values of the first observation of each group.
program define Label
	gettoken new 0 : 0
	gettoken number 0 : 0
	gettoken first 0 : 0
	tempvar text
	_gconcat str1 `text' = (`0') if `number' == 1, decode punct(" ")
	count if `first' < .
	local name `s(newvar)'
	forvalues i = 1/`r(N)' {
		if `text'[`first'[`i']] != "" {
			label define `name' `i' = `text'[`first'[`i']], add
		}
	}
	label values `new' `name'
end
