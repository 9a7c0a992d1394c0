* load
insheet using main.csv, comma double names clear
program define w17loop
	forvalues q = 1/20 {
		quietly summarize x if k == `q', meanonly
	}
end
* repeat 1
w17loop
* check
local loop = r(mean)
summarize x if k == 20, meanonly
assert reldif(`loop', r(mean)) < 1e-12
