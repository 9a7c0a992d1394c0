*! version 1.0.0  22nov2026
* indicators: variables of 0 and 1 for the values of others and for pairs of values; and in front of a command
program define indicators
	version 7.0
	local typed : escaped 0
	_splitat : `typed'
	local 0 : local before
	syntax anything(name=list id="varlist") [, Prefix(string) BASE(string)]
	if "`prefix'" == "" {
		local prefix I
	}
	* a variable alone is a pair whose second part is number 0, which has one value
	Terms `list'
	local n0 1
	local b0 0
	local g0 1
	local i 0
	foreach x of local singles {
		local i = `i'+1
		local x`i' `x'
		tempvar g`i' f`i'
		Values `i' `x' `g`i'' `f`i'' "`base'"
	}
	local m 0
	foreach pair of local pairs {
		gettoken a c : pair, parse("_")
		local c = substr("`c'", 2, .)
		forvalues i = 1/`n`a'' {
			forvalues j = 1/`n`c'' {
				if `i' != `b`a'' & `j' != `b`c'' {
					local m = `m'+1
					Name "`prefix'" `x`a'' `s`a'_`i'' `x`c'' `s`c'_`j''
					local name`m' `name'
					local rule`m' "`g`a'' == `i' & `g`c'' == `j' if `g`a'' < . & `g`c'' < ."
					local label`m' `x`a'' `f`a''[`i']
					if `c' {
						local label`m' `label`m'' `x`c'' `f`c''[`j']
					}
					local for`a'_`c' `for`a'_`c'' `name'
					local all `all' `name'
				}
			}
		}
	}
	CheckNew `all'
	forvalues i = 1/`m' {
		quietly generate byte `name`i'' = `rule`i''
		Label `name`i'' `label`i''
	}
	if !`found' {
		exit
	}
	local command : local behind
	forvalues t = 1/`terms' {
		local made
		foreach pair of local parts`t' {
			local made `made' `for`pair''
		}
		local command : escaped command
		Substitute `typed`t'' "`made'" `command'
	}
	local command : escaped command
	`command'
end

* Leaves with the caller singles, the variables of the list; pairs, the a_c of which there will be indicators: numbers of
* two variables, or c 0 for a alone; and for each of the terms, what stands for it in a command: typed#, and its pairs,
* parts#.
program define Terms
	local n 0
	local rest `0'
	while "`rest'" != "" {
		gettoken word rest : rest
		local star = index("`word'", "*")
		local 0 = substr("`word'", 1, `star'-1)+" "+substr("`word'", `star'+1, .)
		local product 0
		if `star' > 1 & `star' < length("`word'") {
			capture syntax varlist(min=2 max=2)
			error _rc == 1
			local product = _rc == 0
		}
		if `product' {
			Number `singles' : `varlist'
			local both : word 1 of `numbers'
			local second : word 2 of `numbers'
			local parts `both'_0 `second'_0 `both'_`second'
			if `both' == `second' {
				local parts `both'_0
			}
			local n = `n'+1
			c_local typed`n' `word'
			c_local parts`n' `parts'
			local wanted `wanted' `parts'
		}
		else {
			local 0 `word'
			syntax varlist
			foreach x of local varlist {
				Number `singles' : `x'
				local n = `n'+1
				c_local typed`n' `x'
				c_local parts`n' `numbers'_0
				local wanted `wanted' `numbers'_0
			}
		}
	}
	foreach pair of local wanted {
		local known : subinstr local pairs "`pair'" "", word count(local there)
		if !`there' {
			local pairs `pairs' `pair'
		}
	}
	c_local singles `singles'
	c_local pairs `pairs'
	c_local terms `n'
end

* Adds names to a list unless they are there; their numbers in it.
program define Number
	gettoken singles names : 0, parse(":")
	if "`singles'" == ":" {
		local singles
	}
	else {
		gettoken colon names : names, parse(":")
	}
	foreach x of local names {
		local k : word count `singles'
		local number 0
		forvalues i = 1/`k' {
			if "`x'" == "`: word `i' of `singles''" {
				local number `i'
			}
		}
		if !`number' {
			local singles `singles' `x'
			local number = `k'+1
		}
		local numbers `numbers' `number'
	}
	c_local singles `singles'
	c_local numbers `numbers'
end

* The values of variable i: their number, the number of the one left out, and how each ends a name; group and first as
* _bygroup makes them. Values that are whole and not negative end names, of others the rank does.
program define Values
	args i x group first base
	_bygroup `group' = `x', first(`first')
	local n = r(N_groups)
	if `n' == 0 {
		error 2000
	}
	local ranks 1
	capture confirm numeric variable `x'
	error _rc == 1
	if !_rc {
		quietly count if `x' < . & (`x' < 0 | `x' != int(`x') | `x' >= 1e15)
		local ranks = r(N) > 0
	}
	local out = cond("`base'" == "highest", `n', cond(inlist("`base'", "", "lowest"), 1, 0))
	forvalues j = 1/`n' {
		local suffix `j'
		if !`ranks' {
			local suffix : display %15.0f `x'[`first'[`j']]
			local suffix = trim("`suffix'")
		}
		c_local s`i'_`j' `suffix'
		if !`out' {
			capture confirm numeric variable `x'
			error _rc == 1
			if cond(_rc, "`base'" == "`j'", `x'[`first'[`j']] == real("`base'")) {
				local out `j'
			}
		}
	}
	if !`out' {
		display as error "base(`base'): `x' has no such value"
		exit 198
	}
	c_local n`i' `n'
	c_local b`i' `out'
