* load
insheet using reg.csv, comma double names clear
* repeat 2
quietly correlate v1-v20
* check
assert r(N) == _N & abs(r(rho)) < 1
