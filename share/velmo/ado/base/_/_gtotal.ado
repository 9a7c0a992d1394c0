*! version 1.0.0  21nov2026
* egen's total(): another name of sum()
program define _gtotal
	version 7.0
	_gsum `0'
end
