*! version 1.0.0  22nov2026
* sw command: stepwise: takes terms out of a model, or into it, by their tests
program define sw
	version 7.0
	gettoken command 0 : 0, parse(" ,")
	gettoken depvar 0 : 0, parse(" ,[(")
	Names `depvar'
	local depvar `names'
	Terms `0'
	syntax [aweight fweight pweight iweight] [if] [in] [, PE(real -1) PR(real -1) FORward KEEP(varlist ts) *]
	Limits `pe' `pr' `forward'
	* what keep() names is no term's
	local m 0
	forvalues i = 1/`n' {
		foreach x of local keep {
			local term`i' : subinstr local term`i' "`x'" "", word all
		}
		if trim("`term`i''") != "" {
			local m = `m'+1
			local term`m' `term`i''
		}
	}
	local n `m'
	if "`weight'" != "" {
		local weight [`weight'`exp']
	}
	tempvar touse
	mark `touse' `weight' `if' `in'
	markout `touse' `depvar' `keep'
	local start = `pr' != -1 & "`forward'" == ""
	forvalues i = 1/`n' {
		markout `touse' `term`i''
		local in`i' = `start'
		if `start' {
			local chosen `chosen' `term`i''
		}
	}
	quietly count if `touse'
	if r(N) == 0 {
		error 2000
	}
	local tail `weight' if `touse', `options'
	* a step that fails leaves the earlier estimates
	tempname earlier
	capture estimates hold `earlier', restore
	error _rc == 1
	local steps 0
	local move 1
	while `move' {
		local move 0
		if `pr' != -1 & "`chosen'" != "" {
			quietly `command' `depvar' `keep' `chosen' `tail'
			local worst -1
			forvalues i = 1/`n' {
				if `in`i'' {
					P `term`i''
					if `p' > `worst' {
						local worst = `p'
						local move `i'
					}
				}
			}
			if `worst' >= `pr' {
				display as text "p = " as result %6.4f `worst' as text " >= " %6.4f `pr' "  removing  `term`move''"
			}
			else {
				local move 0
			}
		}
		if `move' == 0 & `pe' != -1 {
			local best `pe'
			forvalues i = 1/`n' {
				if `in`i'' == 0 {
					capture `command' `depvar' `keep' `chosen' `term`i'' `tail'
					error _rc == 1
					local p .
					if _rc == 0 {
						P `term`i''
					}
					if `p' < `best' {
						local best = `p'
						local move `i'
					}
				}
			}
			if `move' {
				display as text "p = " as result %6.4f `best' as text " <  " %6.4f `pe' "  adding    `term`move''"
			}
		}
		if `move' {
			local steps = `steps'+1
			local in`move' = 1-`in`move''
			local chosen
			forvalues i = 1/`n' {
				if `in`i'' {
					local chosen `chosen' `term`i''
				}
			}
		}
	}
	if (index("regress", "`command'") == 1 & length("`command'") > 2) | /*
		*/ ((index("logit", "`command'") == 1 | index("probit", "`command'") == 1) & length("`command'") > 3) {
		local tail `tail' step(`=`steps'+1')
	}
	`command' `depvar' `keep' `chosen' `tail'
	capture estimates drop `earlier'
	error _rc == 1
end

* The variables that a list names.
program define Names
	syntax varlist(ts)
	c_local names `varlist'
end

* The terms as term1, term2, ..., their number as n; what follows them as 0. A group in parentheses is one, of a list
* outside each variable.
program define Terms
	local n 0
	gettoken next : 0, parse(" ,[(")
	while _local(next) != "" & index(" , [ if in ", " " + _local(next) + " ") == 0 {
		if _local(next) == "(" {
			gettoken group 0 : 0, match(paren)
			Names `group'
			local n = `n'+1
			c_local term`n' `names'
		}
		else {
			gettoken word 0 : 0, parse(" ,[(")
			Names `word'
			foreach x of local names {
				local n = `n'+1
				c_local term`n' `x'
			}
		}
		gettoken next : 0, parse(" ,[(")
	}
	if `n' == 0 {
		error 102
	}
	c_local n `n'
	c_local 0 : local 0
end

program define Limits
	args pe pr forward
	foreach p in `pe' `pr' {
		if `p' != -1 & (`p' <= 0 | `p' >= 1) {
			display as error "pe() and pr() must be between 0 and 1"
			exit 198
		}
	}
	if `pe' == -1 & (`pr' == -1 | "`forward'" != "") {
		display as error cond(`pr' == -1, "pe() or pr() required", "forward needs pe()")
		exit 198
	}
	if `pr' != -1 & `pe' >= `pr' {
		display as error "pe() must be below pr()"
		exit 198
	}
end

* The p-value of a term, missing when it isn't in the model.
program define P
	capture test `0'
	error _rc == 1
	c_local p = cond(_rc == 0, r(p), .)
end
