*! version 1.0.0  22nov2026
* pairwise: correlations, each of the observations that have both values
program define pairwise, rclass byable(recall)
	version 7.0
	syntax varlist(numeric ts) [aweight fweight] [if] [in] [, Obs SIG STar(real 0) Bonferroni SIDak]
	if `star' < 0 | `star' >= 1 {
		display as error "star() must be between 0 and 1"
		exit 198
	}
	if "`bonferroni'" != "" & "`sidak'" != "" {
		display as error "only one of bonferroni and sidak allowed"
		exit 198
	}
	marksample touse, novarlist
	quietly count if `touse'
	if r(N) == 0 {
		error 2000
	}
	tempname C N P
	Compute `C' `N' `P' `touse' "[`weight'`exp']" `varlist'
	Show `C' `N' `P' `star' "`obs'" "`sig'" "`bonferroni'`sidak'" `varlist'
	matrix rename `C' return(C)
	matrix rename `N' return(N)
	matrix rename `P' return(P)
end

* The three matrices: missing where two values are too few or one variable is constant.
program define Compute
	gettoken C 0 : 0
	gettoken N 0 : 0
	gettoken P 0 : 0
	gettoken touse 0 : 0
	gettoken weight 0 : 0
	if "`weight'" == "[]" {
		local weight
	}
	local k : word count `0'
	foreach m in `C' `N' `P' {
		matrix `m' = J(`k',`k',0)
		matrix rownames `m' = `0'
		matrix colnames `m' = `0'
	}
	tempname r n p
	forvalues i = 1/`k' {
		forvalues j = 1/`i' {
			local x : word `i' of `0'
			local y : word `j' of `0'
			capture correlate `x' `y' `weight' if `touse'
			if _rc & _rc != 2000 {
				error _rc
			}
			local none = _rc != 0
			scalar `r' = cond(`none', ., r(rho))
			scalar `n' = r(N)
			if `none' {
				quietly count if `touse' & `x' < . & `y' < .
				scalar `n' = r(N)
			}
			scalar `p' = cond(`i' == `j' & `r' < ., 0, tprob(`n'-2, `r'*sqrt((`n'-2)/(1-min(`r'^2, 1)))))
			if abs(`r') >= 1 & `r' < . & `n' > 2 {
				scalar `p' = 0
			}
			foreach cell in "`i' `j'" "`j' `i'" {
				_matcell `C' `cell' = `r'
				_matcell `N' `cell' = `n'
				_matcell `P' `cell' = `p'
			}
		}
	}
end

program define Show
	gettoken C 0 : 0
	gettoken N 0 : 0
	gettoken P 0 : 0
	gettoken star 0 : 0
	gettoken obs 0 : 0
	gettoken sig 0 : 0
	gettoken adjust 0 : 0
	local k : word count `0'
	local wide = max(1, int((`: set linesize'-14)/10))
	forvalues first = 1(`wide')`k' {
		local last = min(`first'+`wide'-1, `k')
		Heading `first' `last' `0'
		forvalues i = `first'/`k' {
			local stop = min(`i', `last')
			local x : word `i' of `0'
			display as text %12s abbrev("`x'",12) " {c |}" _continue
			forvalues j = `first'/`stop' {
				Adjusted `P'[`i',`j'] `k' `adjust'
				local mark = cond(`j' < `i' & `p' <= `star' & `star' > 0, "*", " ")
				display as result %9.4f `C'[`i',`j'] "`mark'" _continue
			}
			display
			if "`sig'" != "" {
				display as text _skip(13) "{c |}" _continue
				forvalues j = `first'/`stop' {
					Adjusted `P'[`i',`j'] `k' `adjust'
					if `j' < `i' {
						display as result %9.4f `p' " " _continue
					}
				}
				display
			}
			if "`obs'" != "" {
				display as text _skip(13) "{c |}" _continue
				forvalues j = `first'/`stop' {
					display as result %9.0g `N'[`i',`j'] " " _continue
				}
				display
			}
		}
	}
end

program define Heading
	gettoken first 0 : 0
	gettoken last 0 : 0
	display as text _newline _skip(13) "{c |}" _continue
	forvalues j = `first'/`last' {
		local x : word `j' of `0'
		display as text %9s abbrev("`x'",8) " " _continue
	}
	local rule = 10*(`last'-`first'+1)
	display as text _newline "{hline 13}{c +}{hline `rule'}"
end

* p, adjusted for the number of pairs.
program define Adjusted
	args p k adjust
	local m = `k'*(`k'-1)/2
	if "`adjust'" == "bonferroni" {
		c_local p = cond(`p' < ., min(1, `m'*`p'), .)
	}
	else if "`adjust'" == "sidak" {
		c_local p = 1-(1-`p')^`m'
	}
	else {
		c_local p = `p'
	}
end
