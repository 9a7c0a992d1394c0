*! version 1.0.0  21nov2026
* sample: keeps a random # percent, or # observations, of the data or of each group; what if and in leave out stays
program define sample
	version 7.0
	gettoken size 0 : 0, parse(" ,")
	confirm number `size'
	syntax [if] [in] [, Count BY(varlist)]
	if `size' < 0 | ("`count'" == "" & `size' > 100) {
		display as error cond("`count'" == "", "the percentage must be between 0 and 100", "the count must not be negative")
		exit 198
	}
	if "`count'" != "" {
		confirm integer number `size'
	}
	marksample touse, novarlist
	local sorted : sortedby
	tempvar order random
	quietly {
		generate long `order' = _n
		generate double `random' = uniform() if `touse'
		sort `touse' `by' `random'
		local keep `size'
		if "`count'" == "" {
			local keep "round(_N * (`size' / 100), 1)"
		}
		by `touse' `by': replace `touse' = `touse' & _n > `keep'
		sort `order'
	}
	drop if `touse'
	if "`sorted'" != "" {
		sort `sorted'
	}
end
