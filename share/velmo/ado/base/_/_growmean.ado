*! version 1.0.0  21nov2026
* egen's rowmean(): another name of rmean()
program define _growmean
	version 7.0
	_grmean `0'
end
