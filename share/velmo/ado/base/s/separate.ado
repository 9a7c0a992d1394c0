*! version 1.0.0  21nov2026
* separate: spreads a variable over new ones, one for each group
program define separate, rclass
	version 7.0
	Make `0'
	describe `made'
	return local varlist `made'
end

program define Make, sortpreserve
	syntax varname [if] [in], BY(string) [Generate(string) SEQuential Missing SHORTlabel]
	local x `varlist'
	if "`generate'" == "" {
		local generate `x'
	}
	confirm names `generate'
	marksample touse, novarlist
	preserve
	quietly {
		tempvar group out number count
		local string 0
		capture confirm variable `by'
		error _rc == 1
		if !_rc {
			local what `by'
			local type : type `by'
			local string = substr("`type'", 1, 3) == "str"
		}
		else {
			noisily generate byte `group' = (`by') != 0
			local what `group'
		}
		generate byte `out' = !`touse'
		if "`missing'" == "" {
			replace `out' = 1 if missing(`what')
		}
		count if !`out'
		local n = r(N)
		if !`n' {
			noisily error 2000
		}
		sort `out' `what'
		by `out' `what': generate long `count' = _N
		by `out' `what': generate long `number' = _n == 1
		replace `number' = sum(`number')
		* numbers as they are can end a name only if they are whole and not negative
		if "`sequential'" == "" & !`string' {
			count if !`out' & (`what' < 0 | `what' != int(`what') | `what' >= 1e9)
			if r(N) {
				local sequential sequential
			}
		}
		local at 1
		local i 0
		while `at' <= `n' {
			local i = `i' + 1
			local suffix `i'
			if "`sequential'" == "" & !`string' {
				local suffix = `what'[`at']
			}
			noisily confirm new variable `generate'`suffix'
			local made `made' `generate'`suffix'
			local at`i' `at'
			local at = `at' + `count'[`at']
		}
		local type : type `x'
		local f : format `x'
		local l : value label `x'
		forvalues j = 1/`i' {
			local new : word `j' of `made'
			generate `type' `new' = `x' if `number' == `j' & !`out'
			format `new' `f'
			if "`l'" != "" {
				label values `new' `l'
			}
			Value `what' `at`j'' `string'
			local text = _local(by) + " == " + _local(value)
			if "`what'" == "`group'" {
				local text = cond(`group'[`at`j''], _local(by), "!(" + _local(by) + ")")
			}
			label variable `new' = cond("`shortlabel'" == "", "`x', ", "") + _local(text)
		}
	}
	restore, not
	c_local made `made'
end

* How a group's value is written: its label, or as its format shows it; strings in quotes.
program define Value
	args what at string
	if `string' {
		c_local value = char(34) + `what'[`at'] + char(34)
		exit
	}
	local f : format `what'
	local l : value label `what'
	local value = trim(string(`what'[`at'], _local(f)))
	local whole = `what'[`at']
	if "`l'" != "" {
		local value : label `l' `whole'
	}
	c_local value : local value
end
