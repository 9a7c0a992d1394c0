* load
insheet using main.csv, comma double names clear
* repeat 1
sort k
quietly by k: generate double m = sum(x)
quietly by k: replace m = m/_N
quietly by k: keep if _n == _N
* check
assert k > k[_n-1] in 2/l
assert m != .
