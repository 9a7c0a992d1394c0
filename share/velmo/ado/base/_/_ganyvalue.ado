*! version 1.0.0  21nov2026
* egen's anyvalue(): another name of any()
program define _ganyvalue
	version 7.0
	_gany `0'
end
