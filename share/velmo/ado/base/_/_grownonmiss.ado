*! version 1.0.0  21nov2026
* egen's rownonmiss(): another name of robs()
program define _grownonmiss
	version 7.0
	_grobs `0'
end
