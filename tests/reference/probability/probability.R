# The numbers that tests/unit/probability.cpp reads, by R's own functions, or by R's integrate() over a density:
#   Rscript probability.R > probability.txt          (made with R 4.2.2)
# A line is a function's name, its arguments and its value. Points stand on both sides of the places where the
# functions change their formula.
tell <- function(name, value, ...) {
    args <- list(...)
    for (i in seq_along(value))
        cat(name, sapply(args, function(a) sprintf("%.17g", a[i])), sprintf("%.17g", value[i]), "\n")
}
near <- function(x) c(x * (1 - 1e-9), x, x * (1 + 1e-9))
# Every combination of two or three vectors.
over <- function(name, f, ...) {
    g <- expand.grid(...)
    do.call(tell, c(list(name, do.call(f, unname(as.list(g)))), unname(as.list(g))))
}

z <- c(-37, -30, -12.5, -5, near(-2.32), -1, -.3, -1e-8, 1e-300, 1e-8, .3, 1, 2.32, near(3.5), 4, 6, 8)
tell("norm", pnorm(z), z)
p <- c(1e-300, exp(-25.001), exp(-24.999), 1e-5, .0749, .0751, .3, .5, .77, .9249, .9251, 1 - 1e-5, 1 - 2^-52)
tell("invnorm", qnorm(p), p)
tell("normden", dnorm(c(-3, 0, .5, 37)), c(-3, 0, .5, 37))

x <- c(-20.3, -3.0001, -2.9999, -.5, -1e-9, 1e-9, .3, .4999, .5, .9989, .9991, near(1), 1.0009, 1.0011, near(1.5),
       1.9, near(2), near(2.5), 3, 5.5, 9.999, near(10), 47.1, 165, 1e4, 1e9)
tell("lngamma", lgamma(x), x)
tell("digamma", digamma(x), x)
tell("trigamma", trigamma(x), x)
n <- c(0, 1, 2, 10, 165, 166, 167, 5000)
tell("lnfact", lfactorial(n), n)
n <- c(5, 60, 999, 1000, 1e6); k <- c(2, 30, 500, 3, 20)
tell("comb", choose(n, k), n, k)

a <- c(.1, .5, 3, 40, 999); s <- c(.3, .97, 1, 1.01, 1.4)
g <- expand.grid(a = a, s = s); g$x <- (g$a + 1) * g$s
tell("gammap", pgamma(g$x, g$a), g$a, g$x)
tell("gammaptail", pgamma(g$x, g$a, lower.tail = FALSE), g$a, g$x)
g <- expand.grid(a = c(1000, 1e4, 1e6), s = c(-3, -1, 0, 2)); g$x <- g$a + g$s * sqrt(g$a)
tell("gammapwide", pgamma(g$x, g$a), g$a, g$x)
p <- c(.001, .2, .5, .95, .9999)
over("invgammap", function(a, p) qgamma(p, a), c(.5, 3, 40), p)
over("invgammaptail", function(a, p) qgamma(p, a, lower.tail = FALSE), c(.5, 3, 40), p)
over("chi2", function(n, x) pchisq(x, n), c(1, 7.5, 80), c(.4, 9, 70))
over("chi2tail", function(n, x) pchisq(x, n, lower.tail = FALSE), c(1, 7.5, 80), c(.4, 9, 70))
over("invchi2", function(n, p) qchisq(p, n), c(1, 12), p)
over("invchi2tail", function(n, p) qchisq(p, n, lower.tail = FALSE), c(1, 12), p)
over("invchi", function(n, p) qchisq(p, n, lower.tail = FALSE), c(1, 12), p)

