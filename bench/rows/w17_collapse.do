* load
insheet using main.csv, comma double names clear
* repeat 1
collapse (mean) m = x, by(k)
* check
assert k > k[_n-1] in 2/l
assert m != .
