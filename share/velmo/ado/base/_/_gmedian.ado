*! version 1.0.0  21nov2026
* egen's median(): the median of a group
program define _gmedian
	version 7.0
	_egstat median `0'
end
