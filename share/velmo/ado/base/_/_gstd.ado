*! version 1.0.0  21nov2026
* egen's std(): a value less the mean of its group over the standard deviation, or with another mean() and std()
program define _gstd
	version 7.0
	syntax newvarname =/exp [if] [in] [, BY(varlist) Mean(real 0) Std(real 1)]
	tempvar x sample m s
	_egby `x' `sample' = `exp' `if' `in', by(`by')
	if `std' <= 0 {
		display as error "std() must be positive"
		exit 198
	}
	quietly {
		`s(by)' generate double `m' = sum(`x') / sum(`x' < .)
		`s(by)' replace `m' = `m'[_N]
		`s(by)' generate double `s' = sqrt(sum((`x' - `m')^2) / cond(sum(`x' < .) > 1, sum(`x' < .) - 1, .))
		`s(by)' generate `typlist' `varlist' = (`x' - `m') / `s'[_N] * (`std') + (`mean') if `s'[_N] > 0 & `s'[_N] < .
	}
end
