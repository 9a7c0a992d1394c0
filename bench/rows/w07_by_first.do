* load
insheet using main.csv, comma double names clear
sort g
save main_g, replace
use main_g, clear
* repeat 3
quietly by g: generate double f = x[1]
drop f
* check
by g: generate double f = x[1]
assert f == x if g != g[_n-1]
assert f == f[_n-1] if g == g[_n-1]
erase main_g.dta
