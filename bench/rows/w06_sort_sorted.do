* load
insheet using main.csv, comma double names clear
sort x
* repeat 5
sort x
* check
assert x >= x[_n-1] in 2/l
