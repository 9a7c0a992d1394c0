# The data sets as R keeps them: Rscript --vanilla prep.R DATAFOLDER
setwd(commandArgs(TRUE)[1])
for (name in c("main", "reg")) saveRDS(read.csv(paste0(name, ".csv")), paste0(name, ".rds"), compress = FALSE)
