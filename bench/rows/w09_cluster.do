* load
insheet using reg.csv, comma double names clear
* repeat 4
quietly regress yy v1-v10, cluster(c)
* check
assert e(N_clust) == 1000 & e(df_r) == 999
