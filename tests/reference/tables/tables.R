# The numbers of output/tabulate.test: Rscript tables.R
m <- matrix(c(6, 1, 4, 2, 5, 3, 1, 2, 9), 3)
x <- row(m)[rep(1:9, m)]; y <- col(m)[rep(1:9, m)]
s <- sign(outer(x, x, "-")) * sign(outer(y, y, "-"))
p <- suppressWarnings(chisq.test(m, correct = FALSE))
print(c(p$statistic, p$p.value, lr = 2 * sum(m * log(m / p$expected)), gamma = sum(s) / sum(abs(s)),
        tau = cor(x, y, method = "kendall"), fisher = fisher.test(m)$p.value), digits = 12)
t <- matrix(c(8, 2, 3, 7), 2)
print(c(fisher.test(t)$p.value, fisher.test(t, alternative = "greater")$p.value), digits = 12)
d <- data.frame(x = c(3, 5, 4, 8, 9, 7, 10, 2, 4, 3.5, 7, 6), g = factor(c(1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4)))
f <- anova(aov(x ~ g, d)); print(f)
print(bartlett.test(x ~ g, droplevels(d[d$g != 4, ]))$statistic, digits = 12)
n <- table(d$g); mu <- tapply(d$x, d$g, mean)
q <- outer(mu, mu, "-")^2 / (outer(1 / n, 1 / n, "+") * f$`Mean Sq`[2]); p <- pf(q, 1, 8, lower.tail = FALSE)
for (a in list(6 * p, pf(q / 3, 3, 8, lower.tail = FALSE), 1 - (1 - p)^6)) print(round(a, 3))
