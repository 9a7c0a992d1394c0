# Figures that tests/scripts/estimate/regress.test expects: coefficients (_cons first), their errors, residual sum of
# squares, R squared, F. Base R alone; variances by their formulas.
n <- 1:60
d <- data.frame(x = (n * 7) %% 11, z = (n * 13) %% 17 / 4, w = 1 + n %% 3, g = n %% 9, q = (n * 5) %% 7, r = (n * 3) %% 10)
d$y <- 2 + d$x / 3 - d$z + (n * 29) %% 13 / 5 + d$q / 4
show <- function(name, b, V, rss, r2, F)
    cat(name, ":", sprintf("%.12g", c(b, sqrt(diag(V)), rss, r2, F)), "\n")
wald <- function(b, V, which = -1) sum(b[which] * solve(V[which, which], b[which])) / length(b[which])
meat <- function(X, u, cluster = NULL) crossprod(if (is.null(cluster)) X * u else rowsum(X * u, cluster))
plain <- function(name, m, fw = NULL) {
    s <- summary(m); V <- vcov(m); r2 <- s$r.squared
    show(name, coef(m), V, sum(weighted.residuals(m)^2), r2, s$fstatistic[1])
}
robust <- function(name, X, y, w = rep(1, length(y)), cluster = NULL, hc = 1, Z = NULL) {
    w <- w / mean(w); P <- X
    if (!is.null(Z)) P <- Z %*% solve(crossprod(Z, w * Z), crossprod(Z, w * X))
    D <- solve(crossprod(P, w * P)); b <- D %*% crossprod(P, w * y); e <- drop(y - X %*% b); k <- ncol(X); N <- length(y)
    h <- w * rowSums((P %*% D) * P)
    u <- w * e / switch(hc, 1, sqrt(1 - h), 1 - h)
    q <- if (hc > 1) 1 else if (is.null(cluster)) N / (N - k) else { G <- length(unique(cluster)); G / (G - 1) * (N - 1) / (N - k) }
    V <- q * D %*% meat(P, u, cluster) %*% D; ybar <- sum(w * y) / sum(w)
    show(name, b, V, sum(w * e^2), 1 - sum(w * e^2) / sum(w * (y - ybar)^2), wald(drop(b), V))
}
X <- with(d, cbind(1, x, z)); Z <- with(d, cbind(1, z, q, r)); long <- d[rep(n, d$w), ]
plain("plain", lm(y ~ x + z, d)); plain("aweights", lm(y ~ x + z, transform(d, w = w / mean(w)), weights = w))
plain("fweights", lm(y ~ x + z, long))
robust("robust", X, d$y); robust("pweights", X, d$y, d$w); robust("hc2", X, d$y, hc = 2); robust("hc3", X, d$y, hc = 3)
robust("hc3 aweights", X, d$y, d$w, hc = 3)
robust("cluster", X, d$y, cluster = d$g); robust("cluster aweights", X, d$y, d$w, d$g)
robust("robust fweights", with(long, cbind(1, x, z)), long$y)
robust("hc2 fweights", with(long, cbind(1, x, z)), long$y, hc = 2)
robust("instruments robust", X, d$y, Z = Z); robust("instruments cluster", X, d$y, d$w, d$g, Z = Z)
robust("instruments hc2", X, d$y, hc = 2, Z = Z)
P <- Z %*% solve(crossprod(Z), crossprod(Z, X)); D <- solve(crossprod(P)); b <- drop(D %*% crossprod(P, d$y)); e <- d$y - X %*% b
V <- D * sum(e^2) / 57; show("instruments", b, V, sum(e^2), 1 - sum(e^2) / sum((d$y - mean(d$y))^2), wald(b, V))
m <- lm(y ~ x + z - 1, d); rss <- sum(resid(m)^2); tss <- sum((d$y - mean(d$y))^2)
show("tsscons", coef(m), vcov(m), rss, 1 - rss / tss, (tss - rss) / 1 / (rss / 58))
P <- Z[, -1] %*% solve(crossprod(Z[, -1]), crossprod(Z[, -1], X[, -1])); D <- solve(crossprod(P)); b <- drop(D %*% crossprod(P, d$y))
e <- drop(d$y - X[, -1] %*% b); V <- 60 / 58 * D %*% meat(P, e) %*% D
show("instruments noconstant robust", b, V, sum(e^2), 1 - sum(e^2) / sum(d$y^2), wald(b, V, 1:2))
cat("beta:", sprintf("%.7g", coef(lm(y ~ x + z, d))[-1] * c(sd(d$x), sd(d$z)) / sd(d$y)), " ll:", sprintf("%.12g", logLik(lm(y ~ x + z, d))), "\n")
