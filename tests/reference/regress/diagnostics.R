# Figures that tests/scripts/estimate/diagnostics.test expects, in base R by their definitions.
n <- 1:60
d <- data.frame(x = (n * 7) %% 11, z = (n * 13) %% 17 / 4, wt = 1 + n %% 3, q = (n * 5) %% 7, r = (n * 3) %% 10)
d$y <- 2 + d$x / 3 - d$z + (n * 29) %% 13 / 5 + d$q / 4
out <- function(name, ...) cat(name, ":", sprintf("%.12g", c(...)), "\n")
m <- lm(y ~ x + z + q, d); e <- resid(m)
vif <- function(w = NULL, f = y ~ x + z + q) { v <- c("x", "z", "q")
    sapply(v, function(j) 1 / (1 - summary(lm(reformulate(setdiff(v, j), j), d, weights = w))$r.squared)) }
out("vif", vif(), vif(d$wt))
bp <- function(f) { s <- summary(lm(f, d)); c(60 * s$r.squared, s$fstatistic[2], pchisq(60 * s$r.squared, s$fstatistic[2], lower = FALSE)) }
d$e2 <- e^2; out("bptest", bp(e2 ~ x + z + q)); out("white", bp(e2 ~ (x + z + q)^2 + I(x^2) + I(z^2) + I(q^2)))
f <- fitted(m); f <- f - mean(range(f)); a <- anova(m, lm(y ~ x + z + q + I(f^2) + I(f^3) + I(f^4), d)); out("reset", a$F[2], a$Df[2], a$Res.Df[2], a$P[2])
g <- fitted(m); a <- anova(m, lm(y ~ x + z + q + I(g^3), d)); out("reset 3", a$F[2], a$Res.Df[2])
out("dwtest", sum(diff(e)^2) / sum(e^2))
Z <- with(d, cbind(1, x, q, r)); X <- with(d, cbind(1, x, z)); P <- Z %*% solve(crossprod(Z), crossprod(Z, X)); b <- solve(crossprod(P, X), crossprod(P, d$y)); u <- drop(d$y - X %*% b)
a <- anova(lm(z ~ x, d), lm(z ~ x + q + r, d)); S <- 60 * summary(lm(u ~ x + q + r, d))$r.squared
out("ivtest", a$F[2], a$Df[2], a$Res.Df[2], a$P[2], S, pchisq(S, 1, lower = FALSE))
hac <- function(d, t, L, w = rep(1, nrow(d))) { w <- w / mean(w); X <- with(d, cbind(1, x, z)); D <- solve(crossprod(X, w * X)); b <- D %*% crossprod(X, w * d$y)
    h <- X * w * drop(d$y - X %*% b); M <- crossprod(h); run <- cumsum(c(1, diff(t) != 1))
    for (l in seq_len(L)) for (i in n) { j <- match(t[i] - l, t); if (i <= nrow(d) && !is.na(j) && run[i] == run[j]) { G <- outer(h[i, ], h[j, ]); M <- M + (1 - l / (L + 1)) * (G + t(G)) } }
    V <- nrow(d) / (nrow(d) - 3) * D %*% M %*% D; c(sqrt(diag(V)), sum(b[-1] * solve(V[-1, -1], b[-1])) / 2) }
out("hac", hac(d, n, 3)); keep <- !n %in% c(7, 20, 22); out("hac gaps", hac(d[keep, ], n[keep], 4)); out("hac weights", hac(d, n, 2, d$wt))
p <- function(small, large) anova(lm(small, d), lm(large, d))$P[2]
out("sw", p(y ~ x + z, y ~ x + z + q), p(y ~ x + z + q, y ~ x + z + q + r), p(y ~ x + q, y ~ x + z + q), p(y ~ 1, y ~ x), p(y ~ 1, y ~ z), p(y ~ 1, y ~ r + q))
