*! version 1.0.0  22nov2026
* regres_p: predict after regress and hac: all of _predict, and what leaving an observation out would change
program define regres_p
	version 7.0
	local typed : escaped 0
	syntax newvarname [if] [in] [, DFIts DFBeta(string) Residuals noLABel *]
	if "`residuals'" != "" & "`e(cmd)'" == "hac" {
		* posted estimates have no outcome that _predict knows
		Residual `typed'
		exit
	}
	if "`dfits'" == "" & _local(dfbeta) == "" {
		_predict `typed'
		exit
	}
	if "`dfits'" != "" & _local(dfbeta) != "" | "`residuals'" != "" | _local(options) != "" {
		display as error "dfits and dfbeta() stand alone"
		exit 198
	}
	if "`e(vcetype)'" != "" {
		display as error "not after a robust variance"
		exit 198
	}
	marksample touse, novarlist
	quietly replace `touse' = 0 if ~e(sample)
	tempvar t h s
	tempname R V
	if _local(dfbeta) != "" {
		local name : escaped dfbeta
		quietly test _b[`name'] = 0, matrix(`R')
	}
	quietly _predict double `t' if `touse', rstudent
	quietly _predict double `h' if `touse', hat
	if "`dfits'" != "" {
		generate `typlist' `varlist' = `t'*sqrt(`h'/(1-`h')) if `touse'
		local text "Dfits"
	}
	else {
		matrix `V' = e(V)
		matrix `R' = `R'[1,1..colsof(`V')]
		matrix `V' = `R'*`V'
		matrix `R' = `V'*`R''
		matrix score double `s' = `V' if `touse'
		generate `typlist' `varlist' = `t'*`s'/sqrt(`R'[1,1]*e(rmse)^2*(1-`h')) if `touse'
		local text = "Dfbeta of " + _local(dfbeta)
	}
	if "`label'" == "" {
		label variable `varlist' "`text'"
	}
end

program define Residual
	syntax newvarname [if] [in] [, Residuals noLABel]
	tempvar xb
	quietly _predict double `xb' `if' `in', xb
	generate `typlist' `varlist' = `e(depvar)'-`xb'
	if "`label'" == "" {
		label variable `varlist' "Residuals"
	}
end
