*! version 1.0.0  22nov2026
* vartest: a variance against a number (chi-squared), or the variances of two samples (F)
program define vartest, rclass byable(recall)
	version 7.0
	syntax varname(numeric) [=/exp] [if] [in] [, BY(varname) UNPaired Level(integer -1)]
	_level `level'
	marksample touse, novarlist
	tempvar A B
	tempname m n1 m1 s1 n2 m2 s2 stat low high
	_samples `A' `B' `m' `varlist' `touse' "`by'" unpaired `exp'
	if "`kind'" == "one" {
		if `m' <= 0 {
			display as error "the variance must be above 0"
			exit 198
		}
	}
	local one : escaped one
	local two : escaped two
	Moments `n1' `m1' `s1' `A'
	if "`kind'" == "two" {
		Moments `n2' `m2' `s2' `B'
	}
	local label = cond("`by'" == "", "Variable", "Group")
	_meantable heading `label' `level'
	_meantable row `n1' `m1' `s1'/sqrt(`n1') `s1' `n1'-1 `level' `"`one'"'
	if "`kind'" == "one" {
		_meantable rule BT
		scalar `stat' = (`n1'-1)*`s1'^2/`m'
		scalar `low' = chi2(`n1'-1, `stat')
		scalar `high' = chi2tail(`n1'-1, `stat')
		local test variance `m' "chi2(`=`n1'-1')"
	}
	else {
		_meantable row `n2' `m2' `s2'/sqrt(`n2') `s2' `n2'-1 `level' `"`two'"'
		_meantable rule BT
		scalar `stat' = (`s1'/`s2')^2
		scalar `low' = F(`n1'-1, `n2'-1, `stat')
		scalar `high' = Ftail(`n1'-1, `n2'-1, `stat')
		local test ratio 1 "F(`=`n1'-1', `=`n2'-1')"
		return scalar sd_2 = `s2'
		return scalar N_2 = `n2'
		return scalar df_2 = `n2'-1
	}
	_verdict `test' `stat' `low' cond(`low'<.,min(1,2*min(`low',`high')),.) `high'
	return add
	return scalar sd_1 = `s1'
	return scalar N_1 = `n1'
	if "`kind'" == "one" {
		return scalar df = `n1'-1
		return scalar chi2 = `stat'
	}
	else {
		return scalar df_1 = `n1'-1
		return scalar F = `stat'
	}
end

* A sample of one has no variance.
program define Moments
	args n mean sd x
	quietly summarize `x'
	if r(N) < 2 {
		error cond(r(N), 2001, 2000)
	}
	scalar `n' = r(N)
	scalar `mean' = r(mean)
	scalar `sd' = sqrt(r(Var))
end
