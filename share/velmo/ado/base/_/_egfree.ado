*! version 1.0.0  21nov2026
* _egfree name: what egen's functions ask before they define a value label of that name
program define _egfree
	version 7.0
	capture label list `1'
	error _rc == 1
	if !_rc {
		display as error "label `1' already defined"
		exit 110
	}
end
