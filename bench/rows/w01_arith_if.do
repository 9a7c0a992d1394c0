* load
insheet using main.csv, comma double names clear
* repeat 10
generate double z = x*2 + y/3 - 1 if u > 0.5
drop z
* check
generate double z = x*2 + y/3 - 1 if u > 0.5
assert (z == .) == (u <= 0.5)
