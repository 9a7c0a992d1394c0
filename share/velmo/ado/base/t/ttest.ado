*! version 1.0.0  22nov2026
* ttest: Student's t tests of means, of one sample, of pairs and of two samples
program define ttest, rclass byable(recall)
	version 7.0
	syntax varname(numeric) [=/exp] [if] [in] [, BY(varname) UNPaired UNEqual Level(integer -1)]
	_level `level'
	marksample touse, novarlist
	tempvar A B
	tempname m n1 m1 s1 n2 m2 s2 se df sd
	_samples `A' `B' `m' `varlist' `touse' "`by'" "`unpaired'" `exp'
	if "`unequal'" != "" & "`kind'" != "two" {
		display as error "unequal is for two samples"
		exit 198
	}
	local one : escaped one
	local two : escaped two
	Moments `n1' `m1' `s1' `A'
	local label = cond("`by'" == "", "Variable", "Group")
	if "`kind'" == "one" {
		scalar `se' = `s1'/sqrt(`n1')
		scalar `df' = `n1'-1
		scalar `sd' = `s1'
		_meantable heading `label' `level'
		_meantable row `n1' `m1' `se' `s1' `df' `level' `"`one'"'
		_meantable rule BT
		return scalar d = (`m1'-`m')/`sd'
		Verdict mean (`m1'-`m')/`se' `df' `m'
	}
	else {
		Moments `n2' `m2' `s2' `B'
		_meantable heading `label' `level'
		_meantable row `n1' `m1' `s1'/sqrt(`n1') `s1' `n1'-1 `level' `"`one'"'
		_meantable row `n2' `m2' `s2'/sqrt(`n2') `s2' `n2'-1 `level' `"`two'"'
		_meantable rule +
		if "`kind'" == "paired" {
			Pairs `A' `B' `se' `df' `sd'
			_meantable row `n1' `m1'-`m2' `se' `sd' `df' `level' difference
		}
		else {
			Pool `n1' `s1' `n2' `s2' `se' `df' `sd' `unequal'
			_meantable row `n1'+`n2' `m1'-`m2' `se' . `df' `level' difference
		}
		_meantable rule BT
		return scalar d = (`m1'-`m2')/`sd'
		return scalar N_2 = `n2'
		return scalar mu_2 = `m2'
		return scalar sd_2 = `s2'
		Verdict difference (`m1'-`m2')/`se' `df' 0
	}
	return add
	return scalar se = `se'
	return scalar sd_1 = `s1'
	return scalar mu_1 = `m1'
	return scalar N_1 = `n1'
end

program define Moments
	args n mean sd x
	quietly summarize `x'
	if r(N) == 0 {
		error 2000
	}
	scalar `n' = r(N)
	scalar `mean' = r(mean)
	scalar `sd' = sqrt(r(Var))
end

* The error of a mean difference of pairs, its degrees of freedom, and the deviation of the differences.
program define Pairs
	args a b se df sd
	tempvar difference
	quietly generate double `difference' = `a'-`b'
	quietly summarize `difference'
	scalar `sd' = sqrt(r(Var))
	scalar `se' = `sd'/sqrt(r(N))
	scalar `df' = r(N)-1
end

* The same of two samples; the deviation is the pooled one. A sample of one tells nothing of its deviation.
program define Pool
	args n1 s1 n2 s2 se df sd unequal
	scalar `df' = `n1'+`n2'-2
	scalar `sd' = sqrt((cond(`n1' > 1, (`n1'-1)*`s1'^2, 0)+cond(`n2' > 1, (`n2'-1)*`s2'^2, 0))/`df')
	scalar `se' = `sd'*sqrt(1/`n1'+1/`n2')
	if "`unequal'" != "" {
		tempname v1 v2
		scalar `v1' = `s1'^2/`n1'
		scalar `v2' = `s2'^2/`n2'
		scalar `se' = sqrt(`v1'+`v2')
		scalar `df' = (`v1'+`v2')^2/(`v1'^2/(`n1'-1)+`v2'^2/(`n2'-1))
	}
end

* t and its tails.
program define Verdict, rclass
	args what t df null
	tempname T
	scalar `T' = `t'
	_verdict `what' `null' t `T' ttail(`df',-`T') tprob(`df',`T') ttail(`df',`T') `df'
	return add
	return scalar df = `df'
	return scalar t = `T'
end
