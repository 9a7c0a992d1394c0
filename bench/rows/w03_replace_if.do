* load
insheet using main.csv, comma double names clear
generate double z = x
* repeat 10
replace z = -z if x > 0
* check
assert z == x
