* load
insheet using main.csv, comma double names clear
* repeat 1
save tmp_velmo, replace
* check
local n = _N
use tmp_velmo, clear
assert _N == `n'
erase tmp_velmo.dta
