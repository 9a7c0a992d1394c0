* load
insheet using main.csv, comma double names clear
* repeat 1
sort x
* check
generate byte bad = x < x[_n-1] in 2/l
summarize bad, meanonly
assert r(max) == 0
