* load
insheet using main.csv, comma double names clear
* repeat 3
egen double m = mean(x), by(k)
drop m
* check
egen double m = mean(x), by(k)
summarize x if k == k[7], meanonly
assert m[7] == r(mean)
