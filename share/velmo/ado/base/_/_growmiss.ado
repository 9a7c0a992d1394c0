*! version 1.0.0  21nov2026
* egen's rowmiss(): another name of rmiss()
program define _growmiss
	version 7.0
	_grmiss `0'
end
