* load
insheet using main.csv, comma double names clear
generate double z = x
* repeat 5
replace z = 0.5*z[_n-1] + x if _n > 1
* check
assert z == 0.5*z[_n-1] + x if _n > 1
