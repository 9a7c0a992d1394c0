* load
insheet using main.csv, comma double names clear
* repeat 10
generate double z = x*2 + y/3 - 1
drop z
* check
generate double z = x*2 + y/3 - 1
assert z == x*2 + (y/3 - 1)  if x == . | y == .
assert reldif(z, x + x + y/3 - 1) < 1e-12
