*! version 1.0.0  22nov2026
* roc: the area under the curve of sensitivity against false positives, with the error of DeLong, DeLong and
* Clarke-Pearson 1988
program define roc, rclass
	version 7.0
	syntax [, Level(integer -1)]
	_level `level'
	tempvar p y w v
	_binaryfit `p' `y' `w'
	Placements `p' `y' `w' `v'
	tempname area se z
	scalar `se' = 0
	forvalues o = 1(-1)0 {
		quietly summarize `v' [fweight=`w'] if `y' == `o'
		local n`o' = r(N)
		scalar `area' = r(mean)
		scalar `se' = `se'+r(Var)/r(N)
	}
	scalar `se' = sqrt(`se')
	scalar `z' = invnorm(.5+`level'/200)
	return scalar ub = min(1, `area'+`z'*`se')
	return scalar lb = max(0, `area'-`z'*`se')
	return scalar se = `se'
	return scalar area = `area'
	return scalar N = `n0'+`n1'
	display as text _newline "Area under the curve of `e(cmd)' of `e(depvar)'" _newline
	display as text "       Obs          1          0 {c |}     Area   Std. Err.   [`level'% Conf. Interval]"
	display as text "{hline 33}{c +}{hline 43}"
	display as result %10.0g return(N) " " %10.0g `n1' " " %10.0g `n0' as text " {c |}" as result %9.4f `area' /*
	*/ "   " %9.4f `se' "  " %9.4f return(lb) "   " %9.4f return(ub)
end

* Of a success the share of failures whose probability is lower, ties by half; of a failure that of successes above.
program define Placements, sortpreserve
	args p y w v
	tempvar at below
	quietly {
		generate double `v' = .
		forvalues o = 0/1 {
			summarize `w' if `y' == `o', meanonly
			local n = r(sum)
			capture drop `at' `below'
			error _rc == 1
			generate double `at' = cond(`y' == `o', `w', 0) if `y' < .
			sort `p'
			generate double `below' = sum(`at')
			by `p': replace `at' = sum(`at')
			by `p': replace `v' = (`below'[_N]-`at'[_N]/2)/`n' if `y' == 1-`o'
		}
		replace `v' = 1-`v' if `y' == 0
	}
end
