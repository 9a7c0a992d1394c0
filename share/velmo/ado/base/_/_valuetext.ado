*! version 1.0.0  22nov2026
* _valuetext varname obs: leaves with the caller in `text' how the value of that observation is shown, by its value label
* or its format
program define _valuetext
	version 7.0
	args x obs
	capture confirm string variable `x'
	error _rc == 1
	if !_rc {
		local text = `x'[`obs']
	}
	else {
		local value = `x'[`obs']
		local label : value label `x'
		if "`label'" != "" {
			local text : label `label' `value'
		}
		else {
			local text : display `: format `x'' `x'[`obs']
			local text = trim(_local(text))
		}
	}
	c_local text : local text
end
