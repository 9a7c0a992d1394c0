*! version 1.0.0  22nov2026
* regriv_p: predict after instrumental variables: what has a meaning there
program define regriv_p
	version 7.0
	local typed : escaped 0
	syntax newvarname [if] [in] [, Index XB Residuals STDP STDF CONstant(string) noLABel noOFFset]
	_predict `typed'
end
