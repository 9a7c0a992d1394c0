*! version 1.0.0  22nov2026
* kappa: agreement of raters beyond chance: of two (Cohen 1960), of more (Fleiss 1971); a variable a rater, an observation
* a subject
program define kappa, rclass byable(recall)
	version 7.0
	syntax varlist(min=2) [if] [in]
	marksample touse, strok
	local k : word count `varlist'
	tempvar value share
	tempname po pe se kappa
	preserve
	quietly {
		keep if `touse'
		local n = _N
		if `n' == 0 {
			noisily error 2000
		}
		keep `varlist'
		tempvar subject rater
		generate long `subject' = _n
		Long `subject' `rater' `value' `varlist'
		local m = r(N_groups)
	}
	if `k' == 2 {
		Cohen `n' `m' `subject' `rater' `value' `po' `pe' `se'
	}
	else {
		Fleiss `n' `m' `k' `subject' `value' `po' `pe' `se'
	}
	scalar `kappa' = (`po'-`pe')/(1-`pe')
	restore
	display as text _newline cond(`k' == 2, "Cohen's kappa, two raters", "Fleiss' kappa, `k' raters") _column(46) /*
		*/ "Number of subjects = " as result %9.0f `n'
	display as text _newline "{hline 13}{c TT}{hline 52}"
	display as text "   Agreement {c |}   Expected      Kappa   Std. Err.       z   Prob > z"
	display as text "{hline 13}{c +}{hline 52}"
	display as result %12.4f `po' as text " {c |}" as result _skip(2) %9.4f `pe' _skip(2) %9.4f `kappa' _skip(3) %9.4f `se' /*
		*/ %8.2f `kappa'/`se' _skip(5) %6.4f norm(-`kappa'/`se')
	display as text "{hline 13}{c BT}{hline 52}"
	return scalar z = `kappa'/`se'
	return scalar se = `se'
	return scalar kappa = `kappa'
	return scalar agreement = `po'
	return scalar N = `n'
end

* One observation a subject and rater; value numbers the categories. Leaves r() of _bygroup.
program define Long, rclass
	args subject rater value
	macro shift 3
	local names `*'
	capture confirm string variable `1'
	error _rc == 1
	local kind = cond(_rc, "numeric", "string")
	local i 0
	foreach x of local names {
		confirm `kind' variable `x'
		local i = `i'+1
		local moved `moved' `subject' `x'
	}
	tempvar x
	stack `moved', into(`subject' `x') clear
	rename _stack `rater'
	_bygroup `value' = `x'
	return scalar N_groups = r(N_groups)
end

program define Cohen
	args n m subject rater value po pe se
	tempname a b s
	sort `subject' `rater'
	quietly count if `value' == `value'[_n-1] & `rater' == 2
	scalar `po' = r(N)/`n'
	scalar `pe' = 0
	scalar `s' = 0
	forvalues j = 1/`m' {
		quietly count if `value' == `j' & `rater' == 1
		scalar `a' = r(N)/`n'
		quietly count if `value' == `j' & `rater' == 2
		scalar `b' = r(N)/`n'
		scalar `pe' = `pe'+`a'*`b'
		scalar `s' = `s'+`a'*`b'*(`a'+`b')
	}
	* under independence (Fleiss, Cohen and Everitt 1969)
	scalar `se' = sqrt((`pe'+`pe'^2-`s')/`n')/(1-`pe')
end

program define Fleiss
	args n m k subject value po pe se
	tempvar count
	tempname p q s
	scalar `po' = 0
	scalar `pe' = 0
	scalar `q' = 0
	scalar `s' = 0
	sort `subject'
	forvalues j = 1/`m' {
		quietly {
			by `subject': generate double `count' = sum(`value' == `j')
			by `subject': replace `count' = . if _n < _N
			replace `count' = `count'^2
			summarize `count'
			scalar `po' = `po'+r(sum)
			drop `count'
			count if `value' == `j'
		}
		scalar `p' = r(N)/(`n'*`k')
		scalar `pe' = `pe'+`p'^2
		scalar `q' = `q'+`p'*(1-`p')
		scalar `s' = `s'+`p'*(1-`p')*(1-2*`p')
	}
	scalar `po' = (`po'-`n'*`k')/(`n'*`k'*(`k'-1))
	scalar `se' = sqrt(2/(`n'*`k'*(`k'-1)))*sqrt(`q'^2-`s')/`q'
end
