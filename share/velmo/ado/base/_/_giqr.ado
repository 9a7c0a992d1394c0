*! version 1.0.0  21nov2026
* egen's iqr(): the interquartile range of a group
program define _giqr
	version 7.0
	_egstat iqr `0'
end
