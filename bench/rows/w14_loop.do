* load
program define w14loop
	forvalues i = 1/1000000 {
		local a = `i'*2
		if `a' > 1999990 {
			scalar s = `a'
		}
	}
end
* repeat 1
w14loop
* check
assert s == 2000000
