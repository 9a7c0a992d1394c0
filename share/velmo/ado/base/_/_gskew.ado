*! version 1.0.0  21nov2026
* egen's skew(): the skewness of a group, as summarize, detail has it
program define _gskew
	version 7.0
	_egstat skewness `0'
end
