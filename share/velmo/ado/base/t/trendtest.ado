*! version 1.0.0  22nov2026
* trendtest: whether the share of a variable of 0 and 1 goes up or down with ordered groups (Cochran 1954, Armitage 1955)
program define trendtest, rclass byable(recall)
	version 7.0
	syntax varname(numeric) [if] [in], BY(varname numeric)
	marksample touse
	markout `touse' `by'
	tempvar group first s
	tempname z
	quietly count if `touse' & `varlist' != 0 & `varlist' != 1
	if r(N) {
		display as error "`varlist' has values other than 0 and 1"
		exit 459
	}
	_bygroup `group' = `by' if `touse', first(`first')
	local n = r(N)
	local k = r(N_groups)
	if `k' < 2 {
		error cond(`k', 148, 2000)
	}
	display as text _newline "{hline 13}{c TT}{hline 30}"
	display as text %12s abbrev("`by'",12) " {c |}      Obs   " %12s abbrev("`varlist'",12)
	display as text "{hline 13}{c +}{hline 30}"
	forvalues i = 1/`k' {
		local at = `first'[`i']
		quietly summarize `varlist' if `group' == `i'
		local obs = r(N)
		local share = r(mean)
		_valuetext `by' `at'
		display as text %12s abbrev(_local(text),12) " {c |}" as result %9.0f `obs' _skip(6) %9.4f `share'
	}
	display as text "{hline 13}{c BT}{hline 30}"
	quietly {
		summarize `varlist' if `touse'
		local share = r(mean)
		summarize `by' if `touse'
		scalar `z' = r(Var)*(`n'-1)
		generate double `s' = (`varlist'-`share')*(`by'-r(mean)) if `touse'
		summarize `s'
		scalar `z' = r(sum)/sqrt(`share'*(1-`share')*`z')
	}
	display as text "H0: the share of `varlist' has no trend over `by'"
	display as text "    z = " as result %8.3f `z' as text _column(22) "Prob > |z| = " as result %6.4f 2*norm(-abs(`z'))
	return scalar p = 2*norm(-abs(`z'))
	return scalar z = `z'
	return scalar N = `n'
end
