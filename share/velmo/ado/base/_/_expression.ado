*! version 1.0.0  22nov2026
* _expression text: for programs whose line is an expression and options: leaves these with the caller as expression and
* options, the latter behind a comma
program define _expression
	version 7.0
	local typed : escaped 0
	_splitat , `typed'
	if _local(before) == "" {
		display as error "expression required"
		exit 100
	}
	c_local expression : local before
	local behind : escaped behind
	c_local options `", `behind'"'
end
