*! version 1.0.0  22nov2026
* _binaryfit p y w: after logit or probit the probabilities, outcomes and frequencies of the estimation sample, as new
* variables; 301 after anything else, 135 after other weights than frequencies
program define _binaryfit
	version 7.0
	args p y w
	if !inlist("`e(cmd)'", "logit", "probit") {
		error 301
	}
	if !inlist("`e(wtype)'", "", "fweight") {
		error 135
	}
	quietly {
		_predict double `p' if e(sample)
		generate byte `y' = `e(depvar)' != 0 if e(sample)
		if "`e(wtype)'" == "" {
			generate byte `w' = 1 if e(sample)
		}
		else {
			generate double `w' `e(wexp)' if e(sample)
		}
		count if e(sample) & `p' < . & `y' < . & `w' < .
	}
	if r(N) == 0 {
		display as error "the estimation sample is not in the data"
		exit 2000
	}
end
