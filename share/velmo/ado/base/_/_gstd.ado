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
	_bystats `m' = mean(`x') `s' = sd(`x') if `sample', by(`by')
	quietly generate `typlist' `varlist' = (`x' - `m') / `s' * (`std') + (`mean') if `s' > 0 & `s' < .
end
