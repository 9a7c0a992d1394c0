*! version 1.0.0  22nov2026
* _checklevel #: error 198 unless it is a confidence level, 10 to 99
program define _checklevel
	version 7.0
	args level
	if `level' < 10 | `level' > 99 {
		display as error "level() must be between 10 and 99 inclusive"
		exit 198
	}
end
