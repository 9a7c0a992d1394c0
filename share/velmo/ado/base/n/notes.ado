*! version 1.0.0  21nov2026
* notes: keeps notes on the dataset and on variables, as characteristics note1, note2, ... with their count in note0
program define notes
	version 7.0
	gettoken first rest : 0, parse(" :")
	if _local(first) == "drop" {
		Drop `rest'
		exit
	}
	if _local(first) == "list" {
		local 0 : local rest
		gettoken first rest : 0, parse(" :")
	}
	gettoken colon text : rest, parse(" :")
	if _local(first) == ":" {
		local first _dta
		local text : local rest
	}
	else if _local(colon) != ":" {
		List `0'
		exit
	}
	Owner `first'
	* the first token of the text stands where the text begins
	gettoken word : text
	if _local(word) == "" {
		display as error "nothing to note"
		exit 198
	}
	Next `first'
	char `first'[note`next'] : local text
	char `first'[note0] `next'
end

program define Owner
	if "`1'" != "_dta" {
		confirm variable `1'
	}
end

* The number of a new note: none that is there is overwritten.
program define Next
	_notelist `1'
	local last 0
	foreach i of local numbers {
		local last `i'
	}
	local next = `last' + 1
	local text : char `1'[note`next']
	while _local(text) != "" {
		local next = `next' + 1
		local text : char `1'[note`next']
	}
	c_local next `next'
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
		_notelist `owner'
		if "`numbers'" != "" {
			display
			display as result "`owner':"
			foreach i of local numbers {
				local text : char `owner'[note`i']
				display as text "{p 2 6}" _newline "`i'.  " as result _asis _text(text) _newline as vtml "{p_end}"
			}
		}
	}
end

* notes drop owner [#]: one note, the later ones moving up, or all of them.
program define Drop
	args owner which
	Owner `owner'
	_notelist `owner'
	if "`numbers'" == "" {
		exit
	}
	if "`which'" == "" {
		foreach i of local numbers {
			char `owner'[note`i']
		}
		char `owner'[note0]
		exit
	}
	confirm integer number `which'
	local same : subinstr local numbers "`which'" "`which'", word count(local known)
	if !`known' {
		display as error "no note `which'"
		exit 198
	}
	* count: the last number that stays in use; place: where the next of the later notes goes
	foreach i of local numbers {
		if `i' < `which' {
			local count `i'
		}
		if `i' > `which' {
			char `owner'[note`place'] : char `owner'[note`i']
			local count `place'
		}
		if `i' >= `which' {
			local place `i'
		}
	}
	char `owner'[note`place']
	char `owner'[note0] `count'
end
