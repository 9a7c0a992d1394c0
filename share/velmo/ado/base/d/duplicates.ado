*! version 1.0.0  21nov2026
* duplicates: reports, shows, tags or drops observations that agree on all variables or on some; missing is a value
program define duplicates, rclass
	version 7.0
	gettoken what 0 : 0, parse(" ,")
	local l = length("`what'")
	if "`what'" == "drop" {
		Drop `0'
	}
	else if `l' & "`what'" == substr("report", 1, `l') {
		Report `0'
	}
	else if `l' & "`what'" == substr("list", 1, `l') {
		List `0'
	}
	else if `l' & "`what'" == substr("examples", 1, `l') {
		Examples `0'
	}
	else if `l' & "`what'" == substr("tag", 1, `l') {
		Tag `0'
	}
	else {
		display as error "one of report, list, examples, tag and drop is required"
		exit 198
	}
	return add
end

* Makes copies, how many observations of the sample agree, and which of them this one is; both are missing outside the
* sample.
program define Copies
	gettoken sample 0 : 0
	gettoken copies 0 : 0
	gettoken which 0 : 0
	tempvar group
	_bygroup `group' = `0' if `sample', missing count(`copies') number(`which')
end

program define Heading
	args varlist typed
	local terms "all variables"
	if "`typed'" != "" {
		local terms `varlist'
	}
	display
	display as text "{p 0 4}" _newline "Duplicates in terms of " as result "`terms'" as text _newline "{p_end}"
end

* Whether a varlist was typed: syntax fills in all variables where none was.
program define Typed
	gettoken first : 0, parse(" ,")
	if index(" if in , ", " `first' ") {
		local first
	}
	c_local typed `first'
end

program define Report, rclass
	version 7.0
	Typed `0'
	syntax [varlist] [if] [in]
	marksample sample, novarlist
	tempvar copies which group total first
	Copies `sample' `copies' `which' `varlist'
	Heading "`varlist'" `typed'
	quietly count if `which' == 1
	return scalar unique_value = r(N)
	_bygroup `group' = `copies', count(`total') first(`first')
	return scalar N = r(N)
	display
	display as text "{hline 10}{c TT}{hline 29}"
	display as text "   copies {c |} observations        surplus"
	display as text "{hline 10}{c +}{hline 29}"
	forvalues i = 1/`r(N_groups)' {
		local at = `first'[`i']
		display as result %9.0f `copies'[`at'] as text " {c |} " as result %12.0f `total'[`at'] /*
			*/ "   " %12.0f `total'[`at'] - `total'[`at'] / `copies'[`at']
	}
	display as text "{hline 10}{c BT}{hline 29}"
end

program define List, rclass
	version 7.0
	Typed `0'
	syntax [varlist] [if] [in] [, *]
	marksample sample, novarlist
	Heading "`varlist'" `typed'
	preserve
	Groups `sample' `varlist'
	quietly count
	return scalar N = r(N)
	if r(N) {
		list _group _obs `varlist', noobs `options'
	}
	else {
		display
		display as text "(no duplicates)"
	}
end

program define Examples, rclass
	version 7.0
	Typed `0'
	syntax [varlist] [if] [in] [, *]
	marksample sample, novarlist
	Heading "`varlist'" `typed'
	preserve
	Groups `sample' `varlist'
	quietly {
		generate long _copies = .
		by _group: replace _copies = _N
		by _group: keep if _n == 1
		count
	}
	return scalar N = r(N)
	if r(N) {
		list _group _copies _obs `varlist', noobs `options'
	}
	else {
		display
		display as text "(no duplicates)"
	}
end

* Leaves the observations that have copies, sorted, with the number of their group and where they stand in the data.
program define Groups
	gettoken sample 0 : 0
	tempvar copies which
	quietly {
		keep `sample' `0'
		generate long _obs = _n
		Copies `sample' `copies' `which' `0'
		keep if `copies' > 1 & `copies' < .
		_bygroup _group = `0', missing
		sort _group _obs
		compress _group _obs
		format _group _obs %8.0g
	}
end

program define Tag, rclass
	version 7.0
	syntax [varlist] [if] [in], Generate(string)
	confirm new variable `generate'
	marksample sample, novarlist
	tempvar copies which
	Copies `sample' `copies' `which' `varlist'
	quietly {
		replace `copies' = `copies' - 1
		compress `copies'
		format `copies' %8.0g
		label variable `copies' "number of duplicates"
		count if `copies' > 0 & `sample'
	}
	rename `copies' `generate'
	return scalar N = r(N)
end

* Keeps the first of each group, the order, and what the data were sorted by.
program define Drop, rclass
	version 7.0
	Typed `0'
	syntax [varlist] [if] [in] [, force]
	if "`typed'" != "" & "`force'" == "" {
		display as error "option force is required: observations that agree on `varlist' may differ elsewhere"
		exit 198
	}
	marksample sample, novarlist
	tempvar copies which
	Copies `sample' `copies' `which' `varlist'
	Heading "`varlist'" `typed'
	display
	quietly count if `which' > 1 & `which' < .
	return scalar N_drop = r(N)
	drop if `which' > 1 & `which' < .
end
