*! version 1.0.0  21nov2026
* egen's concat(): the values of a row as one string
program define _gconcat
	version 7.0
	_egvars `0'
	syntax varlist [if] [in] [, BY(string) Punct(string) Decode Format(string) MAXlength(integer 244)]
	local separator
	if _local(punct) == "" & index(_local(0), "punct(") {
		local punct " "
	}
	tempvar all piece sample
	mark `sample' `if' `in'
	quietly {
		generate str1 `all' = ""
		foreach v of local varlist {
			Text `piece' `v' "`decode'" "`format'"
			replace `all' = `all' + _local(separator) + substr(`piece', 1, `maxlength')
			drop `piece'
			local separator : local punct
		}
		generate str1 `new' = ""
		replace `new' = `all' if `sample'
	}
end

* The values of one variable as text: with decode the value label's, by format() or as exactly as 17 digits can.
program define Text
	args piece v decode format
	local type : type `v'
	if substr("`type'", 1, 3) == "str" {
		generate str1 `piece' = ""
		replace `piece' = `v'
		exit
	}
	local label : value label `v'
	tempvar labelled
	if "`decode'" != "" & "`label'" != "" {
		capture decode `v', generate(`labelled')
		error _rc == 1
	}
	if "`format'" == "" {
		local format = cond("`type'" == "float", "%9.0g", "%18.0g")
	}
	generate str1 `piece' = ""
	replace `piece' = trim(string(`v', "`format'"))
	capture confirm variable `labelled'
	error _rc == 1
	if !_rc {
		replace `piece' = `labelled' if `labelled' != ""
	}
end
