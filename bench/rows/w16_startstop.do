* load
* repeat 1
* check
