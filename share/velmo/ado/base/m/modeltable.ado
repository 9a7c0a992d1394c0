*! version 1.0.0  22nov2026
* modeltable: fits that modelkeep has kept, side by side
program define modeltable, rclass
	version 7.0
	syntax [anything(name=asked)] [, SE T P STats(string) SAVing(string)]
	local file 0
	if _local(saving) != "" {
		local file 1
		_tablefile check `saving'
		if "`tablereplace'" == "" {
			confirm new file `"`tablename'"'
		}
	}
	if "`stats'" == "" {
		local stats N r2 ll aic bic
	}
	local wanted `asked'
	if "`wanted'" == "" {
		local wanted $MODELKEPT
	}
	foreach name in `wanted' `stats' {
		confirm name `name'
	}
	tempname current coefs figures
	capture estimates hold `current', restore
	error _rc == 1
	foreach name of local wanted {
		nobreak {
			capture estimates unhold `name'
			local rc = _rc
			if `rc' == 0 {
				estimates hold `name', copy
			}
		}
		if `rc' == 0 {
			tempname B S
			Collect `B' `S' `stats'
			local all `all' `names'
			local outcomes `outcomes' `=cond("`e(depvar)'" == "", ".", "`e(depvar)'")'
			local models `models' `name'
			local coefficients `coefficients' `B'
			local statistics `statistics' `S'
		}
		else if "`asked'" != "" {
			display as error "no fit is kept as `name'"
			exit 111
		}
	}
	estimates clear
	if "`models'" == "" {
		display as error "no fits are kept"
		exit 301
	}
	Rows `all'
	Assemble `coefs' "`rows'" "`models'" `coefficients'
	Assemble `figures' "`stats'" "`models'" `statistics'
	local below `se' `t' `p'
	local k : word count `models'
	local wide = max(1, int((`: set linesize'-14)/12))
	forvalues first = 1(`wide')`k' {
		local last = min(`first'+`wide'-1, `k')
		Lines display - `first' `last' "`models'" "`outcomes'" "`rows'" "`below'" "`stats'" /*
			*/ `coefficients' `statistics'
	}
	if `file' {
		tempname h
		file open `h' using `"`tablename'"', write text `tablereplace'
		_tablefile begin `h' `tablekind' `=`k'+1'
		Lines `h' `tablekind' 1 `k' "`models'" "`outcomes'" "`rows'" "`below'" "`stats'" /*
			*/ `coefficients' `statistics'
		_tablefile end `h' `tablekind'
		file close `h'
		display as text "(file " _text(tablename) " saved)"
	}
	matrix rename `coefs' return(coefs)
	matrix rename `figures' return(stats)
end

* Of the present fit: rows b, se, t, p by coefficient, a row of statistics, the coefficients' names.
program define Collect
	args B S
	macro shift 2
	tempname b V
	matrix `b' = get(_b)
	matrix `V' = get(VCE)
	local names : colfullnames `b'
	local k = colsof(`b')
	local rank 0
	matrix `B' = J(4,`k',0)
	forvalues j = 1/`k' {
		local v = `V'[`j',`j']
		local rank = `rank' + (`v' > 0)
		matrix `B'[1,`j'] = `b'[1,`j']
		matrix `B'[2,`j'] = sqrt(`v')
		_matcell `B' 3 `j' = cond(`v' > 0, `b'[1,`j']/sqrt(`v'), .)
		_matcell `B' 4 `j' = cond(e(df_r) < ., tprob(e(df_r), `B'[3,`j']), 2*norm(-abs(`B'[3,`j'])))
	}
	matrix colnames `B' = `names'
	local k : word count `*'
	matrix `S' = J(1,`k',0)
	matrix colnames `S' = `*'
	forvalues j = 1/`k' {
		local value e(``j'')
		if "``j''" == "aic" | "``j''" == "bic" {
			local value -2*e(ll) + cond("``j''" == "aic", 2, ln(e(N)))*`rank'
		}
		capture _matcell `S' 1 `j' = `value'
		error _rc == 1
		if _rc {
			_matcell `S' 1 `j' = .
		}
	}
	c_local names `names'
end

* The names of all coefficients, each once, in the order in which they come; constants last.
program define Rows
	foreach name in `*' {
		if index(" `rows' `last' ", " `name' ") == 0 {
			if "`name'" == "_cons" {
				local last _cons
			}
			else {
				local rows `rows' `name'
			}
		}
	}
	c_local rows `rows' `last'
end

* The column of a name, as c of the caller; one without an equation is none of an equation's.
program define Column
	args B name
	c_local c = colnumb(`B', cond(index("`name'", ":"), "`name'", "_:`name'"))
end

* The first row of each matrix as a column, by name.
program define Assemble
	args M rows models
	macro shift 3
	matrix `M' = J(`: word count `rows'',`: word count `models'',0)
	local i 0
	foreach row of local rows {
		local i = `i' + 1
		local j 0
		foreach B in `*' {
			local j = `j' + 1
			Column `B' `row'
			_matcell `M' `i' `j' = cond(`c' < ., `B'[1,`c'], .)
		}
	}
	matrix rownames `M' = `rows'
	matrix colnames `M' = `models'
