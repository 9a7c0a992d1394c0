*! version 1.0.0  21nov2026
* egen's min(): the smallest value of a group
program define _gmin
	version 7.0
	_egstat min `0'
end
