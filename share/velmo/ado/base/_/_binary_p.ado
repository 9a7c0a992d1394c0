*! version 1.0.0  22nov2026
* _binary_p: predict after logit and probit, whose name is the first word. What observations contribute is computed
* from the linear predictor, so that probabilities next to 0 and 1 lose nothing.
program define _binary_p
	version 7.0
	gettoken link 0 : 0
	syntax newvarname [if] [in] [, P DEViance PEArson Hat DBeta XB Index STDP noLABel *]
	local own `p' `deviance' `pearson' `hat' `dbeta' `xb' `index' `stdp'
	if "`: word 2 of `own''" != "" {
		display as error "only one statistic may be asked for"
		exit 198
	}
	foreach part in if options {
		local `part' : escaped `part'
	}
	if "`deviance'`pearson'`hat'`dbeta'" == "" {
		_predict `typlist' `varlist' `if' `in', `xb' `index' `stdp' `label' `options'
		exit
	}
	marksample touse, novarlist
	tempvar xb h
	quietly _predict double `xb' if `touse', xb `options'
	if "`hat'`dbeta'" != "" {
		quietly generate double `h' = .
		quietly Leverage `link' `xb' `h' `touse' `options'
	}
	* from here on the predictor of the outcome that was observed, and its sign
	tempvar sign
	if "`hat'" == "" {
		quietly generate byte `sign' = cond(`e(depvar)' == 0, -1, 1) if `touse' & `e(depvar)' < .
		quietly replace `xb' = `sign'*`xb'
	}
	local r = cond("`link'" == "logit", "exp(-`xb'/2)", "sqrt(norm(-`xb')/norm(`xb'))")
	if "`deviance'" != "" {
		local like = cond("`link'" == "logit", "-cond(`xb' < -30, -`xb', ln(1+exp(-`xb')))", "ln(norm(`xb'))")
		generate `typlist' `varlist' = `sign'*sqrt(-2*`like') if `touse'
		local text "Deviance residual"
	}
	else if "`pearson'" != "" {
		generate `typlist' `varlist' = `sign'*`r' if `touse'
		local text "Pearson residual"
	}
	else if "`hat'" != "" {
		generate `typlist' `varlist' = `h' if `touse'
		local text "Leverage"
	}
	else {
		generate `typlist' `varlist' = `r'^2*`h'/(1-`h')^2 if `touse' & e(sample) & `sign' < .
		local text "Influence on the coefficients"
	}
	if "`label'" == "" {
		label variable `varlist' "`text'"
	}
end

* The leverage W x'(X'WX)^-1 x into h, by a root of the inverse. W are the weights of the expected information, times
* those of the estimation; an observation that stands for several is one of them.
program define Leverage
	args link xb h touse
	macro shift 4
	tempvar all own part
	tempname A row b
	matrix `b' = get(_b)
	local names : colnames `b'
	_predict double `all' if e(sample) | `touse', xb `*'
	if "`link'" == "logit" {
		generate double `own' = 1/(2+exp(`all')+exp(-`all'))
	}
	else {
		generate double `own' = normd(`all')^2/(norm(`all')*norm(-`all'))
	}
	local weight "`e(wexp)'"
	if "`weight'" == "" {
		local weight "= 1"
	}
	if "`e(wtype)'" != "fweight" {
		replace `own' = `own'*(`=substr("`weight'", 2, .)')
		local weight "= 1"
	}
	local x : subinstr local names "_cons" "", word
	local constant = cond("`x'" == "`names'", "noconstant", "")
	matrix accum `A' = `x' [iweight=`own'*(`=substr("`weight'", 2, .)')] if e(sample), `constant'
	matrix `A' = cholesky(syminv(`A'))
	matrix `A' = `A''
	matrix colnames `A' = `names'
	replace `h' = 0 if `touse'
	local k = rowsof(`A')
	forvalues i = 1/`k' {
		matrix `row' = `A'[`i',1...]
		matrix score double `part' = `row' if `touse'
		replace `h' = `h' + `part'^2
		drop `part'
	}
	replace `h' = `own'*`h'
end
