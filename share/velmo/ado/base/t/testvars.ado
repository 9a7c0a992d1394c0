*! version 1.0.0  22nov2026
* testvars: tests that the coefficients of a list are 0, or that they are equal
program define testvars, rclass
	version 7.0
	_splitat , `0'
	local 0 `", `behind'"'
	syntax [, Equal]
	if "`before'" == "" {
		display as error "list of coefficients required"
		exit 100
	}
	tempname b
	matrix `b' = get(_b)
	Expand `before'
	if "`equal'" == "" {
		test `names'
	}
	else {
		gettoken first names : names
		if "`names'" == "" {
			error 102
		}
		foreach name of local names {
			quietly test `first' = `name', notest `accumulate'
			local accumulate accumulate
		}
		test
	}
	return add
end

* Patterns and ranges are of variables, and mean those that have coefficients.
program define Expand
	local words : local 0
	foreach word of local words {
		local found `word'
		if index("`word'", "*") | index("`word'", "?") | index("`word'", "-") | index("`word'", "~") {
			local found
			local 0 `word'
			syntax varlist(ts)
			foreach name of local varlist {
				capture display _b[`name']
				error _rc == 1
				if _rc == 0 {
					local found `found' `name'
				}
			}
			if "`found'" == "" {
				display as error "no coefficients of `word'"
				exit 111
			}
		}
		foreach name of local found {
			if index(" `names' ", " `name' ") == 0 {
				local names `names' `name'
			}
		}
	}
	c_local names `names'
end
