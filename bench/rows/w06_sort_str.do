* load
insheet using main.csv, comma double names clear
* repeat 1
sort s
* check
assert s >= s[_n-1] in 2/l
