*! version 1.0.0  21nov2026
* egen's rowmin(): another name of rmin()
program define _growmin
	version 7.0
	_grmin `0'
end
