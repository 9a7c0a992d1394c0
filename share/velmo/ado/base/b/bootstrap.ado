*! version 1.0.0  22nov2026
* bootstrap: standard errors and intervals of a command's results, from samples drawn with replacement
program define bootstrap, rclass
	version 7.0
	local typed : escaped 0
	_splitcommand `typed'
	local 0 : local options
	syntax [, Reps(integer 50) STATs(string asis) CLuster(varlist) SAVing(string asis) Level(integer -1) noDOTs *]
	_resampled bootstrap `reps' `level' "`cluster'" "`dots'" `"`saving'"' `"`stats'"' "`colon'" `"`options'"' `command'
	return add
end
