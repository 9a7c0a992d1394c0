*! version 1.0.0  21nov2026
* egen's rank(): the rank of a value in its group, 1 for the smallest; ties share the mean of their ranks
program define _grank
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist) Field Track Unique]
	tempvar x sample order place n
	_egby `x' `sample' = `exp' `if' `in', by(`by') sorted
	if ("`field'" != "") + ("`track'" != "") + ("`unique'" != "") > 1 {
		display as error "only one of field, track and unique may be specified"
		exit 198
	}
	quietly {
		generate long `order' = _n
		sort `s(key)' `x' `order'
		`s(by)' generate long `place' = _n
		if "`field'" != "" {
			`s(by)' generate long `n' = sum(`x' < .)
			`s(by)' replace `n' = `n'[_N]
			generate `typlist' `varlist' = .
			by `s(key)' `x': replace `varlist' = `n' - `place'[_N] + 1 if `x' < .
		}
		else if "`track'" != "" {
			generate `typlist' `varlist' = .
			by `s(key)' `x': replace `varlist' = `place'[1] if `x' < .
		}
		else if "`unique'" != "" {
			generate `typlist' `varlist' = `place' if `x' < .
		}
		else {
			generate `typlist' `varlist' = .
			by `s(key)' `x': replace `varlist' = (`place'[1] + `place'[_N]) / 2 if `x' < .
		}
	}
end
