*! version 1.0.0  22nov2026
* _expression: for programs whose line is an expression and options. Of the text behind it the caller gets what stands
* ahead of the comma, one outside all brackets, as expression, and the rest, with the comma, as options.
program define _expression
	version 7.0
	local open 0
	local comma
	while _local(0) != "" & "`comma'" == "" {
		gettoken part 0 : 0, parse(",()[]") quotes
		if _local(part) == "," & `open' <= 0 {
			local comma ","
		}
		else {
			local open = `open' + (index("([", _local(part)) > 0) - (index(")]", _local(part)) > 0)
			local exp : escaped exp
			local part : escaped part
			local exp `exp'`part'
		}
	}
	if _local(exp) == "" {
		display as error "expression required"
		exit 100
	}
	local exp : escaped exp
	local rest : escaped 0
	c_local expression `exp'
	c_local options `comma' `rest'
end
