*! version 1.0.0  22nov2026
* _samples A B m x touse by unpaired [exp]: the sample or the two samples of a test, as doubles A and B that it makes, and
* the number behind `=` as scalar m. Leaves with the caller kind (one, paired, two) and the samples' names, one and two.
program define _samples
	version 7.0
	args a b m x touse by unpaired
	macro shift 7
	local typed `*'
	if (_local(typed) == "") + ("`by'" == "") != 1 {
		display as error "either = or by() is required"
		exit 198
	}
	quietly generate double `a' = `x' if `touse'
	c_local one `x'
	if "`by'" != "" {
		c_local kind two
		tempvar group first
		_bygroup `group' = `by' if `a' < ., first(`first')
		if r(N_groups) < 2 {
			error cond(r(N_groups), 148, 2000)
		}
		if r(N_groups) > 2 {
			error 149
		}
		quietly generate double `b' = `a' if `group' == 2
		quietly replace `a' = . if `group' != 1
		_valuetext `by' `first'[1]
		c_local one : local text
		_valuetext `by' `first'[2]
		c_local two : local text
		exit
	}
	local 0 : local typed
	capture syntax varname
	error _rc == 1
	if !_rc {
		local y `varlist'
		confirm numeric variable `y'
		c_local kind = cond("`unpaired'" == "", "paired", "two")
		c_local two `y'
		quietly generate double `b' = `y' if `touse'
		if "`unpaired'" == "" {
			quietly replace `a' = . if `b' == .
			quietly replace `b' = . if `a' == .
		}
		exit
	}
	scalar `m' = `typed'
	if `m' == . {
		display as error "= must be followed by a number or a variable"
		exit 198
	}
	c_local kind one
end
