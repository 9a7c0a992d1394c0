*! version 1.0.0  21nov2026
* mvdecode: numbers become missing values
program define mvdecode
	version 7.0
	syntax varlist [if] [in], MV(numlist)
	marksample touse, novarlist
	tempvar hit
	preserve
	quietly generate byte `hit' = 0
	foreach x of local varlist {
		local type : type `x'
		if substr("`type'", 1, 3) == "str" {
			display as text "`x': string variable ignored"
		}
		else {
			_typed `x'
			quietly replace `hit' = 0
			foreach value of local mv {
				quietly replace `hit' = 1 if `x' == `typed'(`value') & `touse'
			}
			quietly count if `hit'
			if r(N) {
				display as text "`x': " as result r(N) as text cond(r(N) == 1, " missing value", " missing values") " generated"
				quietly replace `x' = . if `hit'
			}
		}
	}
	restore, not
end
