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
	if "`miss'" != "" {
		marksample touse, strok
		local if if `touse'
		local in
	}
	if "`weight'" != "" {
		local exp [`weight' `exp']
	}
	preserve
	quietly {
		tempvar count
		noisily _bystats double `count' = count() `exp' `if' `in', by(`varlist') reduce
		keep `varlist' `count'
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
