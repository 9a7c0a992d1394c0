*! version 1.0.0  21nov2026
* tsset: declares, shows or clears the time and panel variables, which time-series operators read
program define tsset, rclass
	version 7.0
	syntax [varlist(default=none numeric max=2)] [, CLEAR]
	if "`clear'" != "" {
		if "`varlist'" != "" {
			error 198
		}
		char _dta[_TStvar]
		char _dta[_TSpanel]
		exit
	}
	if "`varlist'" != "" {
		tokenize `varlist'
		if "`2'" == "" {
			Declare "" `1'
		}
		else {
			Declare `1' `2'
		}
	}
	local time : char _dta[_TStvar]
	local panel : char _dta[_TSpanel]
	if "`time'" == "" {
		display as error "time variable not set"
		exit 111
	}
	Show "`panel'" `time'
	return local timevar `time'
	return local panelvar `panel'
	return scalar tmin = r(min)
	return scalar tmax = r(max)
end

* Checks and sorts before anything is declared: whole, nonmissing times, none twice in a panel.
program define Declare
	args panel time
	quietly count if `time' != int(`time')
	if r(N) {
		error 451
	}
	sort `panel' `time'
	local same
	if "`panel'" != "" {
		local same "& `panel' == `panel'[_n-1]"
	}
	quietly count if `time' == `time'[_n-1] & _n > 1 `same'
	if r(N) {
		display as error "repeated time values"
		exit 451
	}
	char _dta[_TStvar] "`time'"
	char _dta[_TSpanel] "`panel'"
end

program define Show, rclass
	args panel time
	quietly summarize `time', meanonly
	local first = r(min)
	local last = r(max)
	local f : format `time'
	if "`panel'" != "" {
		display as text "       panel variable:  " as result "`panel'"
	}
	display as text "        time variable:  " as result "`time', " /*
		*/ trim(string(`first', "`f'")) " to " trim(string(`last', "`f'"))
	return scalar min = `first'
	return scalar max = `last'
end
