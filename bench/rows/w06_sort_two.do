* load
insheet using main.csv, comma double names clear
* repeat 1
sort g x
* check
assert g > g[_n-1] | (g == g[_n-1] & x >= x[_n-1]) in 2/l
