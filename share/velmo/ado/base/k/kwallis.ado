*! version 1.0.0  22nov2026
* kwallis: whether several samples are of one distribution (Kruskal and Wallis 1952)
program define kwallis, rclass byable(recall)
	version 7.0
	syntax varname(numeric) [if] [in], BY(varname)
	marksample touse
	tempvar group first rank
	tempname H
	quietly {
		_bygroup `group' = `by' if `touse', first(`first')
		local k = r(N_groups)
		replace `touse' = 0 if `group' == .
		local all = r(N)
		egen double `rank' = rank(`varlist') if `touse'
	}
	if `k' < 2 {
		error cond(`k', 148, 2000)
	}
	display as text _newline "Kruskal-Wallis test"
	display as text _newline "{hline 13}{c TT}{hline 27}"
	display as text %12s abbrev("`by'",12) " {c |}      Obs     Rank sum"
	display as text "{hline 13}{c +}{hline 27}"
	scalar `H' = 0
	forvalues i = 1/`k' {
		quietly summarize `rank' if `group' == `i'
		scalar `H' = `H'+r(sum)^2/r(N)
		local at = `first'[`i']
		local n = r(N)
		local sum = r(sum)
		_valuetext `by' `at'
		display as text %12s abbrev(_local(text),12) " {c |}" as result %9.0f `n' _skip(4) %9.0g `sum'
	}
	display as text "{hline 13}{c BT}{hline 27}"
	_tiesum `rank'
	scalar `H' = (12*`H'/(`all'*(`all'+1))-3*(`all'+1))/(1-`ties'/(`all'^3-`all'))
	display as text "H0: all are of one distribution"
	display as text "    chi2(" as result `k'-1 as text ") = " as result %8.3f `H' as text _column(28) "Prob > chi2 = " /*
		*/ as result %6.4f chi2tail(`k'-1, `H') as text cond(`ties', "    corrected for ties", "")
	return scalar p = chi2tail(`k'-1, `H')
	return scalar df = `k'-1
	return scalar chi2 = `H'
	return scalar N = `all'
end
