* load
program define w14str
	local s ""
	forvalues i = 1/10000 {
		local s "`s'abcdefghij"
	}
	global n : length local s
end
* repeat 1
w14str
* check
assert $n == 100000
