*! version 1.0.0  22nov2026
* table: statistics of groups by up to three keys, and more by by(), shown by tabdisp
program define table, byable(recall)
	version 7.0
	syntax varlist(max=3) [aw fw] [if] [in] [, Contents(string) BY(varlist) ROW COL Format(string) REPLACE SAVing(string) *]
	if "`contents'" == "" {
		local contents freq
	}
	Contents `contents'
	if "`saving'" != "" {
		_tablefile check `saving'
		if "`tablereplace'" == "" {
			confirm new file `"`tablename'"'
		}
	}
	local keys `by' `varlist'
	local k : word count `varlist'
	if "`col'" != "" & `k' < 2 {
		display as error "col needs two keys"
		exit 198
	}
	marksample touse, novarlist
	markout `touse' `keys', strok
	quietly count if `touse'
	if r(N) == 0 {
		error 2000
	}
	if "`weight'" != "" {
		local weight [`weight'`exp']
	}
	forvalues i = 1/`n' {
		tempvar r`i'
		local requests `requests' `r`i'' = `stat`i''(`source`i'')
		local cells `cells' `r`i''
	}
	preserve
	quietly {
		keep if `touse'
		if "`row'" != "" {
			Totals `: word 1 of `varlist''
		}
		if "`col'" != "" {
			Totals `: word 2 of `varlist''
		}
		noisily _bystats `requests' `weight', by(`keys') reduce
		keep `keys' `cells'
	}
	forvalues i = 1/`n' {
		label variable `r`i'' "`label`i''"
		format `r`i'' `=cond("`format'" == "" | "`stat`i''" == "count", "%9.0g", "`format'")'
	}
	if "`by'" != "" {
		local groups by(`by')
	}
	tabdisp `varlist', cellvar(`cells') `groups' `=cond("`row'`col'" == "", "", "totals")' `options'
	if "`saving'" != "" {
		File `"`tablename'"' `tablekind' "`tablereplace'" "`keys'" `cells'
	}
	if "`replace'" != "" {
		forvalues i = 1/`n' {
			local name : subinstr local keys "`name`i''" "", word count(local taken)
			local name = cond(`taken', substr("`stat`i''_`name`i''", 1, 32), "`name`i''")
			capture confirm new variable `name'
			error _rc == 1
			if _rc {
				local name = substr("`stat`i''_`name`i''", 1, 32)
			}
			rename `r`i'' `name'
		}
		restore, not
		global S_FN
		global S_FNDATE
	}
end

* stat var ..., with freq alone. Leaves n and for each stat#, source#, label#, and name#, what replace calls it.
program define Contents
	local n 0
	while "`1'" != "" {
		local n = `n'+1
		local stat = cond("`1'" == "n", "count", "`1'")
		local p = real(substr("`stat'", 2, .))
		if "`stat'" == "freq" {
			c_local stat`n' count
			c_local source`n'
			c_local label`n' Freq.
			c_local name`n' freq
			macro shift
		}
		else {
			if !index(" mean sum rawsum count sd min max median iqr first last firstnm lastnm ", " `stat' ") /*
				*/ & !(substr("`stat'", 1, 1) == "p" & `p' > 0 & `p' < 100) {
				display as error "unknown statistic (`1')"
				exit 198
			}
			local 0 `2'
			syntax varname
			local shown = cond(substr("`stat'", 1, 1) == "p", "`stat'", "`1'")
			c_local stat`n' `stat'
			c_local source`n' `varlist'
			c_local label`n' `shown'(`varlist')
			c_local name`n' `varlist'
			macro shift 2
		}
	}
	if `n' > 5 {
		error 103
	}
	c_local n `n'
end

* A copy of the data in which that key is missing, as of totals. A string's values become numbers with labels.
program define Totals
	args key
	local type : type `key'
	if substr("`type'", 1, 3) == "str" {
		tempvar code
		local label : variable label `key'
		encode `key', generate(`code')
		order `code' `key'
		drop `key'
		rename `code' `key'
		label variable `key' = _local(label)
	}
	local n = _N
	expand 2
	replace `key' = . if _n > `n'
end

program define File
	gettoken name 0 : 0
	gettoken kind 0 : 0
	gettoken replace 0 : 0
	gettoken keys 0 : 0
	local columns `keys' `0'
	local k : word count `columns'
	tempname h
	file open `h' using `"`name'"', write text `replace'
	_tablefile begin `h' `kind' `k'
	local heads
	foreach x of local columns {
		local head : variable label `x'
		local head = cond(_local(head) == "", "`x'", _local(head))
		local head : escaped head
		local heads `"`heads' `"`head'"'"'
	}
	_tablefile head `h' `kind' `heads'
	_tablefile rule `h' `kind'
	local n = _N
	forvalues i = 1/`n' {
		local cells
		local j 0
		foreach x of local columns {
			local j = `j'+1
			_valuetext `x' `i'
			if _local(text) == "." & `j' <= `: word count `keys'' {
				local text Total
			}
			local text : escaped text
			local cells `"`cells' `"`text'"'"'
		}
		_tablefile row `h' `kind' `cells'
	}
	_tablefile end `h' `kind'
	file close `h'
	display as text "(file " _text(name) " saved)"
end
