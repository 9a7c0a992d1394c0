*! version 1.0.0  21nov2026
* contract: replaces the data by the combinations of variables that occur, and how often
program define contract
	version 7.0
	syntax varlist [if] [in] [fweight] [, Freq(string) Zero noMiss]
	if "`freq'" == "" {
		local freq _freq
	}
	confirm names `freq'
	local same : subinstr local varlist "`freq'" "`freq'", word count(local known)
	if `known' {
		display as error "`freq' already defined"
		exit 110
	}
	marksample touse, novarlist
	if "`miss'" != "" {
		markout `touse' `varlist', strok
	}
	preserve
	quietly {
		tempvar w count
		keep if `touse'
		if _N == 0 {
			noisily error 2000
		}
		if "`weight'" != "" {
			generate double `w' `exp'
		}
		else {
			generate byte `w' = 1
		}
		keep `varlist' `w'
		sort `varlist'
		by `varlist': generate double `count' = sum(`w')
		by `varlist': keep if _n == _N
		drop `w'
		if "`zero'" != "" {
			fillin `varlist'
			replace `count' = 0 if _fillin
			drop _fillin
		}
		order `varlist'
		compress `count'
		format `count' %10.0g
		label variable `count' "Frequency"
		rename `count' `freq'
	}
	restore, not
	global S_FN
	global S_FNDATE
end
