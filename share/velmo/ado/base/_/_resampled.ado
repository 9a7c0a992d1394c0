*! version 1.0.0  22nov2026
* _resampled bootstrap|jackknife reps level cluster nodots saving stats colon options command: what bootstrap and
* jackknife do once their options are read
program define _resampled, rclass
	version 7.0
	foreach word in kind reps level cluster dots saving stats colon options {
		gettoken `word' 0 : 0
	}
	_level `level'
	if `colon' & _local(options) != "" {
		display as error _text(options) " not allowed"
		exit 198
	}
	local command : local 0
	if _local(options) != "" {
		local command `"`command', `options'"'
	}
	if trim(_local(command)) == "" | ("`kind'" == "bootstrap" & `reps' < 2) {
		display as error cond(trim(_local(command)) == "", "a command is required", "reps() must be 2 or more")
		exit 198
	}
	* estimates that there were come back at the end, unless the command has left its own
	tempname before fit
	local command : escaped command
	local stats : escaped stats
	local estimates 0
	capture estimates hold `before', restore
	error _rc == 1
	capture noisily Replicate `kind' `reps' `level' "`cluster'" "`dots'" `"`saving'"' `"`stats'"' `fit' `command'
	local rc = _rc
	if `rc' {
		capture estimates drop `fit'
	}
	else if `estimates' {
		capture estimates drop `before'
		error _rc == 1
	}
	if `rc' {
		exit `rc'
	}
	return add
end