end

* The table's lines, on the screen or into a file, for some of the models.
program define Lines
	args to kind first last models outcomes rows below stats
	macro shift 9
	local k : word count `models'
	forvalues j = `first'/`last' {
		local B`j' ``j''
		local i = `k'+`j'
		local S`j' ``i''
		local names `"`names' "`: word `j' of `models''""'
		local depvars `"`depvars' "`: word `j' of `outcomes''""'
	}
	if "`to'" == "display" {
		display
	}
	Line head `to' `kind' "" `names'
	Line row `to' `kind' "" `depvars'
	Line rule `to' `kind' `=`last'-`first'+1'
	foreach name of local rows {
		local r 0
		foreach figure in b se t p {
			local r = `r' + 1
			if `r' == 1 | index(" `below' ", " `figure' ") {
				local cells
				forvalues j = `first'/`last' {
					Cell `B`j'' `name' `r' `kind'
					local cells `"`cells' "`cell'""'
				}
				Line row `to' `kind' "`=cond(`r' == 1, "`name'", "`figure'")'" `cells'
			}
		}
	}
	Line rule `to' `kind' `=`last'-`first'+1'
	foreach name of local stats {
		local cells
		forvalues j = `first'/`last' {
			Cell `S`j'' `name' 1 `kind'
			local cells `"`cells' "`cell'""'
		}
		Line row `to' `kind' "`name'" `cells'
	}
end

* The text of a figure, empty where there is none.
program define Cell
	args B name r kind
	Column `B' `name'
	local cell
	if `c' < . {
		local x = `B'[`r',`c']
		local format = cond("`kind'" == "csv", "%12.0g", "%9.0g")
		if `r' > 2 {
			local format = cond(`r' == 3, "%9.2f", "%5.3f")
		}
		if `x' < . {
			local cell = trim(string(`x', "`format'"))
			if `r' == 2 & "`kind'" != "csv" {
				local cell "(`cell')"
			}
		}
		if rowsof(`B') == 4 & `B'[1,`c'] == 0 {
			if `B'[2,`c'] == 0 {
				local cell = cond(`r' == 1, "(dropped)", "")
			}
		}
	}
	c_local cell `cell'
end

program define Line
	gettoken what 0 : 0
	gettoken to 0 : 0
	gettoken kind 0 : 0
	if "`to'" != "display" {
		_tablefile `what' `to' `kind' `0'
	}
	else if "`what'" == "rule" {
		display as text "{hline 13}{c +}{hline `=12*`0'+1'}"
	}
	else {
		gettoken stub 0 : 0
		display as text %12s abbrev("`stub'",12) " {c |}" _continue
		foreach cell of local 0 {
			display as `=cond("`what'" == "head", "text", "result")' %12s abbrev("`cell'",11) _continue
		}
		display
	}
end
