# Binary outcomes for tests/scripts/estimate/binary.test: maxima by Newton's steps from those of glm (whose own are
# good to 8 digits only), standard errors from the observed information, sandwiches by hand.
n <- 1:60
d <- data.frame(x = (n * 7) %% 11, z = ((n * 13) %% 17) / 4, w = 1 + n %% 3, g = n %% 9, off = (n %% 5) / 10)
d$y <- as.numeric((n * 29) %% 13 + d$x + d$z > 13)
X <- cbind(1, d$x, d$z)
s <- 2 * d$y - 1
show <- function(name, link, w = rep(1, 60), off = rep(0, 60), cluster = NULL) {
    b <- suppressWarnings(glm.fit(X, d$y, w, offset = off, family = binomial(link)))$coefficients
    for (i in 1:10) {
        eta <- as.vector(X %*% b) + off
        lp <- if (link == "probit") pnorm(s * eta, log.p = TRUE) else plogis(s * eta, log.p = TRUE)
        u <- if (link == "probit") s * exp(dnorm(eta, log = TRUE) - lp) else d$y - plogis(eta)
        h <- if (link == "probit") u * (u + eta) else plogis(eta) * plogis(-eta)
        D <- solve(t(X) %*% (X * (w * h)))
        b <- b + as.vector(D %*% (t(X) %*% (w * u)))
    }
    U <- X * (w * u)
    if (!is.null(cluster)) U <- rowsum(U, cluster)
    V <- D %*% (t(U) %*% U) %*% D * nrow(U) / (nrow(U) - 1)
    cat(name, link, "\n b     ", format(b, digits = 12), "\n se    ", format(sqrt(diag(D)), digits = 10), "\n robust",
        format(sqrt(diag(V)), digits = 10), "\n ll    ", format(sum(w * lp), digits = 12), "\n")
}
show("plain", "logit")
show("clusters", "logit", cluster = d$g)
show("weights", "logit", d$w)
show("offset", "logit", off = d$off)
show("plain", "probit")
show("weights scaled", "probit", d$w / mean(d$w))

# classify at .5 and .3, the area with its error after DeLong, goodness of fit over patterns and five groups: weighted
# by d$w as frequencies, of the logit.
w <- d$w
b <- suppressWarnings(glm.fit(X, d$y, w, family = binomial(), control = glm.control(epsilon = 1e-14)))$coefficients
i <- rep(n, w); p <- plogis(as.vector(X %*% b))[i]; y <- d$y[i]
for (cut in c(.5, .3)) cat("sens spec correct at", cut, ":", mean(p[y == 1] >= cut), mean(p[y == 0] < cut), mean((p >= cut) == y), "\n")
psi <- outer(p[y == 1], p[y == 0], function(a, b) (a > b) + (a == b) / 2)
cat("area, error:", format(c(mean(psi), sqrt(var(rowMeans(psi)) / sum(y) + var(colMeans(psi)) / sum(1 - y))), digits = 12), "\n")
fit <- function(code, df) {
    O <- tapply(y, code, sum); M <- tapply(p, code, sum); N <- tapply(y, code, length)
    x <- sum((O - M)^2 / (M * (1 - M / N)))
    cat("chi2, df, p:", format(c(x, length(O) - df, 1 - pchisq(x, length(O) - df)), digits = 12), "\n")
}
x2 <- d$x %% 3; X <- cbind(1, x2); d$y2 <- d$y
b <- suppressWarnings(glm.fit(X, d$y, w, family = binomial(), control = glm.control(epsilon = 1e-14)))$coefficients
q <- p; p <- plogis(as.vector(X %*% b))[i]; fit(x2[i], 2); p <- q
s <- sort(p); at <- sapply(1:4 / 5 * length(s), function(k) if (k == floor(k)) (s[k] + s[k + 1]) / 2 else s[ceiling(k)])
fit(findInterval(p, at, left.open = TRUE), 2)
