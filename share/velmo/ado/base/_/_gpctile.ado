*! version 1.0.0  21nov2026
* egen's pctile(): the p()th percentile of a group (the median unless told otherwise), as summarize, detail has it
program define _gpctile
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(passthru) P(real 50)]
	if !(`p' > 0 & `p' < 100) {
		display as error "p() must be between 0 and 100"
		exit 198
	}
	_egstat p`p' `typlist' `varlist' = `exp' `if' `in', `by'
end
