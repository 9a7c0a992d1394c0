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
		Into `group' `varlist'
	}
	Names `into'
	local n : word count `into'
	if mod(`k', `n') {
		display as error "`k' variables cannot be stacked into `n'"
		exit 198
	}
	if "`clear'" == "" {
		Unchanged
	}
	preserve
	quietly {
		marksample touse, novarlist
		keep if `touse'
		keep `varlist'
		Stack `k' `n' `wide' : `varlist' : `into'
	}
	restore, not
end

* group(#): the first of # equally long groups gives the names.
program define Into
	gettoken groups 0 : 0
	local k : word count `0'
	if `groups' < 1 | mod(`k', `groups') {
		display as error "`k' variables cannot be put in `groups' groups"
		exit 198
	}
	local n = `k' / `groups'
	forvalues i = 1/`n' {
		local name : word `i' of `0'
		local into `into' `name'
	}
	c_local into `into'
end
