*! version 1.0.0  22nov2026
* probit_p: predict after probit
program define probit_p
	version 7.0
	local typed : escaped 0
	_binary_p probit `typed'
end
