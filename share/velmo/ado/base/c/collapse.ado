*! version 1.0.0  21nov2026
* collapse: replaces the data by statistics of groups, an observation a group
program define collapse
	version 7.0
	syntax anything(name=clist id="list of variables") [if] [in] [fweight aweight] [, BY(varlist) CW]
	Parse `clist'
	CheckNames "`by'" `targets'
	marksample touse
	if "`cw'" != "" {
		markout `touse' `sources', strok
	}
	preserve
	quietly {
		tempvar w group order
		keep if `touse'
		if _N == 0 {
			noisily error 2000
		}
		if "`weight'" != "" {
			generate double `w' `exp'
		}
		else {
			local w
		}
		keep `by' `sources' `w'
		if `ordered' {
			generate long `order' = _n
		}
		else {
			local order
		}
		Group `group' "`by'" `order'
		forvalues i = 1/`n' {
			tempvar r`i'
			local results `results' `r`i''
		}
		foreach x in `sources' {
			local asked
			forvalues i = 1/`n' {
				if "`source`i''" == "`x'" & "`percent`i''" != "" {
					local asked `asked' `r`i'' `percent`i''
				}
			}
			if "`asked'" != "" {
				Percentiles `group' `x' "`w'" `asked'
			}
		}
		sort `group' `order'
		forvalues i = 1/`n' {
			if "`percent`i''" == "" {
				Statistic `group' `source`i'' `r`i'' `stat`i'' "`w'" `weight'
			}
			Dress `source`i'' `r`i'' `stat`i''
		}
		by `group': keep if _n == _N
		keep `by' `results'
		order `by' `results'
		forvalues i = 1/`n' {
			rename `r`i'' `target`i''
		}
		if "`by'" != "" {
			sort `by'
		}
	}
	restore, not
	global S_FN
	global S_FNDATE
end

* Reads [(stat)] varlist|new=var ... and leaves with the caller n; for each result stat#, target#, source# and
* percent# (what percentile it is); the lists sources and targets; and whether the order within groups matters.
program define Parse
	local stat mean
	local rest `"`0'"'
	while `"`rest'"' != "" {
		gettoken word rest : rest, parse(" ()=")
		if "`word'" == "=" {
			Split `names'
			Items `stat' "" `names'
			local all `all' `items'
			gettoken word rest : rest, parse(" ()=")
			Items `stat' `new' `word'
			local all `all' `items'
			local names
		}
		else if "`word'" == "(" {
			Items `stat' "" `names'
			local all `all' `items'
			local names
			gettoken stat rest : rest, parse(" ()=")
			gettoken word rest : rest, parse(" ()=")
			if "`word'" != ")" {
				error 198
			}
			StatName `stat'
		}
		else if "`word'" == ")" {
			error 198
		}
		else {
			local names `names' `word'
		}
	}
	Items `stat' "" `names'
	tokenize `all' `items'
	local n 0
	local ordered 0
	while "`1'" != "" {
		local n = `n' + 1
		c_local stat`n' `1'
		c_local target`n' `2'
		c_local source`n' `3'
		local targets `targets' `2'
		local sources : subinstr local sources "`3'" "`3'", word count(local known)
		if !`known' {
			local sources `sources' `3'
		}
		local percent
		if "`1'" == "median" {
			local percent 50
		}
		else if "`1'" == "iqr" {
			local percent iqr
		}
		else if substr("`1'", 1, 1) == "p" {
			local percent = substr("`1'", 2, .)
		}
		c_local percent`n' `percent'
		if index("first last firstnm lastnm", "`1'") {
			local ordered 1
		}
		else if "`1'" != "count" {
			capture confirm numeric variable `3'
			if _rc {
				display as error "`3' is a string variable; (`1') needs numbers"
				exit 109
			}
		}
		macro shift 3
	}
	if !`n' {
		error 102
	}
	c_local n `n'
	c_local ordered `ordered'
	c_local targets `targets'
	c_local sources `sources'
end

* The statistic's name, or error 198.
program define StatName
	args stat
	local p = real(substr("`stat'", 2, .))
	if !index(" mean sum rawsum count sd min max median iqr first last firstnm lastnm ", " `stat' ") /*
		*/ & !(substr("`stat'", 1, 1) == "p" & inrange(`p', 1, 99) & `p' == int(`p')) {
		display as error "unknown statistic (`stat')"
		exit 198
	}
end

* Of the names before an equals sign the last is a new variable's, the others are a list of their own.
program define Split
	if "`*'" == "" {
		error 198
	}
	while "`2'" != "" {
		local names `names' `1'
		macro shift
	}
	confirm names `1'
	c_local new `1'
	c_local names `names'
end

* Triples of statistic, name of the result and variable, for a list of variables or one variable with a new name.
program define Items
	args stat new
	macro shift 2
	if "`*'" != "" {
		foreach x of varlist `*' {
			if "`new'" != "" {
				local items `items' `stat' `new' `x'
			}
			else {
				local items `items' `stat' `x' `x'
			}
		}
	}
	if "`new'" != "" {
		local count : word count `items'
		if `count' != 3 {
			display as error "`new'= must be followed by one variable"
			exit 198
		}
	}
	c_local items `items'
end

* No name may be that of two results, or of a result and a by-variable.
program define CheckNames
	args by
	macro shift
	while "`1'" != "" {
		local by : subinstr local by "`1'" "`1'", word count(local known)
		if `known' {
			display as error "`1' would be the name of two variables"
			exit 110
		}
		local by `by' `1'
		macro shift
	}
