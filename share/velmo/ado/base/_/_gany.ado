*! version 1.0.0  21nov2026
* egen's any(): the value of a variable where it is one of values(), missing elsewhere
program define _gany
	version 7.0
	_egvars `0'
	syntax varname(numeric) [if] [in], Values(numlist missingokay) [BY(string)]
	tempvar sample
	_typed `varlist'
	mark `sample' `if' `in'
	quietly {
		generate `type' `new' = .
		foreach value of local values {
			replace `new' = `varlist' if `varlist' == `typed'(`value') & `sample'
		}
	}
end
