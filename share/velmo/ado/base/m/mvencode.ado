*! version 1.0.0  21nov2026
* mvencode: missing values become a number
program define mvencode
	version 7.0
	syntax varlist [if] [in], MV(string) [OVERRIDE]
	confirm number `mv'
	if real("`mv'") >= . {
		error 198
	}
	marksample touse, novarlist
	local found 0
	foreach x of local varlist {
		local type : type `x'
		if substr("`type'", 1, 3) != "str" {
			local numeric `numeric' `x'
			_typed `x'
			quietly count if `x' == `typed'(`mv') & `touse'
			if r(N) & "`override'" == "" {
				display as error "`x': already `mv' in " r(N) cond(r(N) == 1, " observation", " observations")
				local found 1
			}
		}
	}
	if `found' {
		display as error "no action taken; choose another number or the option override"
		exit 9
	}
	preserve
	foreach x of local varlist {
		local here : subinstr local numeric "`x'" "`x'", word count(local known)
		if !`known' {
			display as text "`x': string variable ignored"
		}
		else {
			quietly count if `x' >= . & `touse'
			if r(N) {
				display as text "`x': " as result r(N) as text cond(r(N) == 1, " missing value", " missing values")
				quietly replace `x' = `mv' if `x' >= . & `touse'
			}
		}
	}
	restore, not
end
