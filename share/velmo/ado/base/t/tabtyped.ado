*! version 1.0.0  22nov2026
* tabtyped: a table typed by hand, rows apart by \, with the statistics of tabulate
program define tabtyped, rclass
	version 7.0
	gettoken cells options : 0, parse(",")
	if "`cells'" == "," {
		local cells
		local options `0'
	}
	local rows 1
	local columns 0
	local j 0
	local n 0
	local rest `cells'
	while "`rest'" != "" {
		gettoken cell rest : rest, parse(" \")
		if "`cell'" == "\" {
			if `j' != `columns' & `columns' | `j' == 0 {
				Unequal
			}
			local columns `j'
			local rows = `rows'+1
			local j 0
		}
		else {
			capture confirm integer number `cell'
			error _rc == 1
			if _rc {
				display as error "`cell' is no whole number"
				exit 198
			}
			if `cell' < 0 {
				display as error "counts may not be negative"
				exit 198
			}
			local j = `j'+1
			local n = `n'+1
			local count`n' `cell'
			local row`n' `rows'
			local col`n' `j'
		}
	}
	if `j' == 0 | (`columns' & `j' != `columns') {
		Unequal
	}
	preserve
	quietly {
		drop _all
		set obs `n'
		generate int row = .
		generate int col = .
		generate long count = .
		forvalues i = 1/`n' {
			replace row = `row`i'' in `i'
			replace col = `col`i'' in `i'
			replace count = `count`i'' in `i'
		}
	}
	tabulate row col [fweight=count] `options'
	return add
end

program define Unequal
	display as error "rows must have as many counts, one at least"
	exit 198
end
