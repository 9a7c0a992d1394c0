*! version 1.0.0  22nov2026
* jackknife: standard errors and intervals of a command's results, from samples that leave one observation out
program define jackknife, rclass
	version 7.0
	local typed : escaped 0
	_splitcommand `typed'
	local 0 : local options
	syntax [, STATs(string asis) CLuster(varlist) SAVing(string asis) Level(integer -1) noDOTs *]
	_resampled jackknife 0 `level' "`cluster'" "`dots'" `"`saving'"' `"`stats'"' "`colon'" `"`options'"' `command'
	return add
end
