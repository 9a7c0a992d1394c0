*! version 1.0.0  22nov2026
* tabpairs: two-way tables of all pairs of a list
program define tabpairs, byable(recall)
	version 7.0
	syntax varlist(min=2) [aweight fweight iweight] [if] [in] [, *]
	marksample touse, novarlist
	if "`weight'" != "" {
		local weight [`weight'`exp']
	}
	local k : word count `varlist'
	local last = `k'-1
	forvalues i = 1/`last' {
		local from = `i'+1
		forvalues j = `from'/`k' {
			local x : word `i' of `varlist'
			local y : word `j' of `varlist'
			display as text _newline "-> tabulate `x' `y'"
			Table `x' `y' `touse' "`weight'" "`options'"
		}
	}
end

* A pair without common values has no table, which ends nothing.
program define Table
	args x y touse weight options
	capture noisily tabulate `x' `y' `weight' if `touse', `options'
	if _rc & _rc != 2000 {
		exit _rc
	}
end
