*! version 1.0.0  21nov2026
* clear: the session without its data, value labels, scalars, matrices, results and loaded ado-files
program define clear
	version 7.0
	if `"`0'"' != "" {
		error 198
	}
	drop _all
	label drop _all
	scalar drop _all
	matrix drop _all
	constraint drop _all
	estimates clear
	return clear
	sreturn clear
	discard
end
