*! version 1.0.0  22nov2026
* _ranktail wilcoxon n1 n2 u | signed n 0 v | kendall n 0 k: leaves with the caller, as p, the probability of that value
* or a smaller one without ties: of pairs in which the first sample is above the second, of the sum of positive ranks, of
* discordant pairs. The counts are coefficients of products of polynomials, in a dataset of their own.
program define _ranktail
	version 7.0
	args kind a b at
	tempname all
	preserve
	quietly {
		drop _all
		set obs `=int(`at')+1'
		generate double f = _n == 1
		generate double g = .
		scalar `all' = 1
		forvalues i = 1/`a' {
			replace g = cond("`kind'" == "kendall", sum(f), f)
			if "`kind'" == "wilcoxon" {
				* times 1-q^(b+i), over 1-q^i
				local m = `b'+`i'
				replace f = g-g[_n-`m'] if _n > `m'
				replace f = f+f[_n-`i'] if _n > `i'
				scalar `all' = `all'*`m'/`i'
			}
			else if "`kind'" == "signed" {
				replace f = g+g[_n-`i'] if _n > `i'
				scalar `all' = 2*`all'
			}
			else {
				replace f = (g-cond(_n > `i', g[_n-`i'], 0))/`i'
			}
		}
		summarize f
	}
	c_local p = r(sum)/`all'
end
