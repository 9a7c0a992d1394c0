*! version 1.0.0  22nov2026
* _binary_p: predict after logit and probit, whose name is the first word. What observations contribute is computed
* from the linear predictor, so that probabilities next to 0 and 1 lose nothing.
program define _binary_p
	version 7.0
	gettoken link 0 : 0
	syntax newvarname [if] [in] [, P DEViance PEArson Hat DBeta noLABel *]
	local own `p' `deviance' `pearson' `hat' `dbeta'
	if "`: word 2 of `own''" != "" {
		display as error "only one statistic may be asked for"
		exit 198
	}
	foreach part in if options {
		local `part' : escaped `part'
	}
	if "`own'" == "" | "`p'" != "" {
		_predict `typlist' `varlist' `if' `in', `label' `options'
		exit
	}
	if "`hat'`dbeta'" != "" {
		Modelled
	}
	marksample touse, novarlist
	tempvar xb h
	quietly _predict double `xb' if `touse', xb `options'
	if "`hat'`dbeta'" != "" {
		quietly _predict double `h' if `touse', stdp `options'
		if "`link'" == "logit" {
			quietly replace `h' = `h'^2/(2+exp(`xb')+exp(-`xb'))
		}
		else {
			quietly replace `h' = `h'^2*normd(`xb')^2/(norm(`xb')*norm(-`xb'))
		}
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

* Leverage needs the model's own variance, and observations that count alike.
program define Modelled
	if "`e(vcetype)'" != "" {
		display as error "not after a robust variance"
		exit 198
	}
	if "`e(wtype)'" != "" & "`e(wtype)'" != "fweight" {
		error 135
	}
end
