*! version 1.0.0  22nov2026
* signrank: whether the differences of pairs are symmetric about 0 (Wilcoxon 1945); differences of 0 leave
program define signrank, rclass byable(recall)
	version 7.0
	syntax varname(numeric) =/exp [if] [in]
	marksample touse, novarlist
	tempvar d size rank
	tempname V z v
	_pairdifference `d' `varlist' `touse' `exp'
	quietly {
		count if `d' == 0
		local zeros = r(N)
		replace `d' = . if `d' == 0
		generate double `size' = abs(`d')
		egen double `rank' = rank(`size')
		count if `d' < .
		local n = r(N)
		summarize `rank' if `d' > 0 & `d' < .
		local pos = r(N)
		scalar `V' = cond(r(N), r(sum), 0)
	}
	if `n'+`zeros' == 0 {
		error 2000
	}
	_tiesum `size'
	scalar `v' = `n'*(`n'+1)*(2*`n'+1)/24-`ties'/48
	scalar `z' = `V'-`n'*(`n'+1)/4
	scalar `z' = (`z'-sign(`z')*.5)/sqrt(`v')
	local p .
	if `n' & `n' < 50 & !`ties' {
		_ranktail signed `n' 0 `=min(`V', `n'*(`n'+1)/2-`V')'
		local p = min(1, 2*`p')
	}
	display as text _newline "Signed rank test"
	display as text _newline "{hline 13}{c TT}{hline 40}"
	display as text "  Difference {c |}      Obs     Rank sum     Expected"
	display as text "{hline 13}{c +}{hline 40}"
	Row positive `pos' `V' `n'*(`n'+1)/4
	Row negative `n'-`pos' `n'*(`n'+1)/2-`V' `n'*(`n'+1)/4
	Row zero `zeros' . .
	display as text "{hline 13}{c BT}{hline 40}"
	_rankverdict "differences are symmetric about 0" `z' `p' "`ties'"
	return scalar p_exact = `p'
	return scalar p = 2*norm(-abs(`z'))
	return scalar z = `z'
	return scalar V = `V'
	return scalar N_zero = `zeros'
	return scalar N = `n'
end

program define Row
	args label n sum expected
	display as text %12s "`label'" " {c |}" as result %9.0f `n' _skip(4) %9.0g `sum' _skip(4) %9.0g `expected'
end
