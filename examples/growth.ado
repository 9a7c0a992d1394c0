*! version 1.0.0  21nov2026
* growth: yearly growth of a variable in percent, once the time variable is declared
program define growth, rclass
	version 7.0
	syntax varname(numeric) [if] [in], Generate(string)
	confirm new variable `generate'
	marksample touse
	generate double `generate' = 100 * D.`varlist' / L.`varlist' if `touse'
	label variable `generate' "Growth of `varlist', percent"
	quietly summarize `generate'
	return scalar mean = r(mean)
end
