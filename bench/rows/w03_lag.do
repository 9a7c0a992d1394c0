* load
insheet using main.csv, comma double names clear
* repeat 10
generate double l = x - x[_n-1]
drop l
* check
generate double l = x - x[_n-1]
generate double total = sum(l)
assert abs(total[_N] - (x[_N] - x[1])) < 1e-6
