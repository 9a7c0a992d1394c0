*! version 1.0.0  22nov2026
* twobytwo: odds ratio, risk ratio and risk difference of a table of cases by exposure; by strata; of pairs
program define twobytwo, rclass byable(recall)
	version 7.0
	gettoken first : 0, parse(" ,")
	capture confirm number `first'
	error _rc == 1
	if !_rc {
		if _by() {
			error 190
		}
		Typed `0'
		local paired
	}
	else {
		syntax varlist(min=2 max=2 numeric) [fweight] [if] [in] [, BY(varlist) PAIRed Level(integer -1)]
		_level `level'
		if "`by'" != "" & "`paired'" != "" {
			display as error "by() and paired may not be combined"
			exit 184
		}
		marksample touse
		tempvar w
		quietly generate double `w' = `touse'
		if "`weight'" != "" {
			quietly replace `w' `exp' if `touse'
		}
		foreach x of local varlist {
			quietly count if `touse' & `x' != 0 & `x' != 1
			if r(N) {
				display as error "`x' has values other than 0 and 1"
				exit 459
			}
		}
		Cells `w' `touse' `varlist'
		local heads `varlist'
	}
	if "`paired'" != "" {
		Pairs `a' `b' `c' `d' `heads'
		return add
		exit
	}
	Table `a' `b' `c' `d' `heads'
	Measures `a' `b' `c' `d' `level'
	return add
	if "`by'" != "" {
		Strata `w' `touse' `level' "`by'" `heads'
		return add
	}
end

* # # # #: exposed cases, unexposed cases, exposed others, unexposed others.
program define Typed
	local rest `0'
	foreach cell in a b c d {
		gettoken n rest : rest, parse(" ,")
		capture confirm integer number `n'
		error _rc == 1
		if _rc {
			display as error "four whole numbers are required"
			exit 198
		}
		if `n' < 0 {
			display as error "counts may not be negative"
			exit 198
		}
		c_local `cell' = `n'
	}
	local 0 `rest'
	syntax [, Level(integer -1)]
	_level `level'
	c_local level `level'
	c_local heads cases exposed
end

* Leaves the four counts with the caller.
program define Cells
	args w if x e
	local i 0
	foreach cell in "1 1" "1 0" "0 1" "0 0" {
		gettoken X E : cell
		local i = `i'+1
		quietly summarize `w' if `if' & `x' == `X' & `e' == `E', meanonly
		c_local `: word `i' of a b c d' = cond(r(N), r(sum), 0)
		local all = cond(r(N), r(sum), 0)+0`all'
	}
	if `all' == 0 {
		error 2000
	}
end

program define Table
	args a b c d x e
	display as text _newline _skip(13) "{c |}" _column(20) %-18s abbrev("`e'",18) "{c |}"
	display as text %12s abbrev("`x'",12) " {c |}         1          0  {c |}      Total"
	display as text "{hline 13}{c +}{hline 22}{c +}{hline 12}"
	display as text "           1 {c |}" as result %10.0f `a' _skip(1) %10.0f `b' as text " {c |}" as result %11.0f `a'+`b'
	display as text "           0 {c |}" as result %10.0f `c' _skip(1) %10.0f `d' as text " {c |}" as result %11.0f `c'+`d'
	display as text "{hline 13}{c +}{hline 22}{c +}{hline 12}"
	display as text "       Total {c |}" as result %10.0f `a'+`c' _skip(1) %10.0f `b'+`d' as text " {c |}" /*
		*/ as result %11.0f `a'+`b'+`c'+`d'
end

