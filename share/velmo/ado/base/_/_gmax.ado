*! version 1.0.0  21nov2026
* egen's max(): the largest value of a group
program define _gmax
	version 7.0
	_egstat max `0'
end
