*! version 1.0.0  21nov2026
* egen's pctile(): the p()th percentile of a group (the median unless told otherwise), as summarize, detail has it
program define _gpctile
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist) P(real 50)]
	tempvar x sample n k
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	if !(`p' > 0 & `p' < 100) {
		display as error "p() must be between 0 and 100"
		exit 198
	}
	quietly {
		sort `s(key)' `x'
		`s(by)' generate long `n' = sum(`x' < .)
		`s(by)' replace `n' = `n'[_N]
		generate double `k' = (`n' * `p') / 100
		`s(by)' generate `typlist' `varlist' = cond(round(`k', 1) * 100 == `n' * `p', /*
			*/ (`x'[`k'] + `x'[`k' + 1]) / 2, `x'[int(`k') + 1]) if `sample' & `n'
	}
end