* Intervals of logarithms (Woolf 1955; Katz and others 1978), Wald's of the difference.
program define Measures, rclass
	args a b c d level
	tempname z or rr rd s1 s2 s3 chi2 p
	local n = `a'+`b'+`c'+`d'
	scalar `z' = invnorm(1-(1-`level'/100)/2)
	scalar `or' = cond(min(`a',`b',`c',`d') > 0, `a'*`d'/(`b'*`c'), .)
	scalar `s1' = sqrt(1/`a'+1/`b'+1/`c'+1/`d')
	scalar `rr' = `a'/(`a'+`c')/(`b'/(`b'+`d'))
	scalar `s2' = sqrt(1/`a'-1/(`a'+`c')+1/`b'-1/(`b'+`d'))
	scalar `rd' = `a'/(`a'+`c')-`b'/(`b'+`d')
	scalar `s3' = sqrt(`a'*`c'/(`a'+`c')^3+`b'*`d'/(`b'+`d')^3)
	scalar `chi2' = `n'*(`a'*`d'-`b'*`c')^2/((`a'+`b')*(`c'+`d')*(`a'+`c')*(`b'+`d'))
	Fisher `a' `b' `c' `d' `p'
	display as text _newline "{hline 21}{c TT}{hline 38}"
	display as text _skip(21) "{c |}   Estimate     [`level'% Conf. Interval]"
	display as text "{hline 21}{c +}{hline 38}"
	Row "Odds ratio" `or' `or'*exp(-`z'*`s1') `or'*exp(`z'*`s1')
	Row "Risk ratio" `rr' `rr'*exp(-`z'*`s2') `rr'*exp(`z'*`s2')
	Row "Risk difference" `rd' `rd'-`z'*`s3' `rd'+`z'*`s3'
	display as text "{hline 21}{c BT}{hline 38}"
	display as text "    chi2(1) = " as result %8.2f `chi2' as text _column(28) "Prob > chi2 = " as result %6.4f chi2tail(1,`chi2')
	display as text _column(20) "Fisher's exact Prob = " as result %6.4f `p'
	return scalar p_exact = `p'
	return scalar p = chi2tail(1, `chi2')
	return scalar chi2 = `chi2'
	return scalar rd = `rd'
	return scalar ub_rr = `rr'*exp(`z'*`s2')
	return scalar lb_rr = `rr'*exp(-`z'*`s2')
	return scalar rr = `rr'
	return scalar ub_or = `or'*exp(`z'*`s1')
	return scalar lb_or = `or'*exp(-`z'*`s1')
	return scalar or = `or'
end

program define Row
	args label x low high
	display as text %20s "`label'" " {c |}" as result _skip(2) %9.0g `x' _skip(4) %9.0g `low' _skip(2) %9.0g `high'
end

* The share of the tables with these margins that are no likelier than this one; terms are relative to its own.
program define Fisher
	args a b c d p
	tempname term total below
	scalar `total' = 1
	scalar `below' = 1
	foreach way in 1 -1 {
		scalar `term' = 1
		* the four cells, of which the first two change places on the way down
		local A = cond(`way' == 1, `a', `b')
		local B = cond(`way' == 1, `b', `a')
		local C = cond(`way' == 1, `c', `d')
		local D = cond(`way' == 1, `d', `c')
		while `B' > 0 & `C' > 0 {
			scalar `term' = `term'*`B'*`C'/((`A'+1)*(`D'+1))
			scalar `total' = `total'+`term'
			if `term' <= 1+1e-7 {
				scalar `below' = `below'+`term'
				if `term' < 1e-18*`total' {
					continue, break
				}
			}
			local A = `A'+1
			local D = `D'+1
			local B = `B'-1
			local C = `C'-1
		}
	}
	scalar `p' = min(1, `below'/`total')
end

