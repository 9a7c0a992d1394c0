* load
insheet using reg.csv, comma double names clear
* repeat 4
quietly regress yy v1-v10, robust
* check
assert e(N) == _N & "`e(vcetype)'" == "Robust"
scalar robust = _se[v1]
quietly regress yy v1-v10
assert abs(robust / _se[v1] - 1) < .2
