*! version 1.0.0  22nov2026
* kendall: rank correlations by concordant pairs (Kendall 1938), of the observations that have all values
program define kendall, rclass byable(recall)
	version 7.0
	syntax varlist(numeric min=2) [if] [in]
	marksample touse
	quietly count if `touse'
	local n = r(N)
	if `n' < 2 {
		error cond(`n', 2001, 2000)
	}
	tempname tau_a tau_b p z S
	local k : word count `varlist'
	if `k' == 2 {
		Pair `varlist' `touse' `n' `tau_a' `tau_b' `p' `z' `S'
		display as text _newline "Kendall's rank correlation" _newline
		display as text "    Number of obs = " as result %9.0f `n'
		display as text "            tau-a = " as result %9.4f `tau_a'
		display as text "            tau-b = " as result %9.4f `tau_b'
		display as text "            score = " as result %9.0f `S'
		display as text "H0: `: word 1 of `varlist'' and `: word 2 of `varlist'' are independent"
		display as text "      Prob > |z|  = " as result %9.4f `p' as text cond("`exact'" == "1", "  (exact)", "")
		return scalar p = `p'
		return scalar z = `z'
		return scalar tau_b = `tau_b'
		return scalar tau_a = `tau_a'
	}
	else {
		display as text _newline "Kendall's tau-b, and its significance" _column(50) "Number of obs = " as result %9.0f `n' _newline
		display as text _skip(13) "{c |}" _continue
		foreach x of local varlist {
			display as text %9s abbrev("`x'",8) _continue
		}
		display as text _newline "{hline 13}{c +}{hline `=9*`k''}"
		tempname Tau
		matrix `Tau' = J(`k',`k',1)
		matrix rownames `Tau' = `varlist'
		matrix colnames `Tau' = `varlist'
		forvalues i = 1/`k' {
			local x : word `i' of `varlist'
			display as text %12s abbrev("`x'",12) " {c |}" _continue
			local below
			forvalues j = 1/`i' {
				Pair `x' `: word `j' of `varlist'' `touse' `n' `tau_a' `tau_b' `p' `z' `S'
				_matcell `Tau' `i' `j' = `tau_b'
				_matcell `Tau' `j' `i' = `tau_b'
				display as result %9.4f `tau_b' _continue
				if `j' < `i' {
					local shown : display %9.4f `p'
					local below `"`below' `shown'"'
				}
			}
			display
			if `i' > 1 {
				display as text _skip(13) "{c |}" _continue
				foreach shown of local below {
					display as result %9s "`shown'" _continue
				}
				display
			}
		}
		matrix rename `Tau' return(Tau)
	}
	return scalar N = `n'
end

* Of two variables over the observations; leaves with the caller whether p is exact. The variance without correlation,
* with ties on both sides, is Kendall's (1970).
program define Pair
	args x y touse n tau_a tau_b sig z S
	tempvar s X Y
	tempname v
	preserve
	quietly {
		keep if `touse'
		generate double `X' = `x'
		generate double `Y' = `y'
		keep `X' `Y'
		generate double `s' = 0
		forvalues i = 2/`n' {
			replace `s' = `s'+sign(`X'-`X'[`i'])*sign(`Y'-`Y'[`i']) in 1/`i'
		}
		summarize `s'
		scalar `S' = r(sum)
	}
	Ties `X' x
	Ties `Y' y
	local all = `n'*(`n'-1)
	scalar `tau_a' = `S'/(`all'/2)
	scalar `tau_b' = `S'/sqrt((`all'-`x2')/2*(`all'-`y2')/2)
	scalar `v' = (`all'*(2*`n'+5)-`x5'-`y5')/18+`x2'*`y2'/(2*`all')
	if `n' > 2 {
		scalar `v' = `v'+`x3'*`y3'/(9*`all'*(`n'-2))
	}
	scalar `z' = (`S'-sign(`S'))/sqrt(`v')
	scalar `sig' = 2*norm(-abs(`z'))
	c_local exact 0
	if `n' < 50 & `x2'+`y2' == 0 {
		_ranktail kendall `n' 0 `=(`all'/2-abs(`S'))/2'
		scalar `sig' = min(1, 2*`p')
		c_local exact 1
	}
end

* Sums over groups of t equal values: t(t-1), t(t-1)(t-2), t(t-1)(2t+5), as #2, #3 and #5.
program define Ties
	args x name
	tempvar group t term
	quietly {
		_bygroup `group' = `x', count(`t')
		generate double `term' = `t'-1
		summarize `term'
		c_local `name'2 = r(sum)
		replace `term' = (`t'-1)*(`t'-2)
		summarize `term'
		c_local `name'3 = r(sum)
		replace `term' = (`t'-1)*(2*`t'+5)
		summarize `term'
		c_local `name'5 = r(sum)
	}
end
