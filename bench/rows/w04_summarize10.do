* load
insheet using reg.csv, comma double names clear
* repeat 5
summarize v1-v10
* check
generate double s = sum(v10)
assert reldif(r(sum), s[_N]) < 1e-9 & r(N) == _N
