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
		forvalues i = 1/`n' {
			if "`percent`i''" != "" {
				local asked`number`i'' `asked`number`i''' `r`i'' `percent`i''
			}
		}
		forvalues k = 1/`kinds' {
			if "`asked`k''" != "" {
				local x : word `k' of `sources'
				Percentiles `group' `x' "`w'" `asked`k''
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

* Reads [(stat)] varlist|new=var ... and leaves with the caller n; for each result stat#, target#, source#, percent#
* (what percentile it is) and number# (of its variable, 1 to kinds); the lists sources and targets; and whether the
* order within groups matters.
program define Parse
	local stat mean
	local n 0
	local rest : local 0
	while _local(rest) != "" {
		gettoken word rest : rest, parse(" ()=")
		if "`word'" == "=" {
			Split `names'
			Items `n' `stat' "" `names'
			gettoken word rest : rest, parse(" ()=")
			Items `n' `stat' `new' `word'
			local names
		}
		else if "`word'" == "(" {
			Items `n' `stat' "" `names'
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
	Items `n' `stat' "" `names'
	if !`n' {
		error 102
	}
	local kinds 0
	local ordered 0
	forvalues i = 1/`n' {
		local x `source`i''
		c_local stat`i' `stat`i''
		c_local target`i' `target`i''
		c_local source`i' `x'
		local targets `targets' `target`i''
		* names that begin alike share a list of names and numbers
		local key = substr("`x'", 1, 28)
		local number
		local known `of_`key''
		while "`known'" != "" & "`number'" == "" {
			gettoken name known : known
			gettoken at known : known
			if "`name'" == "`x'" {
				local number `at'
			}
		}
		if "`number'" == "" {
			local kinds = `kinds' + 1
			local number `kinds'
			local of_`key' `of_`key'' `x' `kinds'
			local sources `sources' `x'
		}
		c_local number`i' `number'
		local percent
		if "`stat`i''" == "median" {
			local percent 50
		}
		else if "`stat`i''" == "iqr" {
			local percent iqr
		}
		else if substr("`stat`i''", 1, 1) == "p" {
			local percent = substr("`stat`i''", 2, .)
		}
		c_local percent`i' `percent'
		local type : type `x'
		if index("first last firstnm lastnm", "`stat`i''") {
			local ordered 1
		}
		else if "`stat`i''" != "count" & substr("`type'", 1, 3) == "str" {
			display as error "`x' is a string variable; (`stat`i'') needs numbers"
			exit 109
		}
	}
	c_local n `n'
	c_local kinds `kinds'
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

* Items n stat new names: a list of variables, or one variable with a new name, as items n+1 and on of Parse.
program define Items
	args n stat new
	macro shift 3
	local before `n'
	if "`*'" != "" {
		foreach x of varlist `*' {
			local n = `n' + 1
			c_local stat`n' `stat'
			c_local source`n' `x'
			if "`new'" != "" {
				c_local target`n' `new'
			}
			else {
				c_local target`n' `x'
			}
		}
	}
	if "`new'" != "" & `n' != `before' + 1 {
		display as error "`new'= must be followed by one variable"
		exit 198
	}
	c_local n `n'
end

* No name may be that of two results, or of a result and a by-variable.
program define CheckNames
	gettoken by 0 : 0
	foreach name in `by' `0' {
		local key = substr("`name'", 1, 28)
		foreach known in `of_`key'' {
			if "`known'" == "`name'" {
				display as error "`name' would be the name of two variables"
				exit 110
			}
		}
		local of_`key' `of_`key'' `name'
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
