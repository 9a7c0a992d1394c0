* load
* repeat 1
insheet using main.csv, comma double names clear
* check
assert id != . & x != . & s != ""
