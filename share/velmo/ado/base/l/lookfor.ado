*! version 1.0.0  21nov2026
* lookfor: describes the variables whose name or label holds one of the texts, whatever their case
program define lookfor, rclass
	version 7.0
	if _local(1) == "" {
		error 198
	}
	local found
	foreach v of varlist _all {
		local label : variable label `v'
		local here = lower("`v' " + _local(label))
		local i 1
		while _local(`i') != "" {
			if index(_local(here), lower(_local(`i'))) {
				local found `found' `v'
				local i 10000
			}
			local i = `i' + 1
		}
	}
	if "`found'" != "" {
		describe `found'
	}
	return local varlist `found'
end
