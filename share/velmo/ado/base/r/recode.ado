*! version 1.0.0  21nov2026
* recode: gives values new codes by rules, in place or in new variables
program define recode
	version 7.0
	syntax anything(name=spec id="varlist and rules") [if] [in] [, Generate(string) PREfix(string) TEST]
	local spec : escaped spec
	Divide `spec'
	Variables `names'
	Rules `rules'
	Targets "`varlist'" "`generate'" "`prefix'"
	CheckLabels "`labels'" `targets'
	marksample touse, novarlist
	preserve
	local i 0
	foreach x of local varlist {
		local i = `i' + 1
		local new : word `i' of `targets'
		tempvar code
		local type : type `x'
		quietly generate `type' `code' = `x' if `touse'
		* the first rule that fits decides, so it is applied last
		local r `n'
		local fits
		while `r' >= 1 {
			Fill `x' "`test`r''"
			local fits `""`filled'" `fits'"'
			quietly replace `code' = `value`r'' if (`filled') & `touse'
			local r = `r' - 1
		}
		if "`test'" != "" {
			Overlap `x' `touse' `fits'
		}
		quietly count if `code' != `x' & `touse'
		local changes = r(N)
		local s = cond(`changes' == 1, "", "s")
		if "`new'" == "" {
			quietly replace `x' = `code' if `touse'
			drop `code'
			display as text "(`x': `changes' change`s' made)"
		}
		else {
			quietly compress `code'
			local f : format `x'
			format `code' `f'
			label variable `code' "recode of `x'"
			rename `code' `new'
			display as text "(`changes' difference`s' between `x' and `new')"
		}
	}
	restore, not
	if "`labels'" != "" {
		foreach new of local targets {
			foreach r of local labels {
				label define `new' `value`r'' = _local(text`r'), modify
			}
			label values `new' `new'
		}
	}
end

* Where the names end and the rules, which go to another program, begin: at a parenthesis, a number or a word of rules.
program define Divide
	local rest : local 0
	while _local(rest) != "" {
		local before : local rest
		gettoken word rest : rest, parse(" ()=") quotes
		IsElement `word'
		if `element' | inlist(_local(word), "(", "=") {
			c_local names `names'
			c_local rules : escaped before
			exit
		}
		local names `names' `word'
	}
	display as error "rules required"
	exit 198
end

* Whether a word is an element of a rule, and the test that it stands for: @ is the variable, #() a number in its type.
program define IsElement
	args word
	c_local element 1
	if inlist(`"`word'"', "*", "else") {
		c_local elementtest 1
		exit
	}
	if inlist(`"`word'"', "missing", ".") {
		c_local elementtest @>=.
		exit
	}
	if `"`word'"' == "nonmissing" {
		c_local elementtest @<.
		exit
	}
	local slash = index(`"`word'"', "/")
	if !`slash' {
		capture confirm number `word'
		error _rc == 1
		c_local element = !_rc
		c_local elementtest @==#(`word')
		exit
	}
	local low = substr(`"`word'"', 1, `slash'-1)
	local high = substr(`"`word'"', `slash'+1, .)
	local test @<.
	if `"`low'"' != "min" {
		capture confirm number `low'
		error _rc == 1
		if _rc | "`low'" == "." {
			c_local element 0
			exit
		}
		local test `test'&@>=#(`low')
	}
	if `"`high'"' != "max" {
		capture confirm number `high'
		error _rc == 1
		if _rc | "`high'" == "." {
			c_local element 0
			exit
		}
		local test `test'&@<=#(`high')
	}
	if !index("`low'`high'", "m") {
		c_local element = `low' <= `high'
	}
	c_local elementtest (`test')
end

* Reads element ... = value ["text"], each rule in parentheses or not. Leaves n, test# and value#, and in labels the
* numbers of the rules that have a text#.
program define Rules
	local rest : local 0
	local n 0
	while _local(rest) != "" {
		local n = `n' + 1
		local tests
		local open 0
		gettoken word rest : rest, parse(" ()=") quotes
		if _local(word) == "(" {
			local open 1
			gettoken word rest : rest, parse(" ()=") quotes
		}
		while _local(word) != "=" {
			if _local(word) == "" {
				display as error "rule `n': = expected"
				exit 198
			}
			IsElement `word'
			if !`element' {
				display as error `"rule `n': `word' not understood"'
				exit 198
			}
			local tests `tests'|`elementtest'
			gettoken word rest : rest, parse(" ()=") quotes
		}
		if "`tests'" == "" {
			display as error "rule `n': nothing before the equals sign"
			exit 198
		}
		gettoken value rest : rest, parse(" ()=") quotes
		capture confirm number `value'
		error _rc == 1
		if _rc & `"`value'"' != "." {
			display as error "rule `n': a number or . must follow the equals sign"
			exit 198
		}
		if `open' {
			gettoken word rest : rest, parse(" ()=") quotes
			if _local(word) != ")" {
				confirm integer number `value'
				gettoken text : word
				c_local text`n' : local text
				local labels `labels' `n'
				gettoken word rest : rest, parse(" ()=") quotes
			}
			if _local(word) != ")" {
				display as error "rule `n': ) expected"
				exit 198
			}
		}
		c_local value`n' `value'
		local tests = substr("`tests'", 2, .)
		c_local test`n' `tests'
	}
	c_local n `n'
	c_local labels `labels'
end

program define Variables
	local 0 `*'
	syntax varlist(numeric)
	c_local varlist `varlist'
end

* The names of new variables, which must be free and as many as the variables.
program define Targets
	args varlist generate prefix
	if "`prefix'" != "" {
		if "`generate'" != "" {
			display as error "generate() and prefix() exclude each other"
			exit 198
		}
		foreach x of local varlist {
			local generate `generate' `prefix'`x'
		}
	}
	if "`generate'" == "" {
		c_local targets
		exit
	}
	confirm new variable `generate'
	local have : word count `generate'
	local want : word count `varlist'
	if `have' != `want' {
		display as error "generate() must name as many variables as there are to recode"
		exit cond(`have' < `want', 102, 103)
	}
	c_local targets `generate'
end

program define CheckLabels
	args labels
	macro shift
	if "`labels'" == "" {
		exit
	}
	if "`*'" == "" {
		display as error "value labels in rules need generate() or prefix()"
		exit 198
	}
	foreach new in `*' {
		capture label list `new'
		error _rc == 1
		if !_rc {
			display as error "label `new' already defined"
			exit 110
		}
	}
end

* A test for one variable.
program define Fill
	args x test
	_typed `x'
	local test : subinstr local test "@" "`x'", all
	local test : subinstr local test "#(" "`typed'(", all
	c_local filled `test'
end

* Tells of rules that fit nothing, or the same observations; a rule for everything else overlaps by intention.
program define Overlap
	args x touse
	macro shift 2
	tempvar hits
	quietly generate byte `hits' = 0
	local r 0
	while `"`1'"' != "" {
		local r = `r' + 1
		quietly count if (`1') & `touse'
		if !r(N) {
			display as text "(`x': rule `r' fits no observation)"
		}
		if "`1'" != "1" {
			quietly replace `hits' = `hits' + 1 if (`1') & `touse'
		}
		macro shift
	}
	quietly count if `hits' > 1
	if r(N) {
		local s = cond(r(N) == 1, "", "s")
		display as text "(`x': rules overlap in " r(N) " observation`s'; the first one counts)"
	}
end
