* load
insheet using main.csv, comma double names clear
* repeat 1
outsheet using out_velmo.csv, comma replace
* check
insheet using out_velmo.csv, comma double names clear
assert id != . & x != . & s != ""
erase out_velmo.csv
