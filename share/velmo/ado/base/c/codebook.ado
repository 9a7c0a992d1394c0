*! version 1.0.0  21nov2026
* codebook: what is in each variable: type, label, range, units, how many values and missing ones, the values themselves
program define codebook
	version 7.0
	syntax [varlist] [if] [in] [, Tabulate(integer 9) Notes]
	if "`if'`in'" != "" {
		preserve
		quietly keep `if' `in'
	}
	if _N == 0 {
		error 2000
	}
	foreach v of local varlist {
		Title `v'
		local type : type `v'
		if substr("`type'", 1, 3) == "str" {
			String `v' `tabulate'
		}
		else {
			Numeric `v' `tabulate'
		}
		if "`notes'" != "" {
			Notes `v'
		}
	}
end

* The name, and the label at the right or, a long one, below.
program define Title
	args v
	local label : variable label `v'
	if _local(label) == "" {
		local label "(unlabeled)"
	}
	local wide : columns local label
	local gap = 79 - length("`v'") - `wide'
	display
	display as text "{hline 79}"
	if `gap' < 2 {
		display as result "`v'"
		local gap = max(0, 79 - `wide')
		display _skip(`gap') as text _asis _text(label)
	}
	else {
		display as result "`v'" _skip(`gap') as text _asis _text(label)
	}
	display as text "{hline 79}"
	display
end

* One item, or two, of a line.
program define Item
	args name text name2 text2
	if `"`name2'"' == "" {
		display as text %22s "`name'" ":  " as result _asis `"`text'"'
	}
	else {
		local gap = max(1, 32 - length(`"`text'"'))
		display as text %22s "`name'" ":  " as result _asis `"`text'"' as text %`gap's `"`name2'"' ":  " as result "`text2'"
	}
end

* Counts: the observations with a value, the distinct values, and how often each occurs; first tells an observation with
* each distinct value, missing ones too, in their order.
program define Distinct
	args v often first n unique
	tempvar group all
	_bygroup `group' = `v'
	c_local `unique' `r(N_groups)'
	c_local `n' `r(N)'
	_bygroup `all' = `v', missing count(`often') first(`first')
end

* How values are written: f is a number's format, empty for strings; dated tells of dates.
program define Shown
	args v
	local f : format `v'
	local dated = index(_local(f), "%d") == 1 | index(_local(f), "%t") == 1 | index(_local(f), "%-d") == 1
	local type : type `v'
	if substr("`type'", 1, 3) == "str" {
		local f
	}
	else if !`dated' {
		local f = cond("`type'" == "long", "%12.0g", cond("`type'" == "double", "%10.0g", "%9.0g"))
	}
	c_local f : local f
	c_local dated `dated'
end

program define Numeric
	args v most
	tempvar often first
	local type : type `v'
	local label : value label `v'
	Shown `v'
	local kind = cond(`dated', "numeric date", "numeric")
	Distinct `v' `often' `first' n unique
	Item type "`kind' (`type')"
	if "`label'" != "" {
		Gaps `v' `label' `n' `unique'
	}
	display
	quietly summarize `v'
	local mean = string(r(mean))
	local sd = string(r(sd))
	if `n' {
		local range = "[" + trim(string(r(min), _local(f))) + "," + trim(string(r(max), _local(f))) + "]"
		local gap = max(1, 32 - length(_local(range)))
		Units `v' `type'
		display as text %22s "range" ":  " as result _asis _text(range) as text %`gap's "units" ":  " as result "`units'"
	}
	local missing = _N - `n'
	Item "unique values" `unique' "missing ." "`missing'/`=_N'"
	if `n' == 0 {
		exit
	}
	display
	if `unique' <= `most' {
		Table `v' `often' `first'
	}
	else if "`label'" != "" {
		Examples `v' `n'
	}
	else {
		if !`dated' {
			Item mean "`mean'"
			Item "std. dev." "`sd'"
			display
		}
		Percentiles `v'
	}
end

* The value label, and how many of the distinct values it leaves out.
program define Gaps
	args v label n unique
	tempvar text group
	quietly {
		capture decode `v', generate(`text')
		error _rc == 1
		if _rc {
			noisily Item label "`label', which does not exist"
			exit
		}
		_bygroup `group' = `v' if `text' == ""
	}
	local gap
	if r(N_groups) {
		local gap ", but `r(N_groups)' of `unique' values are not labeled"
	}
	Item label "`label'`gap'"
end

