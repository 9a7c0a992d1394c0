*! version 1.0.0  21nov2026
* egen: makes a variable by one of the functions of groups and rows, each of which is an ado-file of its own, _g<name>
* _g<name> type newvar = (arguments) [if] [in] [, by() options] makes the variable, under a temporary name; s(newvar)
* is the name that it will have.
program define egen, byable(onecall) sortpreserve sclass
	version 7.0
	gettoken type 0 : 0, parse(" =(,")
	gettoken new 0 : 0, parse(" =(,")
	if `"`new'"' == "=" {
		local new `type'
		local type
		local eq "="
	}
	else {
		gettoken eq 0 : 0, parse(" =(,")
	}
	gettoken fcn 0 : 0, parse(" (,")
	gettoken args 0 : 0, parse(" (,") match(paren)
	if `"`eq'"' != "=" | "`paren'" != "(" {
		error 198
	}
	confirm new variable `new'
	Checktype `type'
	Checkfcn `fcn'
	syntax [if] [in] [, BY(varlist) *]
	if _by() {
		if "`by'" != "" {
			display as error "option by() may not be combined with the prefix by"
			exit 190
		}
		local by `_byvars'
	}
	local default `type'
	if "`type'" == "" {
		local default : set type
	}
	if "`by'" != "" {
		local options `"by(`by') `options'"'
	}
	if `"`options'"' != "" {
		local options `", `options'"'
	}
	tempvar made
	sreturn clear
	sreturn local newvar `new'
	_g`fcn' `default' `made' = (`args') `if' `in' `options'
	confirm variable `made'
	if "`type'" != "" {
		Retype `type' `made'
	}
	else {
		Narrow `made'
	}
	local label : variable label `made'
	if _local(label) == "" {
		local by = trim("`by'")
		if "`by'" != "" {
			local by " by `by'"
		}
		label variable `made' = substr("`fcn'(" + _local(args) + ")`by'", 1, 80)
	}
	quietly count if missing(`made')
	if r(N) {
		local s = cond(r(N) == 1, "", "s")
		display as text "(" as result r(N) as text " missing value`s' generated)"
	}
	rename `made' `new'
end

program define Checktype
	args type
	if "`type'" == "" | index(" byte int long float double ", " `type' ") {
		exit
	}
	local width = real(substr("`type'", 4, .))
	if substr("`type'", 1, 3) != "str" | `width' != int(`width') | `width' < 1 | `width' > 244 {
		error 198
	}
end

* A function is known when its program is in memory or its file on the ado-path.
program define Checkfcn
	args fcn
	capture confirm names _g`fcn'
	error _rc == 1
	if !_rc {
		capture program list _g`fcn'
		error _rc == 1
		if _rc {
			capture which _g`fcn'
			error _rc == 1
		}
	}
	if _rc {
		display as error "unknown egen function `fcn'()"
		exit 133
	}
end

* Functions of codes and counts make a long, which becomes as narrow as its values allow.
program define Narrow
	args made
	local type : type `made'
	if "`type'" == "long" {
		quietly compress `made'
		local type : type `made'
		if index(" byte int ", " `type' ") & "`:value label `made''" == "" {
			format `made' %8.0g
		}
	}
end

* The type that was typed has the last word.
program define Retype
	args type made
	local has : type `made'
	if "`has'" == "`type'" {
		exit
	}
	tempvar narrow
	local values : value label `made'
	quietly generate `type' `narrow' = `made'
	label variable `narrow' : variable label `made'
	drop `made'
	rename `narrow' `made'
	if "`values'" != "" {
		label values `made' `values'
	}
end
