*! version 1.0.0  22nov2026
* normtest: whether variables are normal: skewness and kurtosis, and the W of Shapiro and Wilk after Royston 1995
program define normtest, rclass byable(recall)
	version 7.0
	syntax varlist(numeric ts) [if] [in]
	marksample touse, novarlist
	tempname W p
	foreach x of local varlist {
		quietly summarize `x' if `touse'
		if r(N) < 3 {
			error cond(r(N), 2001, 2000)
		}
	}
	display as text _newline "{hline 13}{c TT}{hline 54}"
	display as text "    Variable {c |}     Obs   Skewness   Kurtosis          W     Prob < W"
	display as text "{hline 13}{c +}{hline 54}"
	foreach x of local varlist {
		Shapiro `W' `p' `x' `touse'
		quietly summarize `x' if `touse', detail
		display as text %12s abbrev("`x'",12) " {c |}" as result %8.0f r(N) _skip(2) %9.4f r(skewness) _skip(2) %9.4f r(kurtosis) /*
			*/ _skip(2) %9.5f `W' _skip(3) %9.4f `p'
		return scalar p = `p'
		return scalar W = `W'
		return scalar kurtosis = r(kurtosis)
		return scalar skewness = r(skewness)
		return scalar N = r(N)
	}
	display as text "{hline 13}{c BT}{hline 54}"
end

* W and its probability, missing outside 3 to 5000 observations or without variance.
program define Shapiro
	args W p x touse
	tempvar v m a
	tempname ss first second fac y g mu s
	scalar `W' = .
	scalar `p' = .
	preserve
	quietly {
		generate double `v' = `x' if `touse'
		keep `v'
		keep if `v' < .
		sort `v'
		local n = _N
		summarize `v'
		scalar `fac' = r(Var)*(`n'-1)
		if `n' > 5000 | r(max) == r(min) {
			exit
		}
		* centred, so that large values keep their digits
		replace `v' = `v'-r(mean)
		generate double `m' = invnorm((_n-.375)/(`n'+.25))
		replace `m' = sum(`m'^2)
	}
	scalar `ss' = `m'[`n']
	quietly replace `m' = invnorm((_n-.375)/(`n'+.25))
	local u = 1/sqrt(`n')
	scalar `first' = `m'[`n']/sqrt(`ss')+.221157*`u'-.147981*`u'^2-2.071190*`u'^3+4.434685*`u'^4-2.706056*`u'^5
	scalar `second' = `m'[`n'-1]/sqrt(`ss')+.042981*`u'-.293762*`u'^2-1.752461*`u'^3+5.682633*`u'^4-3.582633*`u'^5
	quietly {
		if `n' == 3 {
			scalar `first' = sqrt(.5)
			generate double `a' = `first'*(_n-2)
		}
		else if `n' <= 5 {
			generate double `a' = `m'/sqrt((`ss'-2*`m'[`n']^2)/(1-2*`first'^2))
		}
		else {
			generate double `a' = `m'/sqrt((`ss'-2*`m'[`n']^2-2*`m'[`n'-1]^2)/(1-2*`first'^2-2*`second'^2))
			replace `a' = `second' in `=`n'-1'
			replace `a' = -`second' in 2
		}
		replace `a' = `first' in `n'
		replace `a' = -`first' in 1
		replace `a' = sum(`a'*`v')
	}
	scalar `W' = min(1, `a'[`n']^2/`fac')
	if `n' == 3 {
		scalar `p' = max(0, 6/_pi*(asin(sqrt(`W'))-asin(sqrt(.75))))
		exit
	}
	scalar `y' = ln(1-`W')
	local l = ln(`n')
	if `n' <= 11 {
		scalar `g' = -2.273+.459*`n'
		if `y' >= `g' {
			scalar `p' = 0
			exit
		}
		scalar `y' = -ln(`g'-`y')
		scalar `mu' = .5440-.39978*`n'+.025054*`n'^2-.0006714*`n'^3
		scalar `s' = exp(1.3822-.77857*`n'+.062767*`n'^2-.0020322*`n'^3)
	}
	else {
		scalar `mu' = -1.5861-.31082*`l'-.083751*`l'^2+.0038915*`l'^3
		scalar `s' = exp(-.4803-.082676*`l'+.0030302*`l'^2)
	}
	scalar `p' = norm(-(`y'-`mu')/`s')
end
