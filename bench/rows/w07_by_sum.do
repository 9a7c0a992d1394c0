* load
insheet using main.csv, comma double names clear
sort g
save main_g, replace
use main_g, clear
* repeat 3
quietly by g: generate double f = sum(x)
drop f
* check
by g: generate double f = sum(x)
assert reldif(f, x) < 1e-12 if g != g[_n-1]
assert abs(f - f[_n-1] - x) < 1e-9 if g == g[_n-1]
erase main_g.dta
