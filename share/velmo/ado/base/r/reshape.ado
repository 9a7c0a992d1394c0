*! version 1.0.0  21nov2026
* reshape: turns an observation for each i and j into an observation for each i with variables for the j's, and back
program define reshape
	version 7.0
	gettoken form rest : 0, parse(" ,")
	if "`form'" == "error" {
		Offenders
		exit
	}
	if "`form'" == "clear" {
		Forget
		exit
	}
	if "`form'" == "" {
		Known
		exit
	}
	if !inlist("`form'", "wide", "long") {
		display as error "reshape wide, reshape long, reshape error or reshape clear"
		exit 198
	}
	if `"`rest'"' != "" {
		Define `form' `rest'
	}
	else {
		Recall
		if "`is'" == "`form'" {
			display as error "data are `form' already"
			exit 198
		}
	}
	char _dta[shape_try] `form'
	Recall
	if _N == 0 {
		error 2000
	}
	local obs = _N
	Count
	local vars `count'
	preserve
	if "`form'" == "wide" {
		ToWide "`i'" `j' "`stubs'" `"`given'"'
	}
	else {
		ToLong "`i'" `j' "`stubs'" `"`given'"' `"`values'"' "`string'"
	}
	char _dta[shape_form] `form'
	restore, not
	Report `form' `obs' `vars' "`used'"
end

* Remembers a definition in the characteristics shape_...; given are values of j that the user listed, values those
* that made the wide form.
program define Define
	gettoken form 0 : 0
	syntax anything(name=stubs id="stubs") , I(varlist) J(string) [String]
	gettoken j given : j
	local given = trim(`"`given'"')
	confirm names `j'
	if "`form'" == "wide" {
		confirm variable `j'
		local 0 `j'
		syntax varname
		local j `varlist'
		Plain `stubs'
		foreach x of varlist `plain' {
			local found `found' `x'
		}
		if !index("`stubs'", "@") {
			local stubs `found'
		}
		local both : subinstr local i "`j'" "`j'", word count(local known)
		local twice : subinstr local found "`j'" "`j'", word count(local more)
		if `known' | `more' {
			display as error "`j' may be j() only"
			exit 198
		}
		foreach x in `found' {
			local both : subinstr local i "`x'" "`x'", word count(local known)
			if `known' {
				display as error "`x' may be i() only"
				exit 198
			}
		}
		local type : type `j'
		if substr("`type'", 1, 3) == "str" {
			local string string
		}
		else {
			local string
		}
	}
	if `"`given'"' != "" & "`string'" == "" {
		numlist "`given'"
		local given "`r(numlist)'"
	}
	Forget
	char _dta[shape_i] `i'
	char _dta[shape_j] `j'
	char _dta[shape_stubs] `stubs'
	char _dta[shape_string] `string'
	char _dta[shape_given] : local given
end

program define Forget
	ForgetAll shape_
end

* Drops the characteristics of the dataset whose names begin so.
program define ForgetAll
	args begin
	local names : char _dta[]
	foreach c of local names {
		if index("`c'", "`begin'") == 1 {
			char _dta[`c']
		}
	}
end

program define Recall
	local i : char _dta[shape_i]
	if "`i'" == "" {
		display as error "no definition is known; give i() and j()"
		exit 198
	}
	foreach c in i j stubs string given values try {
		c_local `c' : char _dta[shape_`c']
	}
	c_local is : char _dta[shape_form]
end

program define Known
	Recall
	display as text "i        " as result "`i'"
	display as text "j        " as result "`j'"
	display as text "stubs    " as result "`stubs'"
	display as text "values   " as result "`values'"
	display as text "data are " as result cond("`is'" == "", "as they were", "`is'")
end

* The names that stubs have in long form: without the @ that marks the place of j.
program define Plain
	local plain : subinstr local 0 "@" "", all
	c_local plain `plain'
end

* The name of a stub in wide form.
program define Wide
	args stub value
	if index("`stub'", "@") {
		local stub : subinstr local stub "@" "`value'"
		c_local wide `stub'
	}
	else {
		c_local wide `stub'`value'
	}
end

program define Count
	local n 0
	foreach x of varlist _all {
		local n = `n' + 1
	}
	c_local count `n'
end

program define ToWide
	args i j stubs given
	Plain `stubs'
	local longs `plain'
	confirm variable `i' `j' `longs'
	quietly count if missing(`j')
	if r(N) {
		Refuse "`j' is missing in some observations"
	}
	Nameable `j'
	sort `j' `i'
	Same `j' `i'
	quietly count if `same'
	if r(N) {
		Refuse "`i' and `j' do not identify the observations"
	}
	Levels `j'
	if `"`given'"' != "" {
		foreach v in `values' {
			local same : subinstr local given `"`v'"' `"`v'"', word count(local known)
			if !`known' {
				display as error "`j' takes the value `v', which j() does not list"
				exit 459
			}
		}
	}
	foreach v in `values' {
		foreach stub in `stubs' {
			Wide `stub' `v'
			local made `made' `wide'
		}
	}
	confirm new variable `made'
	Others "`i' `j' `longs'"
	quietly {
		tempfile long base
		tempvar merged
		Remember `j' `longs'
		save `"`long'"', internal
		sort `i' `j'
		Same `i'
		foreach x of local others {
			count if `x' != `x'[_n-1] & `same'
			if r(N) {
				noisily Refuse "`x' is not constant within `i'"
			}
		}
		by `i': keep if _n == 1
		keep `i' `others'
		sort `i'
		save `"`base'"', internal
		* the values of one j are rows from to to of the file
		local k 0
		foreach v in `values' {
			local k = `k' + 1
			tempfile part`k'
			use `i' `longs' in `from`k''/`to`k'' using `"`long'"', internal
			foreach stub in `stubs' {
				Plain `stub'
				Wide `stub' `v'
				local label : variable label `plain'
				rename `plain' `wide'
				if _local(label) == "" {
					local label `plain'
				}
				label variable `wide' = "`v' " + _local(label)
			}
			sort `i'
			save `"`part`k''"', internal
		}
		use `"`base'"', internal
		forvalues p = 1/`k' {
			sort `i'
			merge `i' using `"`part`p''"', _merge(`merged')
			drop `merged'
		}
		sort `i'
		order `i' `made'
	}
	char _dta[shape_values] : local values
