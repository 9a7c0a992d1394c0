*! version 1.0.0  22nov2026
* tabeach: one-way tables of many variables
program define tabeach, byable(recall)
	version 7.0
	syntax varlist [aweight fweight iweight] [if] [in] [, *]
	marksample touse, novarlist
	if "`weight'" != "" {
		local weight [`weight'`exp']
	}
	foreach x of local varlist {
		display as text _newline "-> tabulate `x'"
		Table `x' `touse' "`weight'" "`options'"
	}
end

* A variable without values has no table, which ends nothing.
program define Table
	args x touse weight options
	capture noisily tabulate `x' `weight' if `touse', `options'
	if _rc & _rc != 2000 {
		exit _rc
	}
end
