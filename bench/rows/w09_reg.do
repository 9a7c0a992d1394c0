* load
insheet using reg.csv, comma double names clear
* repeat 4
quietly regress yy v1-v10
* check
assert e(N) == _N & e(df_m) == 10 & e(df_r) == _N - 11
generate double e = yy - _b[_cons]
forvalues i = 1/10 {
	quietly replace e = e - _b[v`i'] * v`i'
}
quietly summarize e
assert abs(r(mean)) < 1e-9 & abs(r(sd) / e(rmse) - 1) < 1e-4