end

* Each value of j must be able to end a name. What could not stand in one is counted in the data: as text of a line it
* would be taken apart.
program define Nameable
	args j
	local type : type `j'
	if substr("`type'", 1, 3) != "str" {
		quietly count if `j' < 0 | `j' != int(`j') | `j' > 1e15
		if r(N) {
			display as error "`j' takes values below 0 or with fractions, which cannot end names"
			exit 198
		}
		exit
	}
	tempvar length bad
	quietly {
		generate int `length' = length(`j')
		summarize `length', meanonly
		local longest = min(r(max), 32)
		generate byte `bad' = `length' > 31
		forvalues k = 1/`longest' {
			replace `bad' = 1 if index("\!@#\$%^&*()-+=[]{}:;,'~<>?/|. \`" + char(34), substr(`j', `k', 1)) & `length' >= `k'
			replace `bad' = 1 if substr(`j', `k', 1) < " " & `length' >= `k'
		}
		count if `bad'
	}
	if r(N) {
		display as error "`j' takes values with blanks or signs, which cannot end names"
		exit 198
	}
end

* The test that an observation agrees with the one before it.
program define Same
	local same _n > 1
	foreach x in `*' {
		local same `same' & `x' == `x'[_n-1]
	}
	c_local same `same'
end

* The values of the sorted variable, and where each begins and ends: values, from#, to#.
program define Levels
	args j
	tempvar count
	quietly by `j': generate long `count' = _N
	local at 1
	local k 0
	while `at' <= _N {
		local k = `k' + 1
		local v = `j'[`at']
		local values `values' `v'
		c_local from`k' `at'
		local at = `at' + `count'[`at']
		c_local to`k' = `at' - 1
	}
	c_local values `values'
end

program define Others
	args used
	foreach x of varlist _all {
		local same : subinstr local used "`x'" "`x'", word count(local known)
		if !`known' {
			local others `others' `x'
		}
	}
	c_local others `others'
end

* What j, its characteristics too, and the stubs looked like, for the way back.
program define Remember
	args j
	macro shift
	local type : type `j'
	local f : format `j'
	local l : value label `j'
	char _dta[shape_jlook] "`type' `f' `l'"
	char _dta[shape_jlabel] : variable label `j'
	local names : char `j'[]
	char _dta[shape_jchars] `names'
	local k 0
	foreach c of local names {
		local k = `k' + 1
		char _dta[shape_jchar`k'] : char `j'[`c']
	}
	local k 0
	while "`1'" != "" {
		local k = `k' + 1
		char _dta[shape_label`k'] : variable label `1'
		macro shift
	}
end

