*! version 1.0.0  22nov2026
* signtest: whether the differences of pairs are above 0 as often as below (binomial); differences of 0 leave
program define signtest, rclass byable(recall)
	version 7.0
	syntax varname(numeric) =/exp [if] [in]
	marksample touse, novarlist
	tempvar d
	tempname p term
	_pairdifference `d' `varlist' `touse' `exp'
	quietly {
		count if `d' > 0 & `d' < .
		local pos = r(N)
		count if `d' < 0
		local neg = r(N)
		count if `d' == 0
		local zeros = r(N)
	}
	local n = `pos'+`neg'
	if `n'+`zeros' == 0 {
		error 2000
	}
	* the tail from the larger count on, from its largest term
	local k = max(`pos', `neg')
	scalar `term' = exp(lnfact(`n')-lnfact(`k')-lnfact(`n'-`k')-`n'*ln(2))
	scalar `p' = 0
	local i `k'
	while `i' <= `n' & `term' > 1e-17*`p' {
		scalar `p' = `p'+`term'
		local i = `i'+1
		scalar `term' = `term'*(`n'-`i'+1)/`i'
	}
	scalar `p' = min(1, 2*`p')
	display as text _newline "Sign test"
	display as text _newline "{hline 13}{c TT}{hline 30}"
	display as text "  Difference {c |}      Obs     Expected"
	display as text "{hline 13}{c +}{hline 30}"
	display as text "    positive {c |}" as result %9.0f `pos' _skip(4) %9.0g `n'/2
	display as text "    negative {c |}" as result %9.0f `neg' _skip(4) %9.0g `n'/2
	display as text "        zero {c |}" as result %9.0f `zeros'
	display as text "{hline 13}{c BT}{hline 30}"
	display as text "H0: differences are above 0 as often as below"
	display as text "    Prob (both sides) = " as result %6.4f `p'
	return scalar p = `p'
	return scalar N_neg = `neg'
	return scalar N_pos = `pos'
end
