* load
program define inner
	args x
	scalar s = s + `x'
end
program define outer
	inner `1'
end
program define w14calls
	scalar s = 0
	forvalues i = 1/50000 {
		outer `i'
	}
end
* repeat 1
w14calls
* check
assert s == 50000*50001/2
