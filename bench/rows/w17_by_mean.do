* load
insheet using main.csv, comma double names clear
sort k
save main_k, replace
use main_k, clear
* repeat 3
quietly by k: summarize x, meanonly
* check
local last = r(mean)
summarize x if k == k[_N], meanonly
assert reldif(`last', r(mean)) < 1e-12
erase main_k.dta
