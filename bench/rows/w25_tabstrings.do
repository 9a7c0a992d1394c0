* load
insheet using main.csv, comma double names clear
generate str14 p = "class number " + string(int(a/2))
generate str3 q = "q" + string(b)
* repeat 3
quietly tabulate p
quietly tabulate p q, chi2
* check
assert r(N) == _N & r(chi2) != .
