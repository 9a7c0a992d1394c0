*! version 1.0.0  22nov2026
* proptest: a proportion against a number (score test), or the proportions of two samples (pooled)
program define proptest, rclass byable(recall)
	version 7.0
	syntax varname(numeric) [=/exp] [if] [in] [, BY(varname) UNPaired Level(integer -1)]
	_level `level'
	marksample touse, novarlist
	tempvar A B
	tempname m n1 p1 n2 p2 se z
	_samples `A' `B' `m' `varlist' `touse' "`by'" unpaired `exp'
	if "`kind'" == "one" {
		if `m' <= 0 | `m' >= 1 {
			display as error "the proportion must be between 0 and 1"
			exit 198
		}
	}
	local one : escaped one
	local two : escaped two
	Proportion `n1' `p1' `A'
	if "`kind'" == "two" {
		Proportion `n2' `p2' `B'
	}
	local label = cond("`by'" == "", "Variable", "Group")
	display as text _newline "{hline 13}{c TT}{hline 64}"
	display as text %12s "`label'" " {c |}    Obs   Proportion   Std. Err." _column(55) "[`level'% Conf. Interval]"
	display as text "{hline 13}{c +}{hline 64}"
	Row `n1' `p1' sqrt(`p1'*(1-`p1')/`n1') `level' `"`one'"'
	if "`kind'" == "one" {
		scalar `z' = (`p1'-`m')/sqrt(`m'*(1-`m')/`n1')
		local test proportion `m'
		return scalar h = 2*asin(sqrt(`p1'))-2*asin(sqrt(`m'))
	}
	else {
		Row `n2' `p2' sqrt(`p2'*(1-`p2')/`n2') `level' `"`two'"'
		scalar `se' = sqrt(`p1'*(1-`p1')/`n1'+`p2'*(1-`p2')/`n2')
		display as text "{hline 13}{c +}{hline 64}"
		Row `n1'+`n2' `p1'-`p2' `se' `level' difference
		scalar `z' = (`n1'*`p1'+`n2'*`p2')/(`n1'+`n2')
		scalar `z' = (`p1'-`p2')/sqrt(`z'*(1-`z')*(1/`n1'+1/`n2'))
		local test difference 0
		return scalar h = 2*asin(sqrt(`p1'))-2*asin(sqrt(`p2'))
		return scalar p_2 = `p2'
		return scalar N_2 = `n2'
	}
	display as text "{hline 13}{c BT}{hline 64}"
	_verdict `test' z `z' norm(`z') 2*norm(-abs(`z')) norm(-`z')
	return add
	return scalar z = `z'
	return scalar p_1 = `p1'
	return scalar N_1 = `n1'
end

program define Proportion
	args n p x
	quietly count if `x' < . & `x' != 0 & `x' != 1
	if r(N) {
		display as error "values other than 0 and 1"
		exit 459
	}
	quietly summarize `x'
	if r(N) == 0 {
		error 2000
	}
	scalar `n' = r(N)
	scalar `p' = r(mean)
end

program define Row
	args n p se level label
	tempname half
	scalar `half' = invnorm(1-(1-`level'/100)/2)*`se'
	display as text %12s abbrev(_local(label),12) " {c |}" as result %7.0f `n' _skip(4) %9.0g `p' _skip(3) %9.0g `se' /*
		*/ _column(55) %9.0g (`p'-`half') _skip(2) %9.0g (`p'+`half')
end
