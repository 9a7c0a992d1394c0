*! version 1.0.0  21nov2026
* egen's pctl(): another name of pctile()
program define _gpctl
	version 7.0
	_gpctile `0'
end
