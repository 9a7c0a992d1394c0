*! version 1.0.0  21nov2026
* _egvars type newvar = (varlist) rest: what egen's functions of variable lists begin with.  It leaves type, new and
* 0 = "varlist rest" in the caller's locals, ready for syntax.
program define _egvars
	version 7.0
	gettoken type 0 : 0
	gettoken new 0 : 0
	gettoken equal 0 : 0, parse(" =")
	gettoken list 0 : 0, match(paren)
	c_local type `type'
	c_local new `new'
	c_local 0 `"`list' `0'"'
end
