*! version 1.0.0  21nov2026
* egen's cut(): the lower end of the interval between two of at(), or of group() equally frequent ones, of a value
program define _gcut
	version 7.0
	_egvars `0'
	syntax varname(numeric) [if] [in] [, BY(string) At(numlist ascending) Group(integer 0) Icodes Label]
	if ("`at'" != "") + (`group' != 0) != 1 | `group' < 0 | `group' == 1 {
		display as error "either at() or group(), with at least two groups, must be specified"
		exit 198
	}
	if "`by'" != "" & `group' {
		display as error "group() may not be combined with by"
		exit 190
	}
	tempvar x code low
	quietly {
		generate double `x' = `varlist' `if' `in'
		generate int `code' = .
		generate double `low' = .
		if `group' {
			Quantiles `x' `code' `low' `group'
		}
		else {
			_typed `varlist'
			Intervals `x' `code' `low' "`typed'" `at'
		}
		local result = cond("`icodes'`label'" == "", "`low'", "`code'")
		local type = cond("`icodes'`label'" == "", "`type'", "long")
		generate `type' `new' = `result'
	}
	if "`label'" != "" {
		_egfree `s(newvar)'
		Label `new' `low'
	}
end

* [a1, a2), [a2, a3) ... are 0, 1, ...; from the last end on, and below the first, values are missing.
program define Intervals
	gettoken x 0 : 0
	gettoken code 0 : 0
	gettoken low 0 : 0
	gettoken typed 0 : 0
	local i 0
	local ends `0'
	foreach a of local ends {
		replace `code' = `i' if `x' >= `typed'(`a') & `x' < .
		replace `low' = `a' if `x' >= `typed'(`a') & `x' < .
		local i = `i' + 1
	}
	replace `code' = . if `code' == `i' - 1
	replace `low' = . if `code' >= .
end

* The ends are percentiles by the rule of summarize, detail; equal values are never parted.
program define Quantiles
	args x code low groups
	tempname end
	sort `x'
	count if `x' < .
	local n = r(N)
	scalar `end' = `x'[1]
	forvalues i = 0/`groups' {
		replace `code' = `i' if `x' >= `end' & `x' < . & `i' < `groups'
		replace `low' = `end' if `x' >= `end' & `x' < . & `i' < `groups'
		local next = `i' + 1
		local k = int((`n' * `next') / `groups')
		if `k' * `groups' == `n' * `next' {
			scalar `end' = (`x'[`k'] + `x'[`k' + 1]) / 2
		}
		else {
			scalar `end' = `x'[`k' + 1]
		}
	}
end

* Each code is labelled with its interval's lower end, under the name that the variable will have.
program define Label
	args new low
	local name `s(newvar)'
	quietly {
		tempvar first
		sort `new'
		generate byte `first' = .
		by `new': replace `first' = _n != 1 | `new' == .
		sort `first' `new'
		count if !`first'
	}
	forvalues i = 1/`r(N)' {
		local code = `new'[`i']
		local value = string(`low'[`i'])
		label define `name' `code' "`value'-", add
	}
	label values `new' `name'
end
