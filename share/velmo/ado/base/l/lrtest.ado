*! version 1.0.0  22nov2026
* lrtest: likelihood-ratio test of two fits, of which one was saved. What is saved are global macros: LRTEST_<name> the
* log likelihood, its parameters and observations, and the outcome; LRTEST the last name.
program define lrtest, rclass
	version 7.0
	syntax [, Saving(string) Using(string) DF(integer 0)]
	local k = cond(e(df_m) < ., e(df_m), e(k))
	if e(ll) >= . | `k' >= . {
		error 301
	}
	foreach name in saving using {
		if _local(`name') != "" {
			local given : local `name'
			capture confirm name L`given'
			error _rc == 1
			if _rc | index(_local(given), " ") | length(_local(given)) > 24 {
				error 198
			}
		}
	}
	if `df' < 0 {
		error 198
	}
	if "`saving'" == "" | "`using'" != "" {
		if "`using'" == "" {
			local using $LRTEST
		}
		Compare `k' `df' `using'
		return add
	}
	if "`saving'" != "" {
		local ll : display %24.17e e(ll)
		local n : display %24.17e e(N)
		global LRTEST_`saving' `ll' `k' `n' `e(depvar)'
		global LRTEST `saving'
	}
end

program define Compare, rclass
	args k given name
	local saved ${LRTEST_`name'}
	if "`saved'" == "" {
		display as error cond("`name'" == "", "no fit is saved", "no fit is saved as `name'")
		exit 301
	}
	tokenize `saved'
	tempname chi2 p
	if e(N) != `3' {
		display as error "the fits have different numbers of observations"
		exit 459
	}
	if "`e(depvar)'" != "`4'" {
		display as error "the fits have different outcomes"
		exit 459
	}
	local df = abs(`k'-`2')
	if `given' {
		local df `given'
	}
	if `df' == 0 {
		display as error "the fits have as many parameters; say df()"
		exit 459
	}
	scalar `chi2' = max(0, 2*(e(ll)-`1')*cond(`k' >= `2', 1, -1))
	scalar `p' = chi2tail(`df', `chi2')
	local full = cond(`k' >= `2', "the last fit", "`name'")
	local nested = cond(`k' >= `2', "`name'", "the last fit")
	display
	display as text "Likelihood-ratio test" _col(50) "chi2(`df')" _col(66) "= " as result %10.2f `chi2'
	display as text "`nested' in `full'" _col(50) "Prob > chi2" _col(66) "= " as result %10.4f `p'
	return scalar p = `p'
	return scalar df = `df'
	return scalar chi2 = `chi2'
end
