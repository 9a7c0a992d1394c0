*! version 1.0.0  22nov2026
* _tsorder: sorts by time, within panels; error 111 where no time variable is set. Leaves time and panel with the caller
program define _tsorder
	version 7.0
	local time : char _dta[_TStvar]
	local panel : char _dta[_TSpanel]
	if "`time'" == "" {
		display as error "time variable not set"
		exit 111
	}
	sort `panel' `time'
	c_local time `time'
	c_local panel `panel'
end
