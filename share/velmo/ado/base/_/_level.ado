*! version 1.0.0  22nov2026
* _level #: the confidence level of the caller, in its local level: the setting for -1
program define _level
	version 7.0
	args level
	if `level' == -1 {
		local level : set level
	}
	if `level' < 10 | `level' > 99 {
		display as error "level() must be between 10 and 99 inclusive"
		exit 198
	}
	c_local level `level'
end
