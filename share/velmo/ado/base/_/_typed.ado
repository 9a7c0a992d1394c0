*! version 1.0.0  21nov2026
* _typed x: leaves in typed how a number that was typed is compared with a variable: `typed'(number) is rounded as the
* variable's values have been
program define _typed
	version 7.0
	local type : type `1'
	local typed
	if "`type'" == "float" {
		local typed float
	}
	c_local typed `typed'
end
