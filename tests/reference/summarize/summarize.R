# The numbers that tests/scripts/output/summarize.test asserts, by R's own functions and by formulas written out:
#   Rscript summarize.R > summarize.txt          (made with R 4.2.2)
n <- 1:237
x <- ((n * 7919) %% 1009) / 8 - 40
x[n %% 50 == 0] <- NA
w <- (n * 31) %% 7
name <- c(1, 5, 10, 25, 50, 75, 90, 95, 99)
tell <- function(title, ...) {
    cat("#", title, "\n")
    values <- unlist(list(...))
    for (k in names(values)) cat(sprintf(". assert reldif(r(%s), %.17g) < 1e-13\n\n", k, values[[k]]))
}
moments <- function(x) {
    d <- x - mean(x)
    c(skewness = mean(d^3) / mean(d^2)^1.5, kurtosis = mean(d^4) / mean(d^2)^2)
}
percentiles <- function(x) setNames(quantile(x, name / 100, type = 2, names = FALSE), paste0("p", name))
plain <- function(x) c(N = length(x), sum_w = length(x), mean = mean(x), Var = var(x), sd = sd(x), min = min(x), max = max(x), sum = sum(x))

ok <- x[!is.na(x)]
tell("plain", plain(ok))
tell("detail", plain(ok), moments(ok), percentiles(ok))
use <- !is.na(x) & w > 0
times <- rep(x[use], w[use])
tell("fweight, detail", plain(times), moments(times), percentiles(times))
W <- sum(w[use]); N <- sum(use); m <- sum(w[use] * x[use]) / W
V <- sum(w[use] * (x[use] - m)^2) / W * N / (N - 1)
tell("aweight", N = N, sum_w = W, mean = m, Var = V, sd = sqrt(V), min = min(x[use]), max = max(x[use]), sum = m * W)
some <- x[!is.na(x) & x > 0 & n >= 20 & n <= 31]
tell("if x > 0 in 20/31, detail", plain(some), moments(some), percentiles(some))
near <- 1e9 + (n %% 3)
tell("near", mean = mean(near), Var = var(n %% 3), min = 1e9, max = 1e9 + 2)
cat("# plain line\n", formatC(c(length(ok), mean(ok), sd(ok), min(ok), max(ok)), digits = 7, format = "g"), "\n")
