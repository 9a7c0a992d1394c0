*! version 1.0.0  21nov2026
* egen's rowfirst(): another name of rfirst()
program define _growfirst
	version 7.0
	_grfirst `0'
end
