* load
insheet using main.csv, comma double names clear
outfile using raw_velmo, comma wide replace
* repeat 1
infile double(id g k a b) str20 s double(x y u w) using raw_velmo, clear
* check
assert id != . & x != . & s != ""
erase raw_velmo.raw
