*! version 1.0.0  21nov2026
* notes: keeps notes on the dataset and on variables, as characteristics note1, note2, ... with their count in note0
program define notes
	version 7.0
	gettoken first rest : 0, parse(" :")
	if "`first'" == "drop" {
		Drop `rest'
		exit
	}
	if "`first'" == "list" {
		local 0 `"`rest'"'
		gettoken first rest : 0, parse(" :")
	}
	gettoken colon text : rest, parse(" :")
	if "`first'" == ":" {
		Add _dta `"`rest'"'
	}
	else if "`colon'" == ":" {
		Owner `first'
		Add `first' `"`text'"'
	}
	else {
		List `0'
	}
end

program define Owner
	if "`1'" != "_dta" {
		confirm variable `1'
	}
end

program define Add
	args owner text
	local text = trim(`"`text'"')
	if `"`text'"' == "" {
		display as error "nothing to note"
		exit 198
	}
	local n : char `owner'[note0]
	if "`n'" == "" {
		local n 0
	}
	local n = `n' + 1
	char `owner'[note0] `n'
	char `owner'[note`n'] `"`text'"'
end

program define List
	local owners `*'
	if "`owners'" == "" {
		local owners _dta
		foreach v of varlist _all {
			local owners `owners' `v'
		}
	}
	foreach owner in `owners' {
		Owner `owner'
		local n : char `owner'[note0]
		if "`n'" != "" {
			display
			display as result "`owner':"
			forvalues i = 1/`n' {
				local text : char `owner'[note`i']
				display as text "{p 2 6}" _newline "`i'.  " as result _asis `"`text'"' _newline as vtml "{p_end}"
			}
		}
	}
end

* notes drop owner [#]: one note, the later ones moving up, or all of them.
program define Drop
	args owner which
	Owner `owner'
	local n : char `owner'[note0]
	if "`n'" == "" {
		exit
	}
	if "`which'" == "" {
		forvalues i = 0/`n' {
			char `owner'[note`i']
		}
		exit
	}
	confirm integer number `which'
	if `which' < 1 | `which' > `n' {
		display as error "no note `which'"
		exit 198
	}
	local last = `n' - 1
	forvalues i = `which'/`last' {
		local next = `i' + 1
		local text : char `owner'[note`next']
		char `owner'[note`i'] `"`text'"'
	}
	char `owner'[note`n']
	if `last' == 0 {
		local last
	}
	char `owner'[note0] `last'
end
