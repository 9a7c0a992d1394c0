* load
insheet using main.csv, comma double names clear
* repeat 1
outfile using columns_velmo, wide replace
* check
infile double(id g k a b) str20 s double(x y u w) using columns_velmo, clear
assert id != . & x != . & s != ""
erase columns_velmo.raw
