* load
insheet using m2.csv, comma double names clear
sort id
save m2, replace
drop _all
insheet using main.csv, comma double names clear
sort id
save main_id, replace
use main_id, clear
* repeat 1
merge id using m2
* check
sort id
assert id >= id[_n-1] in 2/l
assert _merge >= 1 & _merge <= 3
erase m2.dta
erase main_id.dta
