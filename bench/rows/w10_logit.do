* load
insheet using reg.csv, comma double names clear
* repeat 2
quietly logit bin v1-v5
* check
assert e(N) == _N & e(df_m) == 5 & e(ll) > e(ll_0)
