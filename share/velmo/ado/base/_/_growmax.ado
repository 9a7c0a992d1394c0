*! version 1.0.0  21nov2026
* egen's rowmax(): another name of rmax()
program define _growmax
	version 7.0
	_grmax `0'
end
