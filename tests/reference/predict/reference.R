# The numbers of tests/scripts/estimate/predict.test and combinations.test: Rscript reference.R
n <- 1:60; x <- (n*7)%%11; z <- ((n*13)%%17)/4; u <- (n*29)%%13+x+z; y <- as.numeric(u > 13); d <- as.numeric(x > 5)
at <- c(1, 30, 60)
show <- function(name, v) cat(name, formatC(v, digits = 12, format = "g"), "\n")
m <- lm(u ~ x + z); s <- summary(m)$sigma; X <- model.matrix(m); h <- hatvalues(m)
all <- list(xb = fitted(m), residuals = resid(m), stdp = s*sqrt(h), stdr = s*sqrt(1-h), hat = h, rstandard = rstandard(m),
            cooksd = cooks.distance(m), rstudent = rstudent(m), stdf = s*sqrt(1+h), dfits = dffits(m),
            "dfbeta(z)" = dfbetas(m)[, 3])
for (name in names(all)) show(name, all[[name]][at])
precise <- glm.control(epsilon = 1e-15, maxit = 100)
model <- function(f, link) glm(f, binomial(link), control = precise)
for (link in c("logit", "probit")) {
    g <- model(y ~ x + z, link); r <- resid(g, "pearson"); h <- hatvalues(g)
    all <- list(p = fitted(g), xb = g$linear.predictors, deviance = resid(g, "deviance"), pearson = r, hat = h,
                dbeta = r^2*h/(1-h)^2)
    cat(link, "\n")
    for (name in names(all)) show(name, all[[name]][at])
}
# Effects: derivatives and steps of the mean probability, errors by the delta method and numerical derivatives.
errors <- function(f, b, V) {
    J <- sapply(seq_along(b), function(k) { e <- replace(0*b, k, 1e-5); (f(b+e)-f(b-e))/2e-5 })
    rbind(f(b), sqrt(diag(rbind(J) %*% V %*% t(rbind(J)))))
}
effects <- function(g, F, f, X, V, w = 1) errors(function(b) {
    high <- X; high[, 3] <- 1; low <- X; low[, 3] <- 0
    c(weighted.mean(f(X %*% b), w)*b[2], weighted.mean(F(high %*% b)-F(low %*% b), w)) }, coef(g), V)
g <- model(y ~ z + d, "logit"); X <- model.matrix(g); one <- rep(1, 60)
show("effects, dummies", effects(g, plogis, dlogis, X, solve(crossprod(X*sqrt(dlogis(drop(X %*% coef(g)))))), one))
w <- 1+n%%3
g <- suppressWarnings(glm(y ~ z + d, binomial("probit"), weights = w, control = precise)); b <- coef(g)
xb <- drop(X %*% b); q <- 2*y-1; l <- q*dnorm(xb)/pnorm(q*xb)
show("probit, at(mean)", effects(g, pnorm, dnorm, t(colSums(X*w)/sum(w)), solve(crossprod(X*sqrt(w*l*(l+xb)))), 1))
V <- vcov(m); b <- coef(m)
show("test x = z + 1", (b[2]-b[3]-1)^2/(V[2,2]+V[3,3]-2*V[2,3]))
show("lincomb x - 2*z", errors(function(b) b[2]-2*b[3], b, V))
show("nlcomb x/z", errors(function(b) b[2]/b[3], b, V))
small <- model(y ~ z, "logit"); large <- model(y ~ x + z, "logit"); chi2 <- 2*as.numeric(logLik(large)-logLik(small))
show("lrtest", c(chi2, pchisq(chi2, 1, lower = FALSE)))
show("aic bic", c(AIC(small), BIC(small), AIC(m)-2, BIC(m)-log(60)))