* Odds ratios of the strata, pooled (Mantel and Haenszel 1959, its error after Robins, Breslow and Greenland 1986), and
* their homogeneity (Breslow and Day 1980).
program define Strata, rclass
	args w touse level by x e
	tempvar group first
	tempname R S or se z h A v pr ps qs
	_bygroup `group' = `by' if `touse', first(`first')
	local k = r(N_groups)
	scalar `R' = 0
	scalar `S' = 0
	foreach sum in pr ps qs {
		scalar ``sum'' = 0
	}
	display as text _newline "{hline 21}{c TT}{hline 38}"
	display as text %20s abbrev("`by'",20) " {c |} Odds ratio       Weight"
	display as text "{hline 21}{c +}{hline 38}"
	forvalues i = 1/`k' {
		Cells `w' "`group' == `i'" `x' `e'
		foreach cell in a b c d {
			local `cell'`i' ``cell''
		}
		local n = `a'+`b'+`c'+`d'
		local at = `first'[`i']
		local label
		foreach name of local by {
			_valuetext `name' `at'
			local label `"`label' `text'"'
		}
		display as text %20s abbrev(trim(_local(label)),20) " {c |}" as result _skip(2) /*
			*/ %9.0g cond(min(`a',`b',`c',`d') > 0, `a'*`d'/(`b'*`c'), .) _skip(4) %9.0g `b'*`c'/`n'
		scalar `R' = `R'+`a'*`d'/`n'
		scalar `S' = `S'+`b'*`c'/`n'
		scalar `pr' = `pr'+(`a'+`d')*`a'*`d'/`n'^2
		scalar `ps' = `ps'+((`a'+`d')*`b'*`c'+(`b'+`c')*`a'*`d')/`n'^2
		scalar `qs' = `qs'+(`b'+`c')*`b'*`c'/`n'^2
	}
	scalar `or' = cond(`S' > 0, `R'/`S', .)
	scalar `se' = sqrt(`pr'/(2*`R'^2)+`ps'/(2*`R'*`S')+`qs'/(2*`S'^2))
	scalar `z' = invnorm(1-(1-`level'/100)/2)
	* a stratum in which the table is determined by its margins tells nothing of it
	scalar `h' = 0
	local df -1
	forvalues i = 1/`k' {
		Expected `A' `v' `or' `a`i'' `b`i'' `c`i'' `d`i''
		if `v' > 0 & `v' < . {
			scalar `h' = `h'+(`a`i''-`A')^2/`v'
			local df = `df'+1
		}
	}
	local df = cond(`or' < ., `df', .)
	scalar `h' = cond(`df' > 0 & `df' < ., `h', .)
	display as text "{hline 21}{c +}{hline 38}"
	Row "Mantel-Haenszel" `or' `or'*exp(-`z'*`se') `or'*exp(`z'*`se')
	display as text "{hline 21}{c BT}{hline 38}"
	display as text "Homogeneity (Breslow-Day): chi2(" as result `df' as text ") = " as result %8.2f `h' /*
		*/ as text _column(48) "Prob > chi2 = " as result %6.4f chi2tail(`df', `h')
	return scalar p_h = chi2tail(`df', `h')
	return scalar df_h = `df'
	return scalar chi2_h = `h'
	return scalar ub_mh = `or'*exp(`z'*`se')
	return scalar lb_mh = `or'*exp(-`z'*`se')
	return scalar or_mh = `or'
end

* The expected count of exposed cases under an odds ratio, and its variance.
program define Expected
	args A v or a b c d
	tempname l
	local m = `a'+`b'
	local e = `a'+`c'
	local n = `a'+`b'+`c'+`d'
	scalar `l' = `n'-`m'-`e'+`or'*(`m'+`e')
	if abs(`or'-1) < 1e-12 {
		scalar `A' = `m'*`e'/`n'
	}
	else {
		* the root that lies among the possible counts, in the form that loses no digits
		scalar `A' = 2*`or'*`m'*`e'/(`l'+sqrt(`l'^2+4*(1-`or')*`or'*`m'*`e'))
	}
	scalar `v' = 1/(1/`A'+1/(`m'-`A')+1/(`e'-`A')+1/(`n'-`m'-`e'+`A'))
end

* McNemar 1947.
program define Pairs, rclass
	args a b c d x e
	Table `a' `b' `c' `d' `x' `e'
	tempname chi2
	scalar `chi2' = (`b'-`c')^2/(`b'+`c')
	display as text _newline "McNemar's test of pairs"
	display as text "    chi2(1) = " as result %8.2f `chi2' as text _column(28) "Prob > chi2 = " as result %6.4f chi2tail(1,`chi2')
	display as text "    Ratio of discordant pairs = " as result %9.0g `b'/`c'
	return scalar or = `b'/`c'
	return scalar p = chi2tail(1, `chi2')
	return scalar chi2 = `chi2'
end
