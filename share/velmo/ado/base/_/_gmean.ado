*! version 1.0.0  21nov2026
* egen's mean(): the mean of a group
program define _gmean
	version 7.0
	_egstat mean `0'
end
