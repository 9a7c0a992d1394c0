*! version 1.0.0  21nov2026
* _charcopy new old: gives a variable the characteristics, notes among them, of another
program define _charcopy
	version 7.0
	args new old
	local names : char `old'[]
	foreach c of local names {
		char `new'[`c'] : char `old'[`c']
	}
end
