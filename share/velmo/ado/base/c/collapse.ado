*! version 1.0.0  21nov2026
* collapse: replaces the data by statistics of groups, an observation a group
program define collapse
	version 7.0
	syntax anything(name=clist id="list of variables") [if] [in] [fweight aweight] [, BY(varlist) CW]
	Parse `clist'
	CheckNames "`by'" `targets'
	if "`cw'" != "" {
		marksample touse
		markout `touse' `sources', strok
		local if if `touse'
		local in
	}
	forvalues i = 1/`n' {
		tempvar r`i'
		local results `results' `r`i''
		local requests `requests' `r`i'' = `stat`i''(`source`i'')
	}
	if "`weight'" != "" {
		local exp [`weight' `exp']
	}
	preserve
	quietly {
		noisily _bystats `requests' `exp' `if' `in', by(`by') reduce
		forvalues i = 1/`n' {
			Dress `source`i'' `r`i'' `stat`i''
		}
		keep `by' `results'
		order `by' `results'
		forvalues i = 1/`n' {
			rename `r`i'' `target`i''
		}
	}
	restore, not
	global S_FN
	global S_FNDATE
end

* Reads [(stat)] varlist|new=var ... and leaves with the caller n; for each result stat#, target# and source#; and the
* lists sources (each once) and targets.
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
	forvalues i = 1/`n' {
		local x `source`i''
		c_local stat`i' `stat`i''
		c_local target`i' `target`i''
		c_local source`i' `x'
		local targets `targets' `target`i''
		* names that begin alike share a list
		local key = substr("`x'", 1, 28)
		local known
		foreach name in `of_`key'' {
			if "`name'" == "`x'" {
				local known 1
			}
		}
		if "`known'" == "" {
			local of_`key' `of_`key'' `x'
			local sources `sources' `x'
		}
		local type : type `x'
		if !index(" count first last firstnm lastnm ", " `stat`i'' ") & substr("`type'", 1, 3) == "str" {
			display as error "`x' is a string variable; (`stat`i'') needs numbers"
			exit 109
		}
	}
	c_local n `n'
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
