*! version 1.0.0  21nov2026
* egen's kurt(): the kurtosis of a group, as summarize, detail has it
program define _gkurt
	version 7.0
	_egstat kurtosis `0'
end
