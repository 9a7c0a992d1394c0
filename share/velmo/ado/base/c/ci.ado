*! version 1.0.0  22nov2026
* ci: confidence intervals of means, of proportions (exact binomial) and of rates of counts (exact Poisson)
program define ci, rclass byable(recall)
	version 7.0
	syntax [varlist(numeric ts)] [aweight fweight] [if] [in] [, Level(integer -1) Binomial Poisson BY(varlist)]
	_level `level'
	local kind `binomial'`poisson'
	if "`kind'" == "binomialpoisson" | ("`kind'" != "" & "`weight'" == "aweight") {
		display as error "binomial, poisson and aweights may not be combined"
		exit 184
	}
	marksample touse, novarlist
	if "`weight'" != "" {
		local weight [`weight'`exp']
	}
	quietly count if `touse'
	if r(N) == 0 {
		error 2000
	}
	local kind = cond("`kind'" == "", "normal", "`kind'")
	if "`by'" == "" {
		Panel `kind' `touse' `level' "`weight'" `varlist'
	}
	else {
		tempvar group first
		_bygroup `group' = `by' if `touse', missing first(`first')
		local n = r(N_groups)
		forvalues i = 1/`n' {
			local at = `first'[`i']
			_groupline `at' `by'
			quietly replace `touse' = `group' == `i'
			Panel `kind' `touse' `level' "`weight'" `varlist'
		}
	}
	return add
end

* A table of the variables over the observations.
program define Panel, rclass
	gettoken kind 0 : 0
	gettoken touse 0 : 0
	gettoken level 0 : 0
	gettoken weight 0 : 0
	tempname n mean sum sd se low high
	foreach x of local 0 {
		Check `kind' `x' `touse'
	}
	display as text _newline "{hline 13}{c TT}{hline 64}"
	if "`kind'" != "normal" {
		display as text _column(14) "{c |}" _column(59) "exact (`kind')"
	}
	display as text "    Variable {c |}       Obs        Mean   Std. Err." _column(58) "[`level'% Conf. Interval]"
	display as text "{hline 13}{c +}{hline 64}"
	foreach x of local 0 {
		quietly summarize `x' `weight' if `touse'
		scalar `n' = r(N)
		scalar `mean' = r(mean)
		scalar `sum' = r(sum)
		scalar `sd' = sqrt(r(Var))
		if "`kind'" == "normal" {
			scalar `se' = `sd'/sqrt(`n')
			scalar `high' = invttail(`n'-1, (1-`level'/100)/2)*`se'
			scalar `low' = `mean'-`high'
			scalar `high' = `mean'+`high'
		}
		else {
			Exact `kind' `n' `sum' (1-`level'/100)/2 `se' `low' `high'
		}
		display as text %12s abbrev("`x'",12) " {c |}" as result %10.0f `n' _skip(3) %9.0g `mean' _skip(3) %9.0g `se' /*
			*/ _column(58) %9.0g `low' _skip(2) %9.0g `high'
		return scalar ub = `high'
		return scalar lb = `low'
		return scalar se = `se'
		return scalar mean = `mean'
		return scalar N = `n'
	}
	display as text "{hline 13}{c BT}{hline 64}"
end

* That the values may be what the interval takes them for.
program define Check
	args kind x touse
	if "`kind'" == "normal" {
		exit
	}
	local rule = cond("`kind'" == "binomial", "`x' != 0 & `x' != 1", "(`x' < 0 | `x' != int(`x'))")
	quietly count if `touse' & `x' < . & `rule'
	if r(N) {
		display as error cond("`kind'" == "binomial", "`x' has values other than 0 and 1", "`x' has values that are no counts")
		exit 459
	}
end

* Clopper and Pearson 1934; Garwood 1936. a is the probability of each tail.
program define Exact
	args kind n sum a se low high
	foreach result in se low high {
		scalar ``result'' = .
	}
	if `n' == 0 {
		exit
	}
	local trials = cond("`kind'" == "binomial", `n', .)
	local k = `sum'
	Lower `low' `k' `a' `trials'
	if "`kind'" == "binomial" {
		scalar `se' = sqrt(`sum'/`n'*(1-`sum'/`n')/`n')
		Lower `high' `n'-`k' `a' `trials'
		scalar `high' = 1-`high'
	}
	else {
		scalar `se' = sqrt(`sum')/`n'
		Upper `high' `k' `a'
		scalar `low' = `low'/`n'
		scalar `high' = `high'/`n'
	}
end

* The p at which k or more successes in so many trials have probability a; without trials the mean of a Poisson variable
* at which a count of k or more has. The tail is summed from its largest term, and solved for by Newton's method for its
* logarithm: the functions of tails have fewer digits.
program define Lower
	args x k a trials
	tempname log term sum step
	local k = `k'
	if `k' == 0 {
		scalar `x' = 0
		exit
	}
	scalar `x' = cond(`trials' < ., invbinomial(`trials', `k', `a'), invchi2(2*`k', `a')/2)
	scalar `step' = 1
	forvalues pass = 1/20 {
		scalar `log' = cond(`trials' < ., lnfact(`trials')-lnfact(`k')-lnfact(`trials'-`k')+`k'*ln(`x') /*
			*/ +cond(`k' == `trials', 0, (`trials'-`k')*ln(1-`x')), `k'*ln(`x')-`x'-lnfact(`k'))
		scalar `term' = 1
		scalar `sum' = 1
		local i = `k'+1
		while `term' > 1e-17*`sum' {
			scalar `term' = `term'*cond(`trials' < ., (`trials'-`i'+1)*`x'/(1-`x'), `x')/`i'
			scalar `sum' = `sum'+`term'
			local i = `i'+1
		}
		scalar `step' = (ln(`a')-`log'-ln(`sum'))*`sum'/`k'
		scalar `x' = `x'*exp(`step')
		if abs(`step') < 1e-13 {
			exit
		}
	}
end

* The mean of a Poisson variable at which a count of k or fewer has probability a.
program define Upper
	args x k a
	tempname log term sum step
	scalar `x' = cond(`k', invchi2tail(2*`k'+2, `a')/2, -ln(`a'))
	forvalues pass = 1/20 {
		scalar `log' = cond(`k', `k'*ln(`x'), 0)-`x'-lnfact(`k')
		scalar `term' = 1
		scalar `sum' = 1
		local i `k'
		while `i' > 0 & `term' > 1e-17*`sum' {
			scalar `term' = `term'*`i'/`x'
			scalar `sum' = `sum'+`term'
			local i = `i'-1
		}
		scalar `step' = (`log'+ln(`sum')-ln(`a'))*`sum'
		scalar `x' = `x'+`step'
		if abs(`step') < 1e-13*`x' {
			exit
		}
	}
end
