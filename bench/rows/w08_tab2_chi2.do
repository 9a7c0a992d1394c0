* load
insheet using main.csv, comma double names clear
* repeat 5
quietly tabulate a b, chi2
* check
assert r(N) == _N & r(chi2) != .
