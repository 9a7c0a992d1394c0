* load
insheet using main.csv, comma double names clear
save main, replace
sort id
* repeat 1
append using main
* check
summarize x, meanonly
local s = r(sum)
use main, clear
summarize x, meanonly
assert reldif(`s', 2*r(sum)) < 1e-12
erase main.dta
