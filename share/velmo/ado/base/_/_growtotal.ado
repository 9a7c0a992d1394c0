*! version 1.0.0  21nov2026
* egen's rowtotal(): another name of rsum()
program define _growtotal
	version 7.0
	_grsum `0'
end
