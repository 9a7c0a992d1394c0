*! version 1.0.0  22nov2026
* _groupline obs varlist: the line that tells a group of by(): -> x = 1, y = "a"
program define _groupline
	version 7.0
	gettoken obs 0 : 0
	local between "-> "
	display
	foreach x of local 0 {
		_valuetext `x' `obs'
		display as text "`between'`x' = " as result _text(text) _continue
		local between ", "
	}
	display
end
