*! version 1.0.0  21nov2026
* _egby value sample = exp [if] [in] [, by() strings sorted]: what egen's functions of groups begin with.  It marks the
* sample and evaluates the expression there (missing elsewhere).  Where the function (sorted) or the expression goes by
* the order within groups it sorts the data into them, the user's order within; then s(by) is the prefix that runs a
* command over the groups, s(key) the by-variables.  With strings, a string expression will do.
program define _egby, sclass
	version 7.0
	syntax newvarlist(min=2 max=2) =/exp [if] [in] [, BY(string) STRings SORTed]
	tokenize `varlist'
	args value sample
	sreturn clear
	mark `sample' `if' `in'
	foreach word in "[" "_n" "_N" "sum(" "group(" "uniform" {
		if index(_local(exp), "`word'") {
			local sorted sorted
		}
	}
	* nothing has no groups, in which a variable could be made
	if "`by'" != "" & "`sorted'" != "" & _N {
		tempvar order
		generate long `order' = _n
		sort `by' `order'
		sreturn local by "by `by':"
		sreturn local key "`by'"
	}
	quietly {
		capture `s(by)' generate double `value' = `exp' if `sample'
		error _rc == 1
		if _rc == 109 & "`strings'" != "" {
			generate str1 `value' = ""
			`s(by)' replace `value' = `exp' if `sample'
		}
		else if _rc {
			noisily `s(by)' generate double `value' = `exp' if `sample'
		}
	}
end