program define ToLong
	args i j stubs given values string
	confirm variable `i'
	Plain `stubs'
	local longs `plain'
	confirm new variable `j' `longs'
	sort `i'
	Same `i'
	quietly count if `same'
	if r(N) {
		Refuse "`i' does not identify the observations"
	}
	if `"`given'"' != "" {
		local values `"`given'"'
	}
	if `"`values'"' == "" {
		Suffixes "`i'" "`stubs'" "`string'"
	}
	Sources "`stubs'" `values'
	Others "`used'"
	quietly {
		tempfile data
		save `"`data'"', internal
		local look : char _dta[shape_jlook]
		local k 0
		foreach v in `values' {
			local k = `k' + 1
			tempfile part`k'
			use `others' `used`k'' using `"`data'"', internal
			local s 0
			foreach stub in `stubs' {
				local s = `s' + 1
				Wide `stub' `v'
				Plain `stub'
				Take `wide' `plain' "`used`k''" `k' `type`s''
				if `k' == 1 {
					label variable `plain' : char _dta[shape_label`s']
				}
			}
			PutJ `j' "`string'" "`v'" `look'
			if `k' == 1 {
				RecallJ `j'
			}
			save `"`part`k''"', internal
		}
		use `"`part1'"', internal
		forvalues p = 2/`k' {
			append using `"`part`p''"'
		}
		if "`string'" == "" & "`look'" == "" {
			compress `j'
		}
		sort `i' `j'
		order `i' `j' `longs'
	}
	ForgetAll shape_jchar
	char _dta[shape_values] : local values
	c_local used `used'
end

* The values of j, from the names of variables that begin (and end) as a stub does.
program define Suffixes
	args i stubs string
	local values
	foreach x of varlist _all {
		local same : subinstr local i "`x'" "`x'", word count(local known)
		foreach stub in `stubs' {
			local mark = index("`stub'", "@")
			if !`mark' {
				local mark = length("`stub'") + 1
			}
			local before = substr("`stub'", 1, `mark'-1)
			local after = substr("`stub'", `mark'+1, .)
			local length = length("`x'") - length("`before'`after'")
			local v = substr("`x'", `mark', `length')
			if `length' > 0 & !`known' & "`x'" == "`before'`v'`after'" {
				Suitable "`v'" "`x'" "`string'"
				local same : subinstr local values "`v'" "`v'", word count(local twice)
				if `suitable' & !`twice' {
					local values `values' `v'
				}
			}
		}
	}
	if "`values'" == "" {
		display as error "no variables of the stubs `stubs'"
		exit 111
	}
	local count : word count `values'
	if "`string'" == "" & `count' <= 1600 {
		numlist "`values'", sort
		local values `r(numlist)'
	}
	c_local values `values'
end

* Whether a name's end can be a value of j: any text, or a whole number as it would be written.
program define Suitable
	args v x string
	local suitable 1
	if "`string'" == "" {
		local digits = "`v'"
		while substr("`digits'", 1, 1) == "0" & length("`digits'") > 1 {
			local digits = substr("`digits'", 2, .)
		}
		local suitable = trim(string(real("`digits'"), "%20.0f")) == "`digits'" & "`digits'" != "."
		if `suitable' & "`digits'" != "`v'" {
			display as error "`x': `v' would come back as `digits'; use the option string"
			exit 198
		}
	}
	c_local suitable `suitable'
end

* The variables of the wide form: used, those of the k-th value in used#, and for the s-th stub the type# that holds them.
program define Sources
	args stubs
	macro shift
	foreach x of varlist _all {
		local all `all' `x'
	}
	local s 0
	foreach stub in `stubs' {
		local s = `s' + 1
		local widest
		local k 0
		foreach v in `*' {
			local k = `k' + 1
			Wide `stub' `v'
			local same : subinstr local all "`wide'" "`wide'", word count(local known)
			if `known' {
				local used`k' `used`k'' `wide'
				local used `used' `wide'
				local type : type `wide'
				Wider "`widest'" `type' `wide'
			}
		}
		if "`widest'" == "" {
			display as error "no variables of the stub `stub'"
			exit 111
		}
		c_local type`s' `widest'
	}
	forvalues p = 1/`k' {
		c_local used`p' `used`p''
	}
	c_local used `used'
end

* The type that holds the values of two.
program define Wider
	args a b x
	c_local widest `b'
	if "`a'" == "" {
		exit
	}
	local strings = (substr("`a'", 1, 3) == "str") + (substr("`b'", 1, 3) == "str")
	if `strings' == 1 {
		display as error "`x' and others of its stub are strings and numbers"
		exit 109
	}
	if `strings' == 2 {
		local length = max(real(substr("`a'", 4, .)), real(substr("`b'", 4, .)))
		c_local widest str`length'
		exit
	}
	if index("long float", "`a'") & index("long float", "`b'") & "`a'" != "`b'" {
		c_local widest double
		exit
	}
	local order byte int long float double
	if index("`order'", "`a'") > index("`order'", "`b'") {
		c_local widest `a'
	}
end

* One stub of one value: under the stub's name, and in the first file in the type of them all.
program define Take
	args wide plain used k type
	local same : subinstr local used "`wide'" "`wide'", word count(local known)
	if !`known' {
		if `k' == 1 {
			local nothing .
			if substr("`type'", 1, 3) == "str" {
				local nothing """"
			}
			generate `type' `plain' = `nothing'
		}
		exit
	}
	local mine : type `wide'
	if `k' > 1 | "`mine'" == "`type'" {
		rename `wide' `plain'
		exit
	}
	generate `type' `plain' = `wide'
	local f : format `wide'
	if substr("`f'", -3, 3) != ".0g" & substr("`type'", 1, 3) != "str" {
		format `plain' `f'
	}
	local l : value label `wide'
	if "`l'" != "" {
		label values `plain' `l'
	}
	_charcopy `plain' `wide'
	drop `wide'
end

program define PutJ
	args j string v type f l
	if "`string'" != "" {
		generate str1 `j' = ""
		replace `j' = "`v'"
	}
	else if "`type'" == "" {
		generate double `j' = `v'
		format `j' %9.0g
		exit
	}
	else {
		generate `type' `j' = `v'
	}
	if "`f'" != "" {
		format `j' `f'
	}
	if "`l'" != "" {
		label values `j' `l'
	}
end

program define RecallJ
	args j
	label variable `j' : char _dta[shape_jlabel]
	local names : char _dta[shape_jchars]
	local k 0
	foreach c of local names {
		local k = `k' + 1
		char `j'[`c'] : char _dta[shape_jchar`k']
	}
end

program define Refuse
	args text
	display as error "`text'"
	display as error "reshape error lists the observations"
	exit 459
end

* What stood in the way of the last attempt.
program define Offenders
	Recall
	preserve
	tempvar bad
	if "`try'" == "long" {
		List "`i' does not identify the observations" "`i'" "" "_N > 1" `i'
		exit
	}
	Plain `stubs'
	confirm variable `i' `j' `plain'
	quietly generate byte `bad' = missing(`j')
	sort `i' `j'
	List "`j' is missing" "`i' `j'" "" "`bad'" `i' `j'
	List "`i' and `j' do not identify the observations" "`i' `j'" "" "_N > 1" `i' `j'
	Others "`i' `j' `plain' `bad'"
	foreach x of local others {
		List "`x' is not constant within `i'" "`i'" "`j'" "`x' != `x'[1]" `i' `j' `x'
	}
end

* Lists the groups of the by-variables in which the condition holds somewhere.
program define List
	args text by order condition
	macro shift 4
	tempvar bad
	sort `by' `order'
	quietly by `by': generate long `bad' = sum(`condition')
	quietly by `by': replace `bad' = `bad'[_N]
	quietly count if `bad'
	if r(N) {
		display
		display as text "`text' (observations concerned: " r(N) ")"
		list `*' if `bad'
	}
end

program define Report
	args form obs vars used
	Recall
	Plain `stubs'
	Count
	local values : word count `values'
	local was = cond("`form'" == "wide", "long", "wide")
	display
	display as result %44s "`was'" "   ->   `form'"
	display as text "{hline 75}"
	display as text %-14s "observations" as result %30.0f `obs' "   ->   " _N
	display as text %-14s "variables" as result %30.0f `vars' "   ->   `count'"
	Row "j (`values' values)" `form' `j' "(none)"
	foreach stub in `stubs' {
		Span `stub' "`used'"
		Plain `stub'
		Row "" `form' `plain' "`span'"
	}
	display as text "{hline 75}"
end

* One line: what stands in long form on the left when the data became wide, else on the right.
program define Row
	args title form long wide
	if "`form'" == "wide" {
		display as text %-14s "`title'" as result %30s "`long'" "   ->   `wide'"
	}
	else {
		display as text %-14s "`title'" as result %30s "`wide'" "   ->   `long'"
	}
end

* The first, second and last name of a stub in wide form, of those that were used if not all of them were.
program define Span
	args stub used
	local values : char _dta[shape_values]
	foreach v in `values' {
		Wide `stub' `v'
		local same : subinstr local used "`wide'" "`wide'", word count(local known)
		if `known' | "`used'" == "" {
			local span `span' `wide'
		}
	}
	local n : word count `span'
	if `n' > 3 {
		local last : word `n' of `span'
		tokenize `span'
		local span `1' `2' ... `last'
	}
	c_local span `span'
end
