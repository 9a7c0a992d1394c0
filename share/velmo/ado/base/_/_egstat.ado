*! version 1.0.0  21nov2026
* _egstat stat [type] newvar = exp [if] [in] [, by() strings]: an egen function that is a statistic of _bystats.  A
* variable is taken as it stands; another expression is evaluated first.
program define _egstat
	version 7.0
	gettoken stat 0 : 0
	syntax newvarname =/exp [if] [in] [, BY(varlist) STRings]
	local kind = cond("`strings'" == "", "numeric", "")
	gettoken x rest : exp, match(paren)
	capture confirm names `x'`rest'
	if !_rc {
		capture confirm `kind' variable `x'
	}
	error _rc == 1
	if !_rc {
		_bystats `typlist' `varlist' = `stat'(`x') `if' `in', by(`by')
		exit
	}
	tempvar x sample
	_egby `x' `sample' = `exp' `if' `in', by(`by') `strings'
	_bystats `typlist' `varlist' = `stat'(`x') if `sample', by(`by')
end
