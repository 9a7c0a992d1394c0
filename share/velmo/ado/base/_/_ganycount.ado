*! version 1.0.0  21nov2026
* egen's anycount(): another name of neqany()
program define _ganycount
	version 7.0
	_gneqany `0'
end
