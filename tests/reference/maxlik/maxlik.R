# A Weibull survival likelihood for tests/scripts/estimate/maxlik.test: nlm, then Newton's steps by the derivatives
# written out; errors from the second ones, and from scores (times N/(N-1)).
n <- 1:60
X <- cbind((n * 7) %% 11, ((n * 13) %% 17) / 4, 1)
t <- (1 + (n * 17) %% 31) / 4; d <- as.numeric(n %% 4 > 0); L <- log(t)
f <- function(b) { s <- b[4]; eta <- as.vector(X %*% b[1:3]); sum(d * (eta + s + (exp(s) - 1) * L) - exp(eta) * t^exp(s)) }
b <- nlm(function(b) -f(b), c(0, 0, -2, 0), gradtol = 1e-10, steptol = 1e-12)$estimate
for (i in 1:8) {
    p <- exp(b[4]); m <- exp(as.vector(X %*% b[1:3])) * t^p
    U <- cbind(X * (d - m), d * (1 + p * L) - m * p * L)
    A <- cbind(X, 0); B <- c(0, 0, 0, 1)
    H <- t(X) %*% (X * m); h <- colSums(X * (m * p * L)); q <- sum(-d * p * L + m * (p * L)^2 + m * p * L)
    D <- solve(rbind(cbind(H, h), c(h, q)))
    b <- b + as.vector(D %*% colSums(U))
}
V <- D %*% t(U) %*% U %*% D * 60 / 59
print(b, digits = 12); print(f(b), digits = 12); print(sqrt(diag(D)), digits = 12); print(sqrt(diag(V)), digits = 12)
