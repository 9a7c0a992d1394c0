* load
program define w14mac
	forvalues i = 1/10000 {
		global v`i' = `i'
	}
	forvalues j = 1/10 {
		forvalues i = 1/10000 {
			local t "${v`i'}"
		}
	}
	global last `t'
end
* repeat 1
w14mac
* check
assert $last == 10000 & $v777 == 777
