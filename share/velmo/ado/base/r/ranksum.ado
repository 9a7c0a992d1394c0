*! version 1.0.0  22nov2026
* ranksum: whether two samples are of one distribution (Wilcoxon 1945; Mann and Whitney 1947)
program define ranksum, rclass byable(recall)
	version 7.0
	syntax varname(numeric) [if] [in], BY(varname)
	marksample touse, novarlist
	tempvar A B all rank
	tempname m W U z v
	_samples `A' `B' `m' `varlist' `touse' "`by'" ""
	local one : escaped one
	local two : escaped two
	quietly {
		generate double `all' = cond(`A' < ., `A', `B')
		egen double `rank' = rank(`all')
		count if `B' < .
		local n2 = r(N)
		summarize `rank' if `A' < .
		local n1 = r(N)
		scalar `W' = r(sum)
	}
	local n = `n1'+`n2'
	scalar `U' = `W'-`n1'*(`n1'+1)/2
	_tiesum `all'
	scalar `v' = `n1'*`n2'/12*(`n'+1-`ties'/(`n'*(`n'-1)))
	scalar `z' = `U'-`n1'*`n2'/2
	scalar `z' = (`z'-sign(`z')*.5)/sqrt(`v')
	local p .
	if `n1' < 50 & `n2' < 50 & !`ties' {
		_ranktail wilcoxon `n1' `n2' `=min(`U', `n1'*`n2'-`U')'
		local p = min(1, 2*`p')
	}
	display as text _newline "Rank sum test"
	display as text _newline "{hline 13}{c TT}{hline 40}"
	display as text %12s abbrev("`by'",12) " {c |}      Obs     Rank sum     Expected"
	display as text "{hline 13}{c +}{hline 40}"
	Row `"`one'"' `n1' `W' `n1'*(`n'+1)/2
	Row `"`two'"' `n2' `n'*(`n'+1)/2-`W' `n2'*(`n'+1)/2
	display as text "{hline 13}{c BT}{hline 40}"
	_rankverdict "both are of one distribution" `z' `p' "`ties'"
	return scalar p_exact = `p'
	return scalar p = 2*norm(-abs(`z'))
	return scalar z = `z'
	return scalar W = `W'
	return scalar N_2 = `n2'
	return scalar N_1 = `n1'
end

program define Row
	args label n sum expected
	display as text %12s abbrev(_local(label),12) " {c |}" as result %9.0f `n' _skip(4) %9.0g `sum' _skip(4) %9.0g `expected'
end
