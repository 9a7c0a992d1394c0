*! version 1.0.0  21nov2026
* egen's kurt(): the kurtosis of a group, as summarize, detail has it
program define _gkurt
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist)]
	tempvar x sample mean m2
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	quietly {
		`s(by)' generate double `mean' = sum(`x') / sum(`x' < .)
		`s(by)' replace `mean' = `mean'[_N]
		replace `x' = `x' - `mean'
		`s(by)' generate double `m2' = sum(`x'^2) / sum(`x' < .)
		`s(by)' generate `typlist' `varlist' = (sum(`x'^4) / sum(`x' < .)) / `m2'^2
		`s(by)' replace `varlist' = cond(`sample', `varlist'[_N], .)
	}
end