* The greatest power of ten that all values are multiples of, as nearly as their type can hold them.
program define Units
	args v type
	local k 0
	local few = min(_N, 1000)
	quietly count if `v' != int(`v')
	if r(N) {
		local off 1
		while `off' & `k' < 20 {
			local k = `k' + 1
			local kept "round(`v' * 1e`k', 1) / 1e`k'"
			if "`type'" == "float" {
				local kept "float(`kept')"
			}
			quietly count if `kept' != `v' & `v' < . in 1/`few'
			if !r(N) {
				quietly count if `kept' != `v' & `v' < .
			}
			local off = r(N)
		}
		local k = -`k'
	}
	else {
		local off 0
		while !`off' & `k' < 20 {
			local k = `k' + 1
			quietly count if mod(abs(`v'), 1e`k') != 0 & `v' < .
			local off = r(N)
		}
		local k = cond(`k' == 20, 0, `k' - 1)
	}
	c_local units = string(1e`k')
end

program define String
	args v most
	tempvar often first length
	local type : type `v'
	Distinct `v' `often' `first' n unique
	quietly generate int `length' = length(`v')
	quietly summarize `length', meanonly
	local longest
	if r(max) > 0 & r(max) < real(substr("`type'", 4, .)) {
		local longest ", but longest is str`r(max)'"
	}
	Item type "string (`type')`longest'"
	display
	local missing = _N - `n'
	Item "unique values" `unique' `"missing """' "`missing'/`=_N'"
	if `n' == 0 {
		exit
	}
	display
	if `unique' <= `most' {
		Table `v' `often' `first'
	}
	else {
		Examples `v' `n'
	}
	Blanks `v'
end

* Runs of blanks are easily overlooked.
program define Blanks
	args v
	local found
	quietly {
		count if `v' != ltrim(`v')
		if r(N) {
			local found leading
		}
		count if index(trim(`v'), " ")
		if r(N) {
			local found `found' embedded
		}
		count if `v' != rtrim(`v')
		if r(N) {
			local found `found' trailing
		}
	}
	if "`found'" != "" {
		local found : subinstr local found " " ", ", all
		display
		Item warning "variable has `found' blanks"
	}
end

* A step for each value, missing ones last for numbers and first for strings.
program define Table
	args v often first
	local label : value label `v'
	Shown `v'
	local string = _local(f) == ""
	local head = cond(`string', "Value", cond("`label'" == "", "Value", "Value  Label"))
	display as text %22s "tabulation" ":  " %10s "Freq." _skip(cond(`string', 2, 7)) "`head'"
	quietly count if `first' < .
	forvalues i = 1/`r(N)' {
		local at = `first'[`i']
		display as text _skip(25) as result %10.0f `often'[`at'] "  " _continue
		Value `v' `at'
	}
end

* Four values, each a fifth of the observations further on.
program define Examples, sortpreserve
	args v n
	Shown `v'
	sort `v'
	local empty = cond(_local(f) == "", _N - `n', 0)
	forvalues i = 1/4 {
		local at = `empty' + int(`n' * `i' / 5) + 1
		if `i' == 1 {
			display as text %22s "examples" ":  " _continue
		}
		else {
			display _skip(25) _continue
		}
		Value `v' `at'
	}
end

program define Percentiles
	args v
	Shown `v'
	quietly summarize `v', detail
	display as text %22s "percentiles" ":  " %10s "10%" %10s "25%" %10s "50%" %10s "75%" %10s "90%"
	display _skip(25) _continue
	foreach p in 10 25 50 75 90 {
		local value = string(r(p`p'), _local(f))
		display as result %10s trim(_local(value)) _continue
	}
	display
end

* Ends the line with one value; a number in ten columns, its label behind.
program define Value
	args v i
	Shown `v'
	if _local(f) == "" {
		display as result _asis (`v'[`i'])
		exit
	}
	local label : value label `v'
	local text
	if "`label'" != "" & `v'[`i'] < . & `v'[`i'] == int(`v'[`i']) {
		local number = `v'[`i']
		local text : label (`v') `number'
		if _local(text) == "`number'" {
			local text
		}
	}
	local value = trim(string(`v'[`i'], _local(f)))
	local wide : columns local value
	local gap = max(0, 10 - `wide')
	display as result _asis _skip(`gap') _text(value) cond(_local(text) == "", "", "  ") _text(text)
end

program define Notes
	args v
	_notelist `v'
	if "`numbers'" != "" {
		display
		foreach i of local numbers {
			local text : char `v'[note`i']
			display as text "{p 4 8}" _newline "`i'.  " as result _asis _text(text) _newline as vtml "{p_end}"
		}
	}
end
