* load
insheet using main.csv, comma double names clear
* repeat 5
generate double z = exp(-x*x/2) + ln(u+1) + sqrt(u) + cond(x>0, y, -y)
drop z
* check
generate double z = exp(-x*x/2) + ln(u+1) + sqrt(u) + cond(x>0, y, -y)
assert reldif(z, exp(-x^2/2) + ln(u+1) + u^.5 + y*sign(x)) < 1e-9 if x != 0
