*! version 1.0.0  22nov2026
* quantiles: percentiles with intervals that take no distribution for granted (binomial ranks)
program define quantiles, rclass byable(recall)
	version 7.0
	syntax [varlist(numeric ts)] [if] [in] [, AT(numlist >0 <100) Level(integer -1)]
	_level `level'
	if "`at'" == "" {
		local at 25 50 75
	}
	marksample touse, novarlist
	tempname c low high
	foreach x of local varlist {
		quietly count if `touse' & `x' < .
		if r(N) == 0 {
			error 2000
		}
	}
	display as text _newline "{hline 13}{c TT}{hline 56}"
	display as text "    Variable {c |}       Obs   Percentile     Value     [`level'% Conf. Interval]"
	display as text "{hline 13}{c +}{hline 56}"
	local held 0
	foreach x of local varlist {
		local i 0
		foreach q of local at {
			local i = `i'+1
			Ranks `x' `touse' `q' `level' `c' `low' `high'
			display as text %12s cond(`i' == 1, abbrev("`x'",12), "") " {c |}" _continue
			if `i' == 1 {
				display as result %10.0f `n' _continue
			}
			display as result _column(26) %11.0g `q' _skip(2) %9.0g `c' _skip(4) %9.0g `low' _skip(2) %9.0g `high' /*
				*/ as text cond(`end', "*", "")
			local held = max(`held', `end')
			return scalar ub_`i' = `high'
			return scalar lb_`i' = `low'
			return scalar c_`i' = `c'
		}
		return scalar N = `n'
	}
	display as text "{hline 13}{c BT}{hline 56}"
	if `held' {
		display as text "* an extreme of the data stands for a limit that would lie beyond"
	}
end

* The percentile and the order statistics that bound it. Leaves n, and end: an extreme stands for a limit.
program define Ranks
	args x touse q level c low high
	tempvar v
	tempname tail
	_pctile `x' if `touse', percentiles(`q')
	scalar `c' = r(r1)
	local p = `q'/100
	scalar `tail' = (1-`level'/100)/2
	preserve
	quietly {
		generate double `v' = `x' if `touse'
		keep if `v' < .
		sort `v'
	}
	local n = _N
	* the largest l with P(B < l) and the smallest u with P(B >= u) at most the tail, B binomial
	BinomialRank `n' `p' `tail'
	local l `rank'
	BinomialRank `n' 1-`p' `tail'
	local u = `n'+1-`rank'
	c_local end = `l' < 1 | `u' > `n'
	scalar `low' = `v'[max(`l',1)]
	scalar `high' = `v'[min(`u',`n')]
	c_local n `n'
end

* The largest l, 0 for none, with P(B < l) at most the tail. Sums begin where terms begin to count.
program define BinomialRank
	args n p tail
	local p = `p'
	tempname term sum
	local i = max(0, int(`n'*`p'-9*sqrt(`n'*`p'*(1-`p')))-1)
	scalar `term' = exp(lnfact(`n')-lnfact(`i')-lnfact(`n'-`i')+`i'*ln(`p')+(`n'-`i')*ln(1-`p'))
	scalar `sum' = `term'
	local l 0
	while `sum' <= `tail' & `i' < `n' {
		local i = `i'+1
		local l `i'
		scalar `term' = `term'*(`n'-`i'+1)/`i'*`p'/(1-`p')
		scalar `sum' = `sum'+`term'
	}
	c_local rank `l'
end