end

* Numbers the groups, in the order of their variables; within a group the given order.
program define Group
	args group by order
	if "`by'" == "" {
		generate byte `group' = 1
		exit
	}
	sort `by' `order'
	by `by': generate long `group' = _n == 1
	replace `group' = sum(`group')
end

* Percentiles group x w result percent result percent ...: the definition of summarize, detail. The values stand in all
* observations of their group, since the next sort will mix them.
program define Percentiles
	args group x w
	macro shift 3
	tempvar cum
	sort `group' `x'
	if "`w'" == "" {
		by `group': generate long `cum' = sum(`x' < .)
	}
	else {
		by `group': generate double `cum' = sum(`w'*(`x' < .))
	}
	while "`1'" != "" {
		if "`2'" == "iqr" {
			tempvar low high
			Percentile `group' `x' "`w'" `cum' `low' 25
			Percentile `group' `x' "`w'" `cum' `high' 75
			generate double `1' = `high' - `low'
		}
		else {
			Percentile `group' `x' "`w'" `cum' `1' `2'
		}
		macro shift 2
	}
end

program define Percentile
	args group x w cum result p
	if "`w'" == "" {
		local k ((`cum'[_N]*`p')/100)
		by `group': generate double `result' = (`x'[int(`k')+1] + `x'[int(`k')+(`k' > int(`k'))])/2
		exit
	}
	* the value at which the running weight passes the target; where it had reached it exactly, the mean with the one before
	tempvar target
	by `group': generate double `target' = (`cum'[_N]*`p')/100
	local slack (1e-9*`cum'[_N])
	local here `x' < . & `cum' > `target'+`slack' & (_n == 1 | `cum'[_n-1] <= `target'+`slack')
	local before cond(_n > 1 & `cum'[_n-1] >= `target'-`slack', `x'[_n-1], `x')
	by `group': generate double `result' = sum(cond(`here', (`x' + `before')/2, 0))
	by `group': replace `result' = cond(`cum'[_N] > 0, `result'[_N], .)
end

* Statistic group x result stat w kind: in the last observation of a group stands its value.
program define Statistic
	args group x result stat w kind
	local there `x' < .
	local type : type `x'
	if substr("`type'", 1, 3) == "str" {
		local there `x' != ""
	}
	local wx `x'
	local n sum(`there')
	local total `n'
	if "`w'" != "" {
		local wx `w'*`x'
		local total sum(`w'*(`there'))
	}
	if "`kind'" == "fweight" {
		local n `total'
	}
	if "`stat'" == "count" {
		if "`kind'" == "fweight" {
			by `group': generate double `result' = `n'
		}
		else {
			by `group': generate long `result' = `n'
		}
	}
	else if "`stat'" == "rawsum" {
		by `group': generate double `result' = sum(`x')
	}
	else if "`stat'" == "sum" & "`kind'" == "aweight" {
		by `group': generate double `result' = cond(`n', sum(`wx')/`total'*`n', 0)
	}
	else if "`stat'" == "sum" {
		by `group': generate double `result' = sum(`wx')
	}
	else if "`stat'" == "mean" {
		by `group': generate double `result' = sum(`wx')/`total'
	}
	else if "`stat'" == "sd" {
		tempvar mean square
		by `group': generate double `mean' = sum(`wx')/`total'
		by `group': generate double `square' = (`x'-`mean'[_N])^2
		if "`w'" != "" {
			replace `square' = `w'*`square'
		}
		by `group': generate double `result' = sqrt(sum(`square')/`total'*`n'/(`n'-1))
	}
	else if inlist("`stat'", "min", "max") {
		generate `type' `result' = `x'
		by `group': replace `result' = `stat'(`result', `result'[_n-1])
	}
	else if "`stat'" == "first" {
		by `group': generate `type' `result' = `x'[1]
	}
	else {
		generate `type' `result' = `x'
		if "`stat'" == "firstnm" {
			by `group': replace `result' = `result'[_n-1] if _n > 1 & !missing(`result'[_n-1])
		}
		else if "`stat'" == "lastnm" {
			by `group': replace `result' = `result'[_n-1] if _n > 1 & missing(`result')
		}
	}
end

* The label tells the statistic. Values of the variable itself keep their label and format; what is computed keeps the
* format unless it is the general one, or one of dates where the result is none.
program define Dress
	args x result stat
	label variable `result' "(`stat') `x'"
	if "`stat'" == "count" {
		exit
	}
	local f : format `x'
	if index("min max first last firstnm lastnm", "`stat'") {
		format `result' `f'
		local l : value label `x'
		if "`l'" != "" {
			label values `result' `l'
		}
		exit
	}
	local date = index("`f'", "d") | index("`f'", "t")
	if index("sum rawsum sd iqr", "`stat'") & `date' | substr("`f'", -3, 3) == ".0g" {
		exit
	}
	format `result' `f'
end