* Runs the command on the data and on every sample of them. Leaves with the caller whether it makes estimates.
program define Replicate, rclass
	foreach word in kind reps level cluster dots saving stats fit {
		gettoken `word' 0 : 0
	}
	local command : local 0
	NoResults
	quietly `command'
	tempname b file
	capture matrix `b' = e(b)
	error _rc == 1
	local estimates = _rc == 0
	c_local estimates `estimates'
	Statistics `estimates' `b' `stats'
	tempfile kept
	if _local(saving) == "" {
		local saving `"`kept'"'
	}
	_splitat , `saving'
	local saving : local before
	postfile `file' `variables' using `saving', double `behind'
	* the sample's marks go by with the estimates, ahead of the data
	if `estimates' {
		tempvar sample
		quietly generate byte `sample' = e(sample)
		estimates hold `fit'
	}
	preserve
	if `estimates' {
		quietly count if `sample'
		if r(N) {
			quietly keep if `sample'
		}
		drop `sample'
	}
	local command : escaped command
	Loop `kind' `reps' "`dots'" "`cluster'" `file' "`posted'" "`condition'" `command'
	postclose `file'
	quietly use `saving', clear
	tempname se bias normal percentile corrected
	foreach m in se bias normal percentile corrected {
		matrix ``m'' = `b'
		if !index(" se bias ", " `m' ") {
			matrix ``m'' = `b' \ `b'
			matrix rownames ``m'' = lb ub
		}
	}
	Summarize `kind' `level' `b' `se' `bias' `normal' `percentile' `corrected' `variables'
	restore
	if `estimates' {
		estimates unhold `fit'
	}
	Table `kind' `level' `good' `b' `se' `bias' `normal' `percentile' `corrected'
	return scalar reps = `good'
	foreach m in b se bias normal percentile corrected {
		if "`kind'" == "bootstrap" | !index(" percentile corrected ", " `m' ") {
			matrix rename ``m'' return(`m')
		}
	}
end

* Empties r(), whose results would be taken for those of a command that leaves none.
program define NoResults, rclass
	version 7.0
end

* The statistics that are followed. Fills the row of their values, with its names; leaves with the caller the list of
* expressions to post, the condition under which a run has all of them, and names for variables that hold them.
program define Statistics
	gettoken estimates 0 : 0
	gettoken b 0 : 0
	local rest : local 0
	local condition 1
	if trim(_local(rest)) == "" & `estimates' {
		local k = colsof(`b')
		local names : colfullnames `b'
		local condition colsof(e(b)) == `k'
		forvalues i = 1/`k' {
			local posted `posted' (el(e(b),1,`i'))
		}
	}
	else {
		if trim(_local(rest)) == "" {
			local rest : r(scalars)
			foreach name of local rest {
				local names `names' `name'
				local posted `posted' (r(`name'))
			}
			local rest
		}
		while trim(_local(rest)) != "" {
			gettoken exp rest : rest, match(paren)
			local k : word count `names'
			local name stat`=`k'+1'
			local sign = index(_local(exp), "=")
			local head = trim(substr(_local(exp), 1, max(`sign'-1, 0)))
			capture confirm names `head'
			error _rc == 1
			if "`head'" != "" & !_rc & substr(_local(exp), `sign', 2) != "==" {
				local name `head'
				local exp = substr(_local(exp), `sign'+1, .)
			}
			local names `names' `name'
			local posted `posted' (`exp')
		}
		local k : word count `names'
		if !`k' {
			display as error "the command leaves no results"
			exit 301
		}
		matrix `b' = J(1,`k',0)
		matrix colnames `b' = `names'
		local rest `posted'
		forvalues i = 1/`k' {
			gettoken exp rest : rest, match(paren)
			_matcell `b' 1 `i' = `exp'
		}
	}
	matrix rownames `b' = y1
	forvalues i = 1/`k' {
		local name : word `i' of `names'
		local name : subinstr local name ":" "_", all
		local name : subinstr local name "." "_", all
		local name = substr("b_`name'", 1, 32)
		local known : subinstr local variables "`name'" "", word count(local twice)
		capture confirm names `name'
		error _rc == 1
		if _rc | `twice' {
			local name b`i'
		}
		local variables `variables' `name'
	}
	c_local posted `posted'
	c_local condition `condition'
	c_local variables `variables'
end

* Posts the statistics of every sample; one on which the command fails has none. Leaves the number of good ones.
program define Loop
	foreach word in kind reps dots cluster file posted condition {
		gettoken `word' 0 : 0
	}
	local command : local 0
	local rest `posted'
	while "`rest'" != "" {
		gettoken exp rest : rest, match(paren)
		local none `none' (.)
	}
	tempvar group size first pick number text
	Prepare "`cluster'" `group' `size' `first' `pick' `number' `text'
	if "`kind'" == "jackknife" {
		local reps `units'
	}
	local good 0
	preserve
	forvalues i = 1/`reps' {
		if `i' > 1 {
			restore, preserve
		}
		if "`kind'" == "jackknife" {
			quietly drop if `group' == `i'
		}
		else {
			Draw `units' "`cluster'" `size' `first' `pick'
			Gather `pick' `n' `number' `text' "`numeric'" "`strings'"
		}
		drop `group' `size' `first' `pick' `number' `text'
		capture `command'
		if _rc == 1 {
			error 1
		}
		local mark x
		if _rc == 0 {
			if `condition' {
				local mark .
			}
		}
		if "`mark'" == "." {
			post `file' `posted'
			local good = `good'+1
		}
		else {
			post `file' `none'
		}
		if "`dots'" == "" {
			display as text "`mark'" _continue
			if mod(`i', 50) == 0 | `i' == `reps' {
				display as text %6.0f `i'
			}
		}
	}
	c_local good `good'
end

* Numbers the units that are drawn or left out: observations, or clusters, which then stand together.
program define Prepare
	args cluster group size first pick number text
	local 0
	syntax [varlist]
	local longest 1
	foreach x of local varlist {
		local type : type `x'
		if substr("`type'", 1, 3) == "str" {
			local strings `strings' `x'
			local longest = max(`longest', real(substr("`type'", 4, .)))
		}
		else {
			local numeric `numeric' `x'
		}
	}
	quietly {
		if "`cluster'" == "" {
			generate long `group' = _n
			generate byte `size' = 1
			generate long `first' = _n
			local units = _N
		}
		else {
			foreach x of local cluster {
				drop if missing(`x')
			}
			generate long `pick' = _n
			sort `cluster' `pick'
			drop `pick'
			_bygroup `group' = `cluster', count(`size') first(`first')
			local units = r(N_groups)
		}
		generate long `pick' = .
		generate double `number' = .
		generate str`longest' `text' = ""
	}
	if `units' < 2 {
		error cond(`units', 2001, 2000)
	}
	c_local units `units'
	c_local numeric `numeric'
	c_local strings `strings'
end

* Draws as many units as there are. pick tells of an observation to be which one it is of those that are there; n is how
* many there will be.
program define Draw
	args units cluster size first pick
	if "`cluster'" == "" {
		quietly replace `pick' = int(uniform()*_N)+1
		c_local n = _N
		exit
	}
	local n 0
	quietly {
		forvalues i = 1/`units' {
			local at = `first'[int(uniform()*`units')+1]
			local from = `n'+1
			local n = `n'+`size'[`at']
			if `n' > _N {
				set obs `n'
			}
			replace `pick' = `at'+_n-`from' in `from'/`n'
		}
	}
	c_local n `n'
end

* Observation i becomes what pick[i] was.
program define Gather
	args pick n number text numeric strings
	quietly {
		foreach x of local numeric {
			replace `number' = `x'
			replace `x' = `number'[`pick']
		}
		foreach x of local strings {
			replace `text' = `x'
			replace `x' = `text'[`pick']
		}
		keep in 1/`n'
	}
end

* Fills the matrices from the replications in memory: the jackknife's errors after Tukey 1958, the bootstrap's intervals
* normal, of percentiles, and of percentiles corrected for bias (Efron 1981).
program define Summarize
	args kind level b se bias normal percentile corrected
	macro shift 8
	tempname z n k place
	local tail = (1-`level'/100)/2
	local j 0
	foreach x in `*' {
		local j = `j'+1
		local b0 `b'[1,`j']
		quietly summarize `x'
		scalar `n' = r(N)
		local k = cond("`kind'" == "bootstrap", 1, `n'-1)
		_matcell `se' 1 `j' = sqrt(r(Var))*cond("`kind'" == "bootstrap", 1, (`n'-1)/sqrt(`n'))
		_matcell `bias' 1 `j' = `k'*(r(mean)-`b0')
		scalar `z' = cond("`kind'" == "bootstrap", invnorm(1-`tail'), invttail(`n'-1, `tail'))
		_matcell `normal' 1 `j' = `b0'-`z'*`se'[1,`j']
		_matcell `normal' 2 `j' = `b0'+`z'*`se'[1,`j']
		if "`kind'" == "bootstrap" {
			Percentiles `percentile' `j' `x' 100*`tail' 100*(1-`tail')
			quietly count if `x' <= `b0'
			scalar `place' = 2*invnorm(r(N)/`n')
			Percentiles `corrected' `j' `x' 100*norm(`place'-`z') 100*norm(`place'+`z')
		}
	}
end

program define Percentiles
	args m j x low high
	forvalues i = 1/2 {
		local p : word `i' of `low' `high'
		local p = `p'
		capture _pctile `x', percentiles(`p')
		error _rc == 1
		_matcell `m' `i' `j' = cond(_rc, ., r(r1))
	}
end

program define Table
	args kind level good b se bias normal percentile corrected
	local k = colsof(`b')
	local names : colnames `b'
	local eqs : coleq `b'
	display as text _newline cond("`kind'" == "bootstrap", "Bootstrap", "Jackknife") _column(54) "Replications = " as result %9.0f `good'
	display as text _newline "{hline 13}{c TT}{hline 64}"
	display as text "   Statistic {c |}   Observed       Bias  Std. Err.      [`level'% Conf. Interval]"
	display as text "{hline 13}{c +}{hline 64}"
	forvalues j = 1/`k' {
		local name : word `j' of `names'
		local eq : word `j' of `eqs'
		if "`eq'" != "_" & "`eq'" != "`last'" {
			display as text "`eq'" _column(14) "{c |}"
			local last `eq'
		}
		display as text %12s abbrev("`name'", 12) " {c |}" as result _skip(2) %9.0g el(`b',1,`j') _skip(2) %9.0g el(`bias',1,`j') /*
			*/ _skip(2) %9.0g el(`se',1,`j') _skip(5) %9.0g el(`normal',1,`j') _skip(2) %9.0g el(`normal',2,`j') /*
			*/ as text cond("`kind'" == "bootstrap", "  (N)", "")
		if "`kind'" == "bootstrap" {
			display as text _column(14) "{c |}" _column(53) as result %9.0g el(`percentile',1,`j') _skip(2) /*
				*/ %9.0g el(`percentile',2,`j') as text "  (P)"
			display as text _column(14) "{c |}" _column(53) as result %9.0g el(`corrected',1,`j') _skip(2) /*
				*/ %9.0g el(`corrected',2,`j') as text " (BC)"
		}
	}
	display as text "{hline 13}{c BT}{hline 64}"
	if "`kind'" == "bootstrap" {
		display as text "N = normal, P = percentile, BC = corrected for bias"
	}
end
