*! version 1.0.0  22nov2026
* goftest: fitted against observed outcomes, over covariate patterns (Pearson) or over groups of the fitted
* probability (Hosmer and Lemeshow 1980)
program define goftest, rclass
	version 7.0
	syntax [, Groups(string)]
	local most 1000
	if "`groups'" != "" {
		confirm integer number `groups'
		if `groups' < 3 | `groups' > `most' {
			display as error "groups() must be between 3 and `most'"
			exit 198
		}
	}
	tempvar p y w code count number observed fitted n o m term
	_binaryfit `p' `y' `w'
	if "`groups'" != "" {
		Cut `p' `w' `code' `groups'
	}
	else {
		Patterns `p' `code'
	}
	quietly {
		generate double `o' = `w'*`y' if `p' < .
		generate double `m' = `w'*`p' if `y' < .
		_bystats `observed' = sum(`o') `fitted' = sum(`m') `n' = sum(`w') if `o' < . & `m' < ., by(`code')
		_bygroup `count' = `code' if `o' < . & `m' < ., number(`number')
		generate double `term' = (`observed'-`fitted')^2/(`fitted'*(1-`fitted'/`n')) if `number' == 1
		summarize `term'
		local cells = r(N)
		local chi2 = r(sum)
		summarize `w' if `o' < . & `m' < ., meanonly
	}
	local df = `cells'-cond("`groups'" != "", 2, colsof(e(b)))
	if `df' < 1 {
		error 2001
	}
	return scalar p = chiprob(`df', `chi2')
	return scalar df = `df'
	return scalar chi2 = `chi2'
	return scalar groups = `cells'
	return scalar N = r(sum)
	local what = cond("`groups'" != "", "groups of the probability", "covariate patterns")
	local name = cond("`groups'" != "", "Hosmer-Lemeshow", "Pearson")
	display as text _newline "Goodness of fit of `e(cmd)' of " abbrev("`e(depvar)'",20) ", by `what'" _newline
	display as text %29s "observations = " as result %10.0g return(N)
	display as text %29s "`what' = " as result %10.0g `cells'
	display as text %29s "`name' chi2(`df') = " as result %10.2f `chi2'
	display as text %29s "Prob > chi2 = " as result %10.4f return(p)
end

* Groups of one size by the probability; equal values stay together.
program define Cut
	args p w code groups
	_pctile `p' [fweight=`w'], nquantiles(`groups')
	quietly generate int `code' = 1 if `p' < .
	local last = `groups'-1
	forvalues i = 1/`last' {
		quietly replace `code' = `code'+1 if `p' > r(r`i') & `p' < .
	}
end

* Observations that agree on all variables of the model.
program define Patterns
	args p code
	local names : colnames e(b)
	local k = colsof(e(b))
	forvalues i = 1/`k' {
		local x : word `i' of `names'
		if "`x'" != "_cons" {
			tempvar x`i'
			quietly generate double `x`i'' = `x' if `p' < .
			local list `list' `x`i''
		}
	}
	if "`e(offset)'" != "" {
		local list `list' `e(offset)'
	}
	if "`list'" == "" {
		quietly generate byte `code' = 1 if `p' < .
		exit
	}
	_bygroup `code' = `list' if `p' < .
end
