*! version 1.0.0  21nov2026
* fillin: adds the combinations of values that don't occur, marked in _fillin
program define fillin
	version 7.0
	syntax varlist
	confirm new variable _fillin
	if _N == 0 {
		error 2000
	}
	preserve
	quietly {
		tempfile data there absent
		tempvar merged
		sort `varlist'
		save `"`data'"', internal
		keep `varlist'
		by `varlist': keep if _n == 1
		save `"`there'"', internal
		local i 0
		foreach v of local varlist {
			local i = `i' + 1
			tempfile values`i'
			use `v' using `"`there'"', internal
			sort `v'
			by `v': keep if _n == 1
			save `"`values`i''"', internal
		}
		use `"`values1'"', internal
		forvalues j = 2/`i' {
			cross using `"`values`j''"'
		}
		sort `varlist'
		merge `varlist' using `"`there'"', _merge(`merged')
		keep if `merged' == 1
		drop `merged'
		generate byte _fillin = 1
		local missing = _N
		save `"`absent'"', internal
		use `"`data'"', internal
		generate byte _fillin = 0
		if `missing' {
			append using `"`absent'"'
		}
		sort `varlist'
	}
	restore, not
end
