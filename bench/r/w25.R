d <- load1("main"); p <- paste("class number", d$a %/% 2); q <- paste0("q", d$b)
bench("w25_tabstrings", 1, { t <- table(p); r <- chisq.test(table(p, q), correct = FALSE)$p.value })
