*! version 1.0.0  21nov2026
* _notelist owner: leaves in numbers those of its notes, ascending. Notes are the characteristics note# up to the count
* in note0, which may be anything in a file made elsewhere: it is not counted up to.
program define _notelist
	version 7.0
	args owner
	local count : char `owner'[note0]
	local count = real(_local(count))
	local names : char `owner'[]
	local last 0
	local ascend 1
	if `count' < . {
		foreach c of local names {
			local i = real(substr("`c'", 5, .))
			if "`c'" == "note`i'" & inrange(`i', 1, min(`count', 1e9)) {
				local numbers `numbers' `i'
				local ascend = `ascend' & `i' > `last'
				local last `i'
			}
		}
	}
	local n : word count `numbers'
	if !`ascend' & `n' <= 1600 {
		numlist "`numbers'", sort
		local numbers `r(numlist)'
	}
	c_local numbers `numbers'
end
