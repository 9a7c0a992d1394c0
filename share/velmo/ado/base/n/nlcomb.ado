*! version 1.0.0  22nov2026
* nlcomb: a nonlinear combination of coefficients, with its interval by the delta method
program define nlcomb, rclass
	version 7.0
	local typed : escaped 0
	_expression `typed'
	local 0 : local options
	syntax [, Level(integer -1)]
	_level `level'
	tempname b V f g
	matrix `b' = get(_b)
	matrix `V' = get(VCE)
	local typed : escaped expression
	Translate `b' `typed'
	local exp : escaped exp
	scalar `f' = `exp'
	if `f' >= . {
		display as error "the expression is missing"
		exit 459
	}
	matrix `g' = 0*`b'
	foreach j of local places {
		Derivative `b' `V' `g' `j' `exp'
	}
	matrix `g' = `g'*`V'*`g''
	display
	display as text " (1)  " as result _text(expression)
	display
	_coefrow show (1) `f' sqrt(`g'[1,1]) `level'
	return add
end

* The derivative by the jth coefficient, into its place in g: differences of the fourth order.
program define Derivative
	gettoken b 0 : 0
	gettoken V 0 : 0
	gettoken g 0 : 0
	gettoken j 0 : 0
	local exp : escaped 0
	tempname at h sum f
	scalar `at' = `b'[1,`j']
	scalar `h' = .001*max(abs(`at'), .01*sqrt(`V'[`j',`j']))
	if `h' == 0 {
		exit
	}
	scalar `sum' = 0
	foreach step in 1 -1 2 -2 {
		matrix `b'[1,`j'] = `at' + `step'*`h'
		scalar `f' = `exp'
		scalar `sum' = `sum' + cond(abs(`step') == 1, 8, -1)*sign(`step')*`f'
	}
	matrix `b'[1,`j'] = `at'
	if `sum' >= . {
		local name : word `j' of `: colfullnames `b''
		display as error "no derivative by `name'"
		exit 459
	}
	matrix `g'[1,`j'] = `sum'/(12*`h')
end

* The expression with the elements of b in place of coefficients, and the places of these: exp and places of the
* caller. A name is a coefficient's where it can be one.
program define Translate
	gettoken b 0 : 0
	local chars " +-*/^()[]=<>~!&|,"
	local behind 0
	while _local(0) != "" {
		gettoken word 0 : 0, parse("`chars'") quotes
		if index(_local(word), char(34)) | index(_local(word), char(96)) {
			error 198
		}
		local next = substr(ltrim(_local(0)), 1, 1)
		local isname = index("`chars'", "`word'") == 0
		local ref
		if "`word'" == "[" & ~`behind' {
			gettoken eq 0 : 0, parse("]")
			gettoken close 0 : 0, parse("]")
			gettoken word 0 : 0, parse("`chars'")
			local next = substr(ltrim(_local(0)), 1, 1)
			local ref "[`eq']`word'"
		}
		else if `isname' & "`next'" != "(" & ("`next'" != "[" | "`word'" == "_b" | "`word'" == "_coef") {
			local ref `word'
		}
		if "`ref'" != "" & "`next'" == "[" {
			gettoken open 0 : 0, parse("[")
			gettoken name 0 : 0, parse("]")
			gettoken close 0 : 0, parse("]")
			local ref "`ref'[`name']"
		}
		local blank
		if `behind' & (`isname' | "`ref'" != "") {
			local blank " "
		}
		if "`ref'" != "" {
			Place `b' `ref'
			if "`place'" != "" {
				local word "`b'[1,`place']"
				if index(" `places' ", " `place' ") == 0 {
					local places `places' `place'
				}
			}
			else {
				Nocoefficient `word' `ref'
			}
		}
		local behind = `isname' | "`ref'" != "" | "`word'" == "]" | "`word'" == ")"
		local exp "`exp'`blank'`word'"
	}
	c_local exp `exp'
	c_local places `places'
end

* A name that is no coefficient's may be a number's or a scalar's, but no variable's.
program define Nocoefficient
	args word ref
	tempname R
	if "`ref'" != "`word'" {
		quietly test `ref' = 0, matrix(`R')
	}
	capture confirm variable `word'
	error _rc == 1
	if _rc == 0 {
		display as error "`word' has no coefficient"
		exit 111
	}
end

* The place of a coefficient, in place of the caller; nothing when it is none.
program define Place
	gettoken b 0 : 0
	tempname R
	local place
	capture test `0' = 0, matrix(`R')
	error _rc == 1
	if _rc == 0 {
		local k = colsof(`b')
		forvalues j = 1/`k' {
			if `R'[1,`j'] == 1 {
				local place `j'
			}
		}
	}
	c_local place `place'
end
