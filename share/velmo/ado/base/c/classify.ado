*! version 1.0.0  22nov2026
* classify: outcomes against what a cut of the fitted probability says of them
program define classify, rclass
	version 7.0
	syntax [, CUToff(real .5)]
	if `cutoff' < 0 | `cutoff' > 1 {
		display as error "cutoff() must be between 0 and 1"
		exit 198
	}
	tempvar p y w
	_binaryfit `p' `y' `w'
	tempname n00 n01 n10 n11
	forvalues s = 0/1 {
		forvalues o = 0/1 {
			summarize `w' if `y' == `o' & (`p' >= `cutoff') == `s' & `p' < ., meanonly
			scalar `n`s'`o'' = cond(r(N), r(sum), 0)
		}
	}
	tempname n0 n1 N
	scalar `n1' = `n01'+`n11'
	scalar `n0' = `n00'+`n10'
	scalar `N' = `n0'+`n1'
	return scalar N = `N'
	return scalar cutoff = `cutoff'
	return scalar correct = (`n11'+`n00')/`N'
	return scalar spec = `n00'/`n0'
	return scalar sens = `n11'/`n1'
	display as text _newline "Classification by `e(cmd)' of " abbrev("`e(depvar)'",20) ", positive at p >= " /*
	*/ as result `cutoff' _newline
	display as text _skip(13) "{c |}       Outcome" _newline "  Classified {c |}         1          0 {c |}     Total"
	display as text "{hline 13}{c +}{hline 22}{c +}{hline 11}"
	Row "+" `n11' `n10'
	Row "-" `n01' `n00'
	display as text "{hline 13}{c +}{hline 22}{c +}{hline 11}"
	Row Total `n1' `n0'
	display
	Share "Sensitivity" "Pr(+ | 1)" `n11' `n1'
	Share "Specificity" "Pr(- | 0)" `n00' `n0'
	Share "Positive predictive value" "Pr(1 | +)" `n11' `n11'+`n10'
	Share "Negative predictive value" "Pr(0 | -)" `n00' `n00'+`n01'
	Share "Correctly classified" "" `n11'+`n00' `N'
end

program define Row
	args name one zero
	display as text %12s "`name'" " {c |}" as result %10.0g `one' " " %10.0g `zero' as text " {c |}" /*
	*/ as result %10.0g `one'+`zero'
end

program define Share
	args name what part whole
	display as text "  `name'" _col(32) "`what'" _col(46) as result %6.4f (`part')/(`whole')
end