end

* prefix, a, i [, b, j]: the name of an indicator, the variables' names cut so that it is a name. A short one leaves its
* room to the other.
program define Name
	args prefix a i b j
	local room = 32-length("`prefix'")-length("_`i'")
	if "`b'" != "" {
		local room = `room'-length("__`j'")
		local half = max(int(`room'/2), `room'-length("`b'"))
		local a = substr("`a'", 1, `half')
		local b = "_"+substr("`b'", 1, `room'-length("`a'"))+"_`j'"
	}
	else {
		local a = substr("`a'", 1, `room')
	}
	c_local name `prefix'`a'_`i'`b'
end

* 198 unless all may be names, 110 for one that is in use or comes twice.
program define CheckNew
	local rest `0'
	while "`rest'" != "" {
		gettoken name rest : rest
		confirm new variable `name'
		local others : subinstr local rest "`name'" "", word count(local again)
		if `again' {
			display as error "`name' already defined"
			exit 110
		}
	}
end

* name a obs [b obs]: "a==value", or "a==value & b==value"
program define Label
	args name a i b j
	Equal `a' `i'
	local label : local text
	if "`b'" != "" {
		Equal `b' `j'
		label variable `name' = _local(label)+" & "+_local(text)
	}
	else {
		label variable `name' = _local(label)
	}
end

program define Equal
	args x obs
	capture confirm string variable `x'
	error _rc == 1
	if _rc {
		local text = "`x'=="+string(`x'[`obs'])
	}
	else {
		local text = "`x'=="+`x'[`obs']
	}
	c_local text : local text
end

* Puts the words of a list in place of a name in a command, wherever a varlist may stand: not behind if, in, a weight or
* a comma, until a colon begins another command. Leaves the command with the caller.
program define Substitute
	gettoken name 0 : 0
	gettoken list 0 : 0
	local rest : local 0
	local depth 0
	local lists 1
	while _local(rest) != "" {
		local blank = cond(substr(_local(rest), 1, 1) == " ", " ", "")
		gettoken token rest : rest, parse(" ,:()[]=<>~!&|+") quotes
		local depth = `depth'+inlist(_local(token), "(", "[")-inlist(_local(token), ")", "]")
		if `depth' == 0 {
			local lists = cond(inlist(_local(token), "if", "in", ","), 0, cond(_local(token) == ":", 1, `lists'))
		}
		if _local(token) == "[" {
			local lists 0
		}
		if `lists' & _local(token) == "`name'" {
			local token `list'
		}
		foreach text in command token {
			local `text' : escaped `text'
		}
		local command `"`command'`blank'`token'"'
	}
	c_local command : local command
end
