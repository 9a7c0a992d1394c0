*! version 1.0.0  21nov2026
* stack: puts groups of variables one below the other; _stack tells which group an observation comes from
program define stack
	version 7.0
	syntax varlist [if] [in] [, Into(string) Group(integer 0) CLEAR WIDE]
	local k : word count `varlist'
	if ("`into'" != "") + (`group' != 0) != 1 {
		display as error "either into() or group() must be specified"
		exit 198
	}
	if `group' {
		First `group' `k' `varlist'
	}
	Newnames `into'
	local n : word count `into'
	if mod(`k', `n') {
		display as error "`k' variables cannot be stacked into `n'"
		exit 102
	}
	if "`wide'" != "" {
		Apart "`into'" `varlist'
	}
	quietly describe, short
	if r(changed) & "`clear'" == "" {
		error 4
	}
	preserve
	marksample touse, novarlist
	quietly keep if `touse'
	Types `n' `varlist'
	Stack "`into'" "`types'" "`wide'" `varlist'
	global S_FN
	global S_FNDATE
	restore, not
end

* group(#): the first of # equally long groups gives the names.
program define First
	gettoken groups 0 : 0
	gettoken k 0 : 0
	if `groups' < 1 | mod(`k', `groups') {
		display as error "`k' variables cannot be put in `groups' groups"
		exit 102
	}
	tokenize `0'
	local n = `k' / `groups'
	forvalues i = 1/`n' {
		local into `into' ``i''
	}
	c_local into `into'
end

* into() may hold names in use and name1-name#; no name twice, and not _stack.
program define Newnames
	local list
	foreach name in `0' {
		Range `name'
		local list `list' `names'
	}
	confirm names `list'
	foreach name of local list {
		if "`name'" == "_stack" | index("`seen'", " `name' ") {
			display as error cond("`name'" == "_stack", "_stack may not stand in into()", "into() names `name' twice")
			exit 110
		}
		local seen "`seen' `name' "
	}
	c_local into `list'
end

program define Range
	args name
	local names `name'
	if index("`name'", "-") {
		local 0 `name'
		capture syntax newvarlist
		error _rc == 1
		if _rc {
			syntax varlist
		}
		local names `varlist'
	}
	c_local names `names'
end

program define Apart
	gettoken into 0 : 0
	foreach name of local into {
		if index(" `0' ", " `name' ") {
			display as error "wide: `name' is both in the list and in into()"
			exit 110
		}
	}
end

* The type of each new variable: one that holds all values of the variables it takes.
program define Types
	gettoken n 0 : 0
	tokenize `0'
	local k : word count `0'
	forvalues j = 1/`n' {
		local wide byte
		forvalues i = `j'(`n')`k' {
			local type : type ``i''
			Wider `wide' `type' `i' `j' ``i''
		}
		local types `types' `wide'
	}
	c_local types `types'
end

program define Wider
	args wide type i j name
	local order " byte int float long double "
	if substr("`type'", 1, 3) == "str" {
		if `i' == `j' | real(substr("`type'", 4, .)) > real(substr("`wide'", 4, .)) {
			local wider `type'
		}
	}
	if (substr("`type'", 1, 3) == "str") != (substr("`wide'", 1, 3) == "str") & `i' != `j' {
		display as error "`name' and the variables to be put with it are partly strings"
		exit 109
	}
	if "`wider'" == "" & index("`order'", " `type' ") > index("`order'", " `wide' ") {
		local wider `type'
	}
	if "`wide'`wider'" == "floatlong" | "`wide'`type'" == "longfloat" {
		local wider double
	}
	if "`wider'" != "" {
		c_local wide `wider'
	}
end

* Each group becomes a file of its own, and these are put one behind the other: memory never holds more than the result.
program define Stack
	args into types wide
	macro shift 3
	local n : word count `into'
	local k : word count `*'
	local groups = `k' / `n'
	tempfile all
	quietly save `all', internal
	forvalues g = 1/`groups' {
		quietly use `all', internal
		Part `g' "`into'" "`types'" "`wide'" `*'
		tempfile part`g'
		quietly save `part`g'', internal
	}
	quietly use `part1', internal
	forvalues g = 2/`groups' {
		quietly append using `part`g''
	}
	order `into' _stack
end

program define Part
	args g into types wide
	macro shift 4
	local n : word count `into'
	forvalues j = 1/`n' {
		local i = (`g' - 1) * `n' + `j'
		tempvar v`j'
		local type : word `j' of `types'
		quietly generate `type' `v`j'' = ``i''
		Dress `v`j'' ``i''
		local own `own' ``i''
		local made `made' `v`j''
	}
	if "`wide'" == "" {
		local own
	}
	keep `own' `made'
	forvalues j = 1/`n' {
		local name : word `j' of `into'
		rename `v`j'' `name'
	}
	quietly generate int _stack = `g'
	quietly compress _stack
	format _stack %8.0g
end

* Format, labels and characteristics of what a new variable is made from.
program define Dress
	args new old
	label variable `new' : variable label `old'
	local f : format `old'
	format `new' `f'
	local values : value label `old'
	if "`values'" != "" {
		label values `new' `values'
	}
	_charcopy `new' `old'
end
