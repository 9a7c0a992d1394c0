*! version 1.0.0  22nov2026
* spearman: rank correlations (Spearman 1904), of the observations that have all values
program define spearman, rclass byable(recall)
	version 7.0
	syntax varlist(numeric min=2) [if] [in]
	marksample touse
	quietly count if `touse'
	local n = r(N)
	if `n' < 2 {
		error cond(`n', 2001, 2000)
	}
	foreach x of local varlist {
		tempvar r
		quietly egen double `r' = rank(`x') if `touse'
		local ranks `ranks' `r'
	}
	local k : word count `varlist'
	if `k' == 2 {
		tempname rho p
		quietly correlate `ranks' if `touse'
		scalar `rho' = r(rho)
		scalar `p' = cond(abs(`rho') < 1, tprob(`n'-2, `rho'*sqrt((`n'-2)/(1-`rho'^2))), cond(`rho' < . & `n' > 2, 0, .))
		display as text _newline "Spearman's rank correlation" _newline
		display as text "    Number of obs = " as result %9.0f `n'
		display as text "              rho = " as result %9.4f `rho'
		display as text "H0: `: word 1 of `varlist'' and `: word 2 of `varlist'' are independent"
		display as text "       Prob > |t| = " as result %9.4f `p'
		return scalar p = `p'
		return scalar rho = `rho'
	}
	else {
		tempname Rho r
		matrix `Rho' = J(`k',`k',1)
		matrix rownames `Rho' = `varlist'
		matrix colnames `Rho' = `varlist'
		forvalues i = 1/`k' {
			forvalues j = 1/`i' {
				quietly correlate `: word `i' of `ranks'' `: word `j' of `ranks'' if `touse'
				scalar `r' = r(rho)
				_matcell `Rho' `i' `j' = `r'
				_matcell `Rho' `j' `i' = `r'
			}
		}
		display as text _newline "Spearman's rank correlations" _column(50) "Number of obs = " as result %9.0f `n' _newline
		display as text _skip(13) "{c |}" _continue
		foreach x of local varlist {
			display as text %9s abbrev("`x'",8) _continue
		}
		display as text _newline "{hline 13}{c +}{hline `=9*`k''}"
		forvalues i = 1/`k' {
			display as text %12s abbrev("`: word `i' of `varlist''",12) " {c |}" _continue
			forvalues j = 1/`i' {
				display as result %9.4f el(`Rho',`i',`j') _continue
			}
			display
		}
		matrix rename `Rho' return(Rho)
	}
	return scalar N = `n'
end
