*! version 1.0.0  21nov2026
* egen's rowlast(): another name of rlast()
program define _growlast
	version 7.0
	_grlast `0'
end
