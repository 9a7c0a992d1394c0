*! version 1.0.0  22nov2026
* _pairdifference D x touse exp: makes D, the differences of x and a variable or a number
program define _pairdifference
	version 7.0
	gettoken d 0 : 0
	gettoken x 0 : 0
	gettoken touse 0 : 0
	capture confirm string variable `0'
	error _rc == 1
	if !_rc {
		error 109
	}
	quietly generate double `d' = `x'-(`0') if `touse'
end
