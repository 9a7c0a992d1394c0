*! version 1.0.0  21nov2026
* egen's sd(): the standard deviation of a group, over n - 1
program define _gsd
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample mean
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	quietly {
		`s(by)' generate double `mean' = sum(`x') / sum(`x' < .)
		`s(by)' replace `mean' = `mean'[_N]
		`s(by)' generate `typlist' `varlist' = sqrt(sum((`x' - `mean')^2) / cond(sum(`x' < .) > 1, sum(`x' < .) - 1, .))
		`s(by)' replace `varlist' = cond(`sample', `varlist'[_N], .)
	}
end
