*! version 1.0.0  21nov2026
* egen's ma(): the moving average of t() values around each, t odd; with nomiss, of those that are there
program define _gma
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist) T(integer 3) NOMISS]
	tempvar x sample total n
	_egby `x' `sample' = `exp' `if' `in', by(`by') sorted
	if `t' < 1 | mod(`t', 2) != 1 {
		display as error "t() must be odd and positive"
		exit 198
	}
	local half = (`t' - 1) / 2
	quietly {
		generate double `total' = 0
		generate int `n' = 0
		forvalues i = -`half'/`half' {
			`s(by)' replace `total' = `total' + `x'[_n + `i'] if `x'[_n + `i'] < .
			`s(by)' replace `n' = `n' + (`x'[_n + `i'] < .)
		}
		local enough = cond("`nomiss'" == "", `t', 1)
		generate `typlist' `varlist' = `total' / `n' if `sample' & `n' >= `enough'
	}
end
