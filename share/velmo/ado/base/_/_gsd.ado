*! version 1.0.0  21nov2026
* egen's sd(): the standard deviation of a group, over n - 1
program define _gsd
	version 7.0
	_egstat sd `0'
end
