*! version 1.0.0  22nov2026
* ksmirnov: whether two samples are of one distribution, or one of a given distribution (Kolmogorov 1933, Smirnov 1939)
program define ksmirnov, rclass byable(recall)
	version 7.0
	syntax varname(numeric) [=/exp] [if] [in] [, BY(varname)]
	if (_local(exp) == "") + ("`by'" == "") != 1 {
		display as error "either = or by() is required"
		exit 198
	}
	marksample touse, novarlist
	tempname D p
	if "`by'" != "" {
		tempvar A B
		_samples `A' `B' `D' `varlist' `touse' "`by'" ""
		TwoSamples `A' `B' `D' `p'
		local what "both are of one distribution"
	}
	else {
		OneSample `varlist' `touse' `D' `p' `exp'
		local what "`varlist' has that distribution"
	}
	display as text _newline "Kolmogorov-Smirnov test" _newline
	display as text "    Number of obs = " as result %9.0f `n'
	display as text "                D = " as result %9.4f `D'
	display as text "H0: `what'"
	display as text "         Prob > D = " as result %9.4f `p' as text cond(`exact', "  (exact)", "")
	return scalar p = `p'
	return scalar D = `D'
	return scalar N = `n'
end

* Leaves n and exact with the caller.
program define TwoSamples
	args A B D p
	tempvar all above
	preserve
	quietly {
		keep if `A' < . | `B' < .
		generate double `all' = cond(`A' < ., `A', `B')
		count if `A' < .
		local n1 = r(N)
		local n2 = _N-`n1'
		_tiesum `all'
		sort `all'
		generate double `above' = sum(`A' < .)/`n1'-sum(`B' < .)/`n2'
		by `all': replace `above' = . if _n < _N
		replace `above' = abs(`above')
		summarize `above'
		scalar `D' = r(max)
	}
	c_local n = _N
	c_local exact 0
	if `n1' < 50 & `n2' < 50 & !`ties' {
		Lattice `n1' `n2' `D' `p'
		c_local exact 1
	}
	else {
		Limit sqrt(`n1'*`n2'/(`n1'+`n2'))*`D' `p'
	}
end

* The share of the paths from corner to corner of a lattice that leave its diagonal by D somewhere.
program define Lattice
	args n1 n2 D p
	quietly {
		drop _all
		set obs `=`n2'+1'
		* paths to the points of a row, and those of them that have left; the first row has one path each
		generate double all = 1
		generate double left = (_n-1)/`n2' >= `D'-1e-10
		replace left = 1 if left[_n-1] == 1
		forvalues i = 1/`n1' {
			replace all = all+all[_n-1] if _n > 1
			replace left = cond(abs(`i'/`n1'-(_n-1)/`n2') >= `D'-1e-10, all, left+cond(_n > 1, left[_n-1], 0))
		}
	}
	scalar `p' = left[_N]/all[_N]
end

program define OneSample
	gettoken x 0 : 0
	gettoken touse 0 : 0
	gettoken D 0 : 0
	gettoken p 0 : 0
	tempvar F d
	preserve
	quietly {
		keep if `touse' & `x' < .
		generate double `F' = `0'
		drop if `F' == .
		local n = _N
		if `n' == 0 {
			noisily error 2000
		}
		count if `F' < 0 | `F' > 1
		if r(N) {
			display as error "the distribution function must be between 0 and 1"
			exit 198
		}
		_tiesum `x'
		sort `x'
		generate double `d' = max(_n/`n'-`F', `F'-(_n-1)/`n')
		summarize `d'
		scalar `D' = r(max)
	}
	c_local n `n'
	c_local exact 0
	if `n' < 50 & !`ties' {
		Power `n' `D' `p'
		c_local exact 1
	}
	else {
		Limit sqrt(`n')*`D' `p'
	}
end

* By a power of a matrix (Durbin 1973; Marsaglia, Tsang and Wang 2003).
program define Power
	args n D p
	tempname h H Q
	local k = int(`n'*`D')+1
	local m = 2*`k'-1
	scalar `h' = `k'-`n'*`D'
	matrix `H' = J(`m',`m',0)
	forvalues i = 1/`m' {
		forvalues j = 1/`m' {
			if `j' <= `i'+1 {
				_matcell `H' `i' `j' = 1
			}
		}
	}
	forvalues i = 1/`m' {
		_matcell `H' `i' 1 = `H'[`i',1]-`h'^`i'
		_matcell `H' `m' `i' = `H'[`m',`i']-`h'^(`m'-`i'+1)
	}
	_matcell `H' `m' 1 = `H'[`m',1]+cond(2*`h' > 1, (2*`h'-1)^`m', 0)
	forvalues i = 1/`m' {
		forvalues j = 1/`i' {
			_matcell `H' `i' `j' = `H'[`i',`j']/exp(lnfact(`i'-`j'+1))
		}
	}
	matrix `Q' = `H'
	forvalues i = 2/`n' {
		matrix `Q' = `Q'*`H'
	}
	scalar `p' = `Q'[`k',`k']
	forvalues i = 1/`n' {
		scalar `p' = `p'*`i'/`n'
	}
	scalar `p' = max(0, min(1, 1-`p'))
end

* Smirnov's limit.
program define Limit
	args z p
	tempname x term
	scalar `x' = `z'
	scalar `p' = 0
	local sign 1
	forvalues j = 1/100 {
		scalar `term' = 2*exp(-2*`j'^2*`x'^2)
		scalar `p' = `p'+`sign'*`term'
		local sign = -`sign'
		if `term' < 1e-17*`p' {
			continue, break
		}
	}
	scalar `p' = cond(`x' < .2, 1, min(1, `p'))
end
