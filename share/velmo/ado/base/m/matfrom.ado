*! version 1.0.0  22nov2026
* matfrom: observations as the rows of a matrix
program define matfrom
	version 7.0
	syntax varlist(numeric ts) [if] [in], TO(string) [Missing]
	_matrows `to' = `varlist' `if' `in', `missing'
end
