* load
insheet using main.csv, comma double names clear
save tmp_velmo, replace
* repeat 3
use tmp_velmo, clear
* check
assert id != . & x != . & s != ""
erase tmp_velmo.dta
