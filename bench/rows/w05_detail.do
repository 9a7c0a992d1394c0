* load
insheet using main.csv, comma double names clear
* repeat 3
summarize x, detail
* check
count if x <= r(p25)
assert abs(r(N) - _N/4) < 2
