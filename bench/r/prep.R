# The data sets as R keeps them: Rscript --vanilla prep.R DATAFOLDER
setwd(commandArgs(TRUE)[1])
put <- function(d, name) { rownames(d) <- NULL; saveRDS(d, paste0(name, ".rds"), compress = FALSE) }
for (name in c("main", "reg", "m2")) put(read.csv(paste0(name, ".csv")), name)
m <- readRDS("main.rds")
for (key in c("id", "g", "k")) put(m[order(m[[key]]), ], paste0("main_", key))
