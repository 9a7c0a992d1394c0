*! version 1.0.0  21nov2026
* egen's rowsd(): another name of rsd()
program define _growsd
	version 7.0
	_grsd `0'
end
