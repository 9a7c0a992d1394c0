*! version 1.0.0  22nov2026
* means: one table of statistics for many variables, side by side
program define means, rclass byable(recall)
	version 7.0
	syntax [varlist(numeric)] [aweight fweight] [if] [in] [, BY(varlist) STats(string) SAVE Format(string)]
	if "`stats'" == "" {
		local stats count mean sd min max
	}
	local format = cond("`format'" == "", "%9.0g", "`format'")
	foreach stat of local stats {
		local word = cond(inlist("`stat'", "n", "N"), "count", cond("`stat'" == "var", "variance", "`stat'"))
		local p = real(substr("`word'", 2, .))
		if !index(" mean sum count sd variance min max median iqr skewness kurtosis ", " `word' ") /*
			*/ & !(substr("`word'", 1, 1) == "p" & `p' > 0 & `p' < 100) {
			display as error "unknown statistic (`stat')"
			exit 198
		}
		local words `words' `word'
	}
	marksample touse, novarlist
	quietly count if `touse'
	if r(N) == 0 {
		error 2000
	}
	if "`weight'" != "" {
		local weight [`weight'`exp']
	}
	tempname M
	tempvar group first
	local n 1
	if "`by'" != "" {
		_bygroup `group' = `by' if `touse', missing first(`first')
		local n = r(N_groups)
	}
	forvalues i = 1/`n' {
		if "`by'" != "" {
			quietly replace `touse' = `group' == `i'
			local at = `first'[`i']
			_groupline `at' `by'
		}
		Figures `M' `touse' "`weight'" "`words'" `varlist'
		Table `M' "`format'" "`stats'" `varlist'
	}
	if "`save'" != "" {
		matrix colnames `M' = `stats'
		matrix rename `M' return(stats)
	}
end

program define Figures
	gettoken M 0 : 0
	gettoken touse 0 : 0
	gettoken weight 0 : 0
	gettoken words 0 : 0
	local rows : word count `0'
	local cols : word count `words'
	matrix `M' = J(`rows',`cols',0)
	matrix rownames `M' = `0'
	tempvar at
	quietly generate long `at' = sum(`touse')
	quietly count if `at' == 0
	local obs = r(N)+1
	local i 0
	foreach x of local 0 {
		local i = `i'+1
		local asked
		local j 0
		foreach word of local words {
			local j = `j'+1
			tempvar r`j'
			local asked `asked' double `r`j'' = `word'(`x')
		}
		quietly _bystats `asked' `weight' if `touse'
		forvalues j = 1/`cols' {
			* an observation without weight has no value
			quietly summarize `r`j''
			_matcell `M' `i' `j' = cond(r(N), r(max), .)
			drop `r`j''
		}
	}
end

program define Table
	gettoken M 0 : 0
	gettoken format 0 : 0
	gettoken stats 0 : 0
	local k : word count `stats'
	local wide = max(1, int((`: set linesize'-15)/11))
	forvalues from = 1(`wide')`k' {
		local to = min(`from'+`wide'-1, `k')
		local rule = 11*(`to'-`from'+1)
		display as text _newline "    Variable {c |}" _continue
		forvalues j = `from'/`to' {
			display as text %11s abbrev("`: word `j' of `stats''",10) _continue
		}
		display as text _newline "{hline 13}{c +}{hline `rule'}"
		local i 0
		foreach x of local 0 {
			local i = `i'+1
			display as text %12s abbrev("`x'",12) " {c |}" _continue
			forvalues j = `from'/`to' {
				local shown : display `format' el(`M',`i',`j')
				display as result %11s trim("`shown'") _continue
			}
			display
		}
	}
end