over("ibeta", function(a, b, x) pbeta(x, a, b), c(.2, 1, 6, 300), c(.3, 2, 75), c(1e-9, .004, .2, .7, .999))
f <- c(1e-20, .01, .6, 1, 3.7, 80)
over("F", function(a, b, f) pf(f, a, b), c(1, 4, 30), c(2, 11, 5000), f)
over("Ftail", function(a, b, f) pf(f, a, b, lower.tail = FALSE), c(1, 4, 30), c(2, 11, 5000), f)
over("invF", function(a, b, p) qf(p, a, b), c(1, 4, 30), c(2, 11, 5000), p)
# qf has 5 digits near 0.
byqbeta <- function(a, b, p) { y <- qbeta(p, a / 2, b / 2, lower.tail = FALSE); b / a * y / (1 - y) }
over("invFtail", byqbeta, c(1, 4, 30), c(2, 11, 5000), p)
t <- c(-9, -1.3, -.01, .2, 2, 40)
over("tprob", function(n, t) 2 * pt(-abs(t), n), c(1, 4.5, 29, 1e6), t)
over("ttail", function(n, t) pt(t, n, lower.tail = FALSE), c(1, 4.5, 29, 1e6), t)
over("invttail", function(n, p) qt(p, n, lower.tail = FALSE), c(2, 29, 1e6), c(1e-8, .025, .4, .7, .999))
over("invt", function(n, p) qt((1 + p) / 2, n), c(2, 29), c(.1, .95, .9999))
n <- c(1, 10, 10, 10, 500, 500); k <- c(1, 1, 4, 10, 20, 260); p <- c(.3, .02, .5, .9, .03, .5)
tell("Binomial", pbinom(k - 1, n, p, lower.tail = FALSE), n, k, p)
tell("invbinomial", qbeta(c(.01, .5, .9, 1e-6, .999, .3), k, n - k + 1), n, k, c(.01, .5, .9, 1e-6, .999, .3))

over("nchi", function(n, l, x) pchisq(x, n, l), c(1, 2, 9, 200), c(0, .3, 40), c(.02, 3, 60, 300))
n <- c(3, 150, 199); l <- c(1000, 1000, 1000); x <- c(1300, 1450, 1600)
tell("nchi", pchisq(x, n, l), n, l, x)
over("invnchi", function(n, l, p) qchisq(p, n, l), c(1, 9), c(.3, 40), c(.01, .5, .99))
found <- function(n, x, p) uniroot(function(l) pchisq(x, n, l) - p, c(0, 1000), tol = 1e-13)$root
g <- expand.grid(n = c(1, 8), x = c(30, 400), p = c(.001, .5, .95))
tell("npnchi", mapply(found, g$n, g$x, g$p), g$n, g$x, g$p)

# P(X <= h, Y <= k) as the integral over x of the conditional probability of y.
binorm <- function(h, k, r) {
    f <- function(x) dnorm(x) * pnorm((k - r * x) / sqrt(1 - r^2))
    integrate(f, -12, h, rel.tol = 1e-12, subdivisions = 2000)$value
}
g <- expand.grid(h = c(-3, -.7, 0, .4, 2.5), k = c(-1.1, 0, .4, 3), r = c(-.9, -.3, 0, .5, .97))
tell("binorm", mapply(binorm, g$h, g$k, g$r), g$h, g$k, g$r)

over("lnbk", function(b, k) lgamma(b + k) - lgamma(b), c(.2, 7, 900), c(0, 1, 12, 2.5, 150))
over("dibk", function(b, k) digamma(b + k) - digamma(b), c(.2, 7, 900), c(0, 1, 12, 2.5, 150))
over("tribk", function(b, k) trigamma(b + k) - trigamma(b), c(.2, 7, 900), c(0, 1, 12, 2.5, 150))
# The series, and Gauss' value at -1: ln 2.
x <- c(-.7, -1e-9, 0, .3, .9)
tell("hyp2f1", sapply(x, function(x) sum(x^(0:2000) / (1:2001))), x)
tell("hyp2f1", log(2), -1)
absmoment <- function(m, s, k) integrate(function(x) abs(x)^k * dnorm(x, m, s), m - 40 * s, 0, rel.tol = 1e-12)$value +
    integrate(function(x) abs(x)^k * dnorm(x, m, s), 0, m + 40 * s, rel.tol = 1e-12)$value
g <- expand.grid(m = c(0, 1.3), s = c(.5, 2), k = c(0, 1, 2.5, 6))
tell("Eabsk", mapply(absmoment, g$m, g$s, g$k), g$m, g$s, g$k)
far <- function(m, s, k) integrate(function(x) abs(x)^k * dnorm(x, m, s), m - 12 * s, m + 12 * s, rel.tol = 1e-12)$value
tell("Eabsk", mapply(far, c(-31, -32, 400), c(1, 1, 3), c(3, 3, 1.5)), c(-31, -32, 400), c(1, 1, 3), c(3, 3, 1.5))
