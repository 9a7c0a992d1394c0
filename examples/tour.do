* A tour of Velmo: three published data sets, read, looked at and changed.
* Run it with   ./run examples/tour.do

about

* ---- Anscombe (1973): four pairs of variables with the same moments
insheet using anscombe.csv, comma
describe
list
summarize
assert _N == 11
summarize y1
assert reldif(r(mean), 7.500909) < 1e-6
assert reldif(r(sd), 2.031568) < 1e-6
generate spread = max(y1, y2, y3, y4) - min(y1, y2, y3, y4)
label variable spread "Largest less smallest of the four answers"
list x1 y1-y4 spread if spread > 3

* The published line of least squares is y = 3.00 + 0.500 x, for all four pairs; by hand it is
matrix accum M = y1 x1
matrix b = syminv(M[2..., 2...]) * M[2..., 1]
matrix list b
assert reldif(b[1,1], .5000909) < 1e-7 & reldif(b[2,1], 3.0000909) < 1e-7
quietly {
	regress y1 x1
	modelkeep first
	regress y2 x2
	modelkeep second
	regress y3 x3
	modelkeep third
	regress y4 x4
	modelkeep fourth
}
modeltable, se stats(N r2)
* What tells them apart: the second is no line
quietly regress y2 x2
reset, powers(2)
assert r(p) < 1e-6

* ---- Longley (1967): the American economy, 1947 to 1962
insheet using longley.csv, comma double clear
label data "Longley's economic data, 1947-1962"
label variable gnp "Gross national product"
label variable deflator "GNP implicit price deflator"
label variable employed "Total derived employment"
describe
format gnp population %12.0gc
list year employed gnp population in 1/5
generate double rate = 100 * unemployed / (employed + unemployed)
label variable rate "Unemployment rate, percent"
format rate %6.2f
summarize rate, detail format
assert r(N) == 16
* Least squares on six variables that are nearly collinear, with the digits of the certified coefficients
regress employed deflator gnp unemployed armedforces population year
assert reldif(_b[unemployed], -2.02022980381683) < 1e-10 & reldif(_b[year], 1829.15146461355) < 1e-10
vif
test deflator gnp population
assert reldif(r(F), 1.7465) < 1e-4
bptest
predict double fitted
predict residual, rstandard
list year employed fitted residual if abs(residual) > 1.5
tsset year
dwtest
tsset, clear
corrmatrix employed-year
matrix list r(C), format(%6.3f)

replace armedforces = . if armedforces < 1600
list year armedforces rate if armedforces == . | rate > 6

* A time variable makes lags and differences; growth.ado lies in this folder and is found on first use
tsset year
growth gnp, generate(growth)
display "mean growth " %4.2f r(mean) " percent"
list year gnp growth in -4/l
inspect growth
notes gnp: Millions of dollars at current prices.
lookfor price product
notes

* A program typed here: how far is each variable's last value from its first?
program define change
	foreach v of varlist `*' {
		local percent : display %5.1f 100 * (`v'[_N] / `v'[1] - 1)
		display as text %12s "`v'" as result "  `percent' percent"
	}
end
change employed gnp population

* ---- Fisher (1936): 150 irises
insheet using iris.csv, comma clear
encode species, generate(kind)
label list kind
describe, detail
summarize sepal_length-petal_width
summarize petal_length if kind == 1
assert reldif(r(mean), 1.462) < 1e-7 & r(N) == 50
generate byte small = petal_length < 2
label define yesno 0 "no" 1 "yes"
label values small yesno
count if small
assert r(N) == 50
sort petal_length sepal_length petal_width sepal_width
list species petal_length petal_width small in 1/3
list species petal_length petal_width small in -3/l
compress
drop species
order kind
outsheet using iris.out, comma replace
quietly insheet using iris.out, comma clear
describe

* ---- Tables of the irises
insheet using iris.csv, comma clear
generate byte wide = sepal_width > 3
tabulate species wide, row chi2
assert reldif(r(chi2), 50.22477972) < 1e-6
oneway petal_length species, bonferroni
assert reldif(r(F), 1180.161) < 1e-5
kwallis petal_length, by(species)
means sepal_length-petal_width, by(species) stats(mean sd)

* ---- Two kinds of irises told apart by their petals
insheet using iris.csv, comma clear
generate byte virginica = species == "virginica" if species != "setosa"
ttest petal_length, by(virginica) unequal
logit virginica petal_length petal_width
assert reldif(_b[petal_length], 5.754532319) < 1e-6 & reldif(e(ll), -10.28175405) < 1e-6
predict p
sort p
list species petal_length petal_width p if p > .1 & p < .9
classify
roc
effects
lincomb petal_length + petal_width
set seed 1
bootstrap regress petal_width petal_length, reps(100)
drop p

* ---- The irises again: saved, reduced to statistics by kind, merged with them, and turned from wide to long
insheet using iris.csv, comma clear
generate flower = _n
label variable flower "Number of the flower"
sort species
save iris, replace
collapse (mean) mean=petal_length (sd) sd=petal_length (count) n=petal_length, by(species)
list
assert n == 50
sort species
save kinds, replace
use iris, clear
merge species using kinds
assert _merge == 3
drop _merge
generate z = (petal_length - mean) / sd
bysort species: summarize z
egen place = rank(petal_length), by(species)
list species flower petal_length z place if z > 2.3
keep flower species sepal_length sepal_width petal_length petal_width
rename sepal_length length1
rename sepal_width width1
rename petal_length length2
rename petal_width width2
reshape long length width, i(flower) j(part)
label define part 1 "sepal" 2 "petal"
label values part part
sort part
by part: summarize length width
reshape wide
assert _N == 150

display "The tour ends: " _N " flowers, date " %d date("21 Nov 2026", "dmy") "."
