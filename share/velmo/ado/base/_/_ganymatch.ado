*! version 1.0.0  21nov2026
* egen's anymatch(): another name of eqany()
program define _ganymatch
	version 7.0
	_geqany `0'
end
