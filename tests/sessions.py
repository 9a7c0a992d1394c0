#!/usr/bin/env python3
"""Random plausible sessions: sessions.py PROGRAM [SESSIONS [SEED]]. Session i has the seed SEED + i; a fault prints its
own, so that `sessions.py PROGRAM 1 THAT` repeats it, and keeps the lines typed in the temporary folder.

After each command the dataset is read back (from a file that the session saves) and must be whole: sorted as it says,
without temporary variables, unchanged by a command that failed or only reads, and as a plain model has it where the
model is cheap. Codes are known ones; the end leaves no file behind and is a success; no sanitizer speaks.

In a template {a|b} chooses, {name} is the part of that name; << and >> are braces of the language, \\n ends a line. The
groups tell what must hold: `reads` changes nothing, `orders` no observation, `loose` may leave something on failing."""
import math, os, random, re, select, struct, subprocess, sys, tempfile, time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CODES = {int(n) for n in re.findall(r"^\w+\((\d+)", open(ROOT + "/src/output/errors.def").read(), re.M)}
CODES |= {0, 1, 6, 7, 9, 100, 101, 106, 110, 132, 133, 170, 180, 182, 950} | {*range(601, 611), *range(692, 700)}
CELLS = {251: ("b", 127), 252: ("h", 32767), 253: ("i", 2147483647), 254: ("f", 2.0 ** 127), 255: ("d", 2.0 ** 1023)}
OPERATORS = {"+": lambda x, y: x + y, "-": lambda x, y: x - y, "*": lambda x, y: x * y, "<": lambda x, y: int(x < y),
             ">=": lambda x, y: int(x >= y), "==": lambda x, y: int(x == y), "!=": lambda x, y: int(x != y),
             "&": lambda x, y: int(x != 0 and y != 0), "|": lambda x, y: int(x != 0 or y != 0)}
WORDS = {name: words.split(",") for name, words in {
    "int": "0,1,2,2,3,3,5,7,9", "type": "byte,int,long,float,double,,", "codes": "1,4,9,111,198,459,601,2000,8001,0",
    "file": "f1,f2,f3,f1,f2,f3,nofile", "lab": "l1,l2,l3", "end": ",1,2,name_of_thirty_two_characters_x",
    "format": "9.0g,8.2f,-12.3e,d,td,10s,-5s,012.1f,1.0f,244s,tq,9.9z,12.0fc",
    "text": ",a,b c,x1,caf\xe9,\x80\x9b[2J,$g,`l',it's,{bf:x},a\xc3\xa9b,1,.,%s, z " % ("y" * 90)}.items()}
PHRASES = {name: re.split(r"\s*;; ", text) for name, text in {
    "new": "{a|b|c|d|e|f|g|h}{end}", "w": ";; ;; ;;  [{fw|aw|pw|iw|weight}={num}]", "if_": ";; ;;  if {cond}",
    "vars": "{var} ;; {num} ;; {var} {var} ;; {num} {num} ;; {var} {num} {var} ;; _all ;; {a*|?1|x-y|}",
    "byp": ";; ;; ;; by {key}: ;; bysort {vars}: ;; by {vars}: ;; quietly ;; capture noisily",
    "in": ";; ;; ;;  in {{int}|1/{int}|{int}/{int}{int}|f/{int}|-{int}/l|l|{int}/l}",
    "cond": "{num} < {int} ;; {num} == . ;; {str} > \"b\" ;; _n > _N/2 ;; {0|1} ;; uniform() < .5 ;; {plain}",
    "exp": """{plain} ;; {plain} ;; {plain} ;; {plain} ;; {plain} ;; sum({num}) ;; uniform() ;; {num}[_n-{int}] ;; `l'
        ;; ( ;; length({str}) ;; group({int}) ;; real({str}) ;; {str} < {str} ;; L.{num} ;; ln({num})/{int} ;; scalar(a)
        ;; cond({cond}, {num}, .) ;; mod({num}, {int}) ;; normprob({num}) ;; index({str}, "{text}") ;; _rc + r(N)
        ;; {num}^{num} ;; {str} + 1""",
    "sexp": """{str} ;; "{text}" ;; string({num}, "%{format}") ;; {str} + string(_n) ;; substr({str}, {int}, {int})
        ;; char({int}{int}) + {str} ;; subinstr({str}, "{text}", "x", {int}) ;; upper({str}) ;; {str}[_n-1]
        ;; trim({str}) + "{text}" ;; char(233)"""}.items()}
TEMPLATES = {k: re.split(r" ;;\s+", v.strip().replace("\\\n", "")) for k, v in (
("reads", r"""summarize {vars}{if}{in}{w}{, detail|, meanonly|, format|} ;; {byp} summarize {vars}{if}{w}{|, detail} ;;
{byp} correlate {vars}{if}{w}{, covariance|, means|, wrap noformat|} ;; _rmcoll {vars}{if}{w}{|, noconstant} ;;
{byp} {logit|probit} {num} {vars}{if}{in}{w}{, nolog|, robust iterate({int})|, cluster({var}) tabulate|, asis trace|, \
noconstant offset({num}) ltolerance(.001)|} ;; {logit|probit}{|, tabulate nocoef|, or} ;;
classify{|, cutoff(.3)} ;; roc ;; goftest{|, groups({int})} ;; mlsum a = {exp}{if} ;; mlvecsum a A = {exp} ;;
mlmatsum a A = {exp}, eq({int},1) ;; _mlmatbysum a A = {exp}, by({var}) ;; global ML_{n 1|x1 {vars}|fp1 1|lp1 {int}|\
w {num}|samp {num}|wtyp aweight} ;;
maxlik binary ({num} = {num} {num}{|, noconstant|, offset({num})}){if}{w}{, iterate(3)|, robust iterate(2)} ;;
{byp} regress {num} {vars}{if}{in}{w}{|, robust|, cluster({var})|, hc3|, noconstant beta|, hascons|, mse1 dof({int})|, \
tsscons noconstant|, rssmat bmat} ;; regress {num} {vars} ({vars}){if}{w}{|, robust|, hc2|, noconstant cluster({var})} ;;
regress{|, beta|, eform(x) level(90) plus|, noheader} ;; {vif|ivtest|dwtest|bptest|bptest, white|reset|reset, powers({int})} ;;
{byp} hac {num} {vars}{if}{w}, lags({int}) ;; hac ;; sw {regress|logit} {num} {vars} ({vars}){if}{w}, {pe(.2)|pr(.3)} ;; _robust {num}{if}{w}{|, minus({int})|, cluster({var})} ;;
matrix accum A = {vars}{if}{in}{w}{|, noconstant|, deviations means(M)} ;; matrix vecaccum v = {num} {vars}{if}{w} ;;
matrix opaccum A = {num}, group({var}) opvar({num}) ;; matrix symeigen X v = A ;; matrix svd X v Y = A ;;
matrix glsaccum A = {num}{w}, group({var}) glsmat({A|X|{str}}) row({num}) ;; pairwise {vars}{if}{w}{|, obs sig sidak} ;;
_pctile {num}{if}{w}{|, nq({int}) altdef|, p({int} {int}{int})} ;; corrmatrix {vars}{if}{w} ;;
matfrom {vars}{if}{in}, to(A){| missing} ;; {byp} ci {vars}{if}{w}{|, poisson|, binomial level(90)|, by({vars})} ;;
{byp} {ttest|vartest|proptest} {num} {=|==} {{int}|{num}|.}{if}{in}{|, unpaired|, unequal unpaired|, level({int})} ;;
{byp} {ttest|vartest|proptest} {num}{if}{in}, by({var}){| unequal} ;;
{byp} {ranksum|kwallis|ksmirnov|trendtest} {num}{if}{in}, by({var}) ;; {byp} {kendall|spearman|kappa} {vars}{if}{in} ;;
{byp} {signrank|signtest|ksmirnov} {num} = {{int}|{num}|norm({num})}{if} ;; {byp} {normtest|quantiles|means} {vars}{if} ;;
tabdisp {vars}{if}, cellvar({vars}){| by({vars})| totals center| missing concise left| cellwidth({int}) stubw(1{int})} ;;
tabtyped {int} {int} \\ {int} {int}{|, chi2 exact} ;; {tabeach|tabpairs} {vars}{if}{w}{|, missing|, nofreq chi2} ;;
table {vars}{if}{w}{|, contents(mean {num} p50 {num})| row col| saving(t{int}.csv)} ;;
twobytwo {{int} {int} {int} {int}|{num} {num}{if}, by({vars})|{num} {num}{w}, paired} ;;
means {vars}{if}{w}, {by({vars}) |save |stats({mean|p{int}0|iqr|text} n)} ;; quantiles {num}, at({int}{int} 50) ;;
{bootstrap|jackknife} {summarize {vars}{if}|count{if}, noisily|regress {vars}{if}}{|, stats({exp})} ;;
bootstrap, reps({int}) {|cluster({vars}) |saving({file}) |nodots }: summarize {num}{if} ;;
list {vars}{if}{in}{, nolabel|, noobs|, display|, nodisplay doublespace|, noheader|} ;; {byp} list {vars}{if} ;;
describe{| {vars}|, short|, detail|, numbers|, fullnames} ;; describe using {file}{|, short} ;;
{byp} tabulate {var}{if}{in}{w}{|, missing plot|, nolabel subpop({num})|, matcell(A) matrow(M)|, summarize({num})} ;;
{byp} tabulate {var} {var}{if}{w}{|, all missing|, row col cell nofreq|, wrap matcell(A)|, summarize({num}) means|, \
summarize({num}) obs wrap missing} ;;
{byp} oneway {num} {var}{if}{in}{w}{|, tabulate bonferroni|, scheffe sidak missing|, noanova wrap obs} ;;
inspect {vars}{if}{in} ;; codebook {vars}{if}{|, tabulate({int})|, notes} ;; {byp} count{if}{in} ;;
assert {cond}{if}{|, rc0} ;; {byp} assert {cond} ;;
display {exp} " " {sexp} " " %{format} {num}[{int}] _skip({int}) _dup({int}) "{text}" ;;
display {num}[_n+{int}]{| , _newline({int}) _col({int})} _quote "{text}" ;; lookfor {text} ;;
duplicates {report|list|examples} {vars}{if}{in} ;; notes{| {var}| list {vars}} ;; label list{| {lab}} ;; label dir ;;
char list{| {var}[]} ;; memory ;; query ;; macro list ;; scalar list ;; return list ;; sreturn list ;;
help {summarize|{text}|log(|x()|#{int}|r({codes})|set {text}|label {text}|\\||} ;; HELPCHK {text} ;;
search r({codes}) ;;
dir{| *.dta| *.raw} ;; program dir ;; program list {simple|ranks|group|nest|after} ;;
which {egen|list|simple|nothing|_gmean} ;; about ;; sysdir{| list| set PERSONAL "x y"} ;; adopath ;; pwd ;; discard ;;
type t{int}.raw ;; numlist "{int}/{int} {int}({int}){int}"{|, sort|, integer descending|, range(>0)} ;;
confirm {variable|numeric variable|new variable|file|number|integer number} {var|new|int|file|x} ;;
parse "{text}", parse("{text}") ;; debug {memory|sizes|basics|term|map|retvals|os} ;; showpoint ;;
matrix {A|B|C} = {A|B*A|A'|(1,2\\3,{int})|I({int})|J(2,{int},{num}[1])|A#B|inv(A)|syminv(B)|\
A[1..{int},2...]|A,B|B\\A|{int}*A} ;;
matrix {list|dir|list A, nohalf|drop A|rename A B, replace|coleq A = e f|rownames B = x {var}|accum A = {vars}{if}} ;;
matrix {A[{int},{int}] = {int}|score a = B, replace|input C = (1 {int} \\ 3)|symeigen X v = A|cat C = A, B'} ;;
scalar {a|b} = {exp} ;; local m = {exp} ;; global g {text} ;;
local l : {type {var}|format {var}|variable label {var}|value label {var}|sortedby|label {lab} {int}|word {int} of {\
text}|data label|char {var}[note1]|char _dta[]|subinstr global g "{text}" "{text}", all count(local k)|\
dir . files "*"|environment HOME|permname {var}|display %{format} {exp}|constraint 1|list|word count `l'|label ({\
var}) {int}, strict|label {lab} maxlength} ;; tokenize "{text}", parse("{text}") ;;
display "`l' ${g} ${S_FN} `1' `=_N' `=`m'+1' `:type {var}' `r(N)' `x``i'''" ;;
file open h using t{int}.raw, {read|write replace|write append|write binary replace|read write} {text|binary|} ;;
file write h {({exp})|"{text}" _n|%{format} ({exp}) _tab _char({int})|%8z ({exp})|%4bu ({exp}) %9s ("{text}")} {|\
_n} ;; file read h {line|%4b a|%8z b|%1bs s} ;; file {close h|close _all|query|seek h {int}|seek h eof} ;;
{outsheet|outfile} {vars} using t{int}.raw{if}{in}, replace {nolabel|comma|noquote|} ;;
outfile {vars} using t{int}.raw{if}, replace {dictionary|wide|comma wide|runtogether|nolabel} ;;
{log using l{int}{, replace|, append|, text replace}|log close|log off|log on|cmdlog using c1, replace|\
cmdlog close} ;; postfile h {new} {new} {int} using {file}, replace {double|every({int})|} ;;
post h ({exp}) ({num}[{int}]) ;; postclose h ;; copy t{int}.raw t{int}.raw{|, replace} ;; {erase|type} t{int}.raw ;;
mkdir d{int} ;; set {linesize {int}{int}|type {float|double|byte}|rmsg {on|off}|seed {int}|sortseed {int}|level {\
int}{int}|trace {off|on}|matsize {int}0|adosize {int}0|dp {comma|period}|pagesize {int}|linegap {int}|varlabelpos {\
int}|virtual {on|off}|debug off|more off} ;;
{byp} simple {vars}{if}{in}{w}{|, fail({0|459|2000})|, level({int})|, bad} ;;
guess {num} {num}{if} ;; display _b[{num}] e(sample) e(N) ;; matrix {makeCns|dispCns|list e(V)} ;;
estimates {list|dir|clear|display|display, eform(x) plus|hold h{int}{|, copy|, restore}|unhold h{int}|drop h{int}} ;;
quietly regress {num} {vars}{if}{w} ;;
test {{num} = {int}*{num}|{vars}|[#1]|[_]: {num}|{num} = {exp}|}{|, accumulate|, notest|, minimum} ;;
testvars {vars}{|, equal} ;; {lincomb|nlcomb} {{num} + {int}*{num}|_b[{num}]/{int}|{exp}|_cons}{|, level({int}0)} ;;
vce{|, c} ;; lrtest{|, saving({new})|, using({new})|, df({int})} ;; effects{| {vars}}{|, at(mean)|, dummies} ;;
modelkeep {new} ;; modeltable{| {new}|, se t p|, stats(N r2_p rank)|, se saving(t{int}.{csv|html|tex|md}, replace)} ;;
constraint {define {int} {num} = {int}*{num}|define {int} {text}|list|drop {int}/{int}|drop _all} ;;
{byp} ranks {vars}{if}{in}{|, fail(459)} ;; {byp} group {vars}{if}{in}{w} ;; nest {int}{int} ;; lone ;;
return drop _all ;; capture noisily {error {codes}|regress x|xyz|exit {3|9}|merge|use|by|list nosuch|egen|drop} ;;
quietly noisily capture {list|count} {if} ;; label save{| {lab}} using lab{int}.do, replace ;; tempvar q r ;; `l' ;;
collapse {num}, by({num} ;; tsrevar {L.{num}|D.{num}|L({int}/{int}).{num}}, list ;;
foreach v of varlist {vars} <<\n  summarize `v'\n  local l : type `v'\n>> ;;
forvalues i = 1/{int} <<\n  display `i' " " `i'^2 "{text}"\n  if `i' == {int} <<\n    continue{|, break}\n  >>\n>> ;;
foreach v in a "b c" {text} <<\n  display "`v'"\n>> ;; while {cond} & `++z' < {int} <<\n  local z = `z' + 1\n>> ;;
if {cond} <<\n  display 1\n>>\nelse <<\n  count{if}\n>> ;; local z 0 ;; program drop {simple|nosuch} ;;
version {7|6|5|3.1}: list {vars}{in} ;; push display {int} ;; more ;; sleep {int} ;; shell true ;;
capture <<\n  list{if}\n  xyz\n>> ;; after {int} ;; inner: preserve \ drop{if} \ sort {vars} \ error {codes}"""),
("orders", r"""sort {vars}{|{in}} ;; gsort {vars} ;; bysort {vars}: summarize ;; {by|bysort} {vars}: list {vars}{in} ;;
order {vars} ;; move {var} {var} ;; tsset {num} {num|} ;; tsset, clear"""),
("", r"""generate {type} {new} = {model}{if}{in} ;; generate {type} {new} = {model} ;;
{byp} generate {type} {new} = {exp}{if} ;; {byp} generate {|str{int} |str80 }{new} = {sexp}{if}{in} ;;
generate {new}:{lab} = {exp} ;; replace {num} = {model}{if}{in} ;; replace {num} = {model}{if} ;;
{byp} replace {num} = {exp}{if}{in}{|, nopromote} ;; {byp} replace {str} = {sexp}{if}{in} ;; keep{if} ;; drop{if} ;;
keep {in} ;; drop {in} ;; {byp} {keep|drop}{if} ;; drop {vars} ;; keep {vars} ;; set obs {int}{int|}{int|} ;;
{predict|_predict|version 5: predict} {type} {new}{if}{in}{|, xb|, stdp|, residuals|, rstudent|, cooksd|, hat|, \
dfits|, dfbeta({num})|, deviance|, dbeta|, rules|, asif xb|, equation(_)|, constant({num}) nolabel} ;;
rename {var} {new} ;; recast {type} {vars}{|, force} ;; compress{| {vars}} ;; format {vars} %{format} ;;
label define {lab} {int} "{text}" {int} `"{text}"'{|, add|, modify|, nofix} ;; label values {num} {lab|} ;;
label variable {var} {"{text}"|`"{text}"'|= {sexp}} ;; label data "{text}" ;; label drop {lab|_all} ;;
label copy {lab} {lab} ;; do lab{int} ;; char {var|_dta}[{text}] {text} ;; char {rename {var} {var}|{var}[note1]} ;;
notes {{var}|_dta|}: {text} ;; notes drop {var} ;; encode {str}{if}, generate({new}){| label({lab})} ;;
decode {num}{if}, generate({new}){| maxlength({int})} ;; mark {new}{if}{w} ;; markout {num} {vars}{|, strok} ;;
egen {type} {new} = {mean|sum|sd|median|min|max|count|iqr|rank|mad|mode|std|total|kurt|skew|mdev|pc|diff}({exp}){if}{\
in}{|, by({vars})} ;; egen {type} {new} = {rmean|rsum|rmiss|rowfirst|rowlast|rsd|robs|concat|group|tag|diff}({vars}){\
if}{|, by({vars})|, label|, missing} ;; egen {new} = {cut({num}), at({int} {int} {int}{int})|cut({num}), group({\
int})|seq(), from({int}) to({int})|fill({int} {int})|eqany({vars}), values({int} {int}/9)|anymatch({vars}), v({int})|\
pctile({num}), p({int}{int})|ma({num}), t({int})|ends({str})}{if} ;;
recode {vars} {int}={int} {int}/{int}={int}{| *=.}{if}{|, generate({new})|, prefix(r)|, test} ;;
mvencode {vars}{if}, mv({int}{int}){|, override} ;; mvdecode {vars}{if}, mv({int} {int}) ;;
separate {num}{if}, by({cond}){|, generate({new})|, missing|, shortlabel} ;;
indicators {vars|{var}*{var}|{var}}{|, prefix({text})|, base(highest)|, base({int})} ;;
duplicates {drop|drop {vars}, force|tag {vars}, generate({new})} ;; sample {int}{int}{if}{|, count|, by({vars})} ;;
collapse {({mean|sum|median|p10|sd|count|max|first|iqr}) }{vars} (count) {new}={var}{if}{w}{|, by({vars})|, cw} ;;
contract {vars}{if}{|, freq({new})|, zero|, nomiss} ;; fillin {vars} ;;
_bygroup {new} = {vars}{if}{in}{|, missing|, count({new})|, missing number({new}) first({new})} ;;
_bystats {type} {new} = {mean|sd|median|p9|count|max|iqr|lastnm}({num}) {new} = {count()|first({var})|sum({num})}{if}{\
in}{w}{|, by({vars})|, by({vars}) reduce|, reduce} ;;
stack {vars} {vars}, into({new} {new}) {clear|wide clear|} ;; cross using {file} ;;
joinby {vars} using {file}{|, unmatched(both)|, unmatched(master) update|, update replace} ;;
merge {vars} using {file}{|, nokeep|, update|, update replace|, _merge({new})|, nolabel} ;;
merge using {file}{|, nokeep} ;; append using {file}{|, nolabel} ;;
save {file}, replace{| old| nolabel| all| midscale} ;; use {file}, clear{| nolabel} ;;
use {vars} using {file}{if}{in}, clear ;; use {file} ;; preserve ;; restore{|, preserve|, not} ;;
set maxvar {2047|2100|3000|5000|9000} ;; set memory {int}m ;; discard ;; clear"""),
("loose", r"""expand min(5, {model}){if} ;; table {vars}{if}, contents(sd {num} freq) replace ;; indicators {vars}: regress {vars} ;;
matto A{|, names({new} {new})|, replace} ;;
insheet {vars|} using t{int}.raw, clear{| comma| tab| names| nonames| double} ;;
infile {str9 {new} {new}|{new}-{new}|{new} {new}|byte {new}:{lab} str3 {new}} using t{int}.raw{if}{in}, clear{|\
 automatic| byvariable({int})} ;; infix {new} 1-{int} str {new} 3-9 using t{int}.raw{if}{in}, clear ;;
infile using t{int}.raw, clear ;; infix using t{int}.raw{in}, clear ;;
input {new} str{int} {new}\n{int} "{text}"\n. {int}\n{text} {text}\nend ;; input\n{int} {int}\nend ;;
drop _all\nset memory {int}{int}{int|}k ;; foreach v of varlist {vars} <<\n  quietly replace `v' = `v' + {int}\n>> ;;
forvalues i = 1/{int}{int|} <<\n  generate {type} {new}`i' = `i'\n>> ;;
foreach v of varlist {vars} <<\n  drop `v'\n  drop nosuch\n>> ;;
keep {vars} {var}\nbysort {var}: generate jj = _n{| - 5|*7}\nreshape wide {vars}, i({\
var}) j(jj)\nreshape long\nreshape wide ;; reshape {wide|long} {num}, i({vars}) j({new}){| string} ;;
tempvar q\ngenerate `q' = {exp}\nsort `q'\ndrop `q' ;; tempfile f\nsave `f'\ndrop in 1\nappend using `f'\nerase `f' ;;
nobreak {byp} keep{if} ;; capture <<\n  drop{if}\n  xyz\n>> ;; {do|run} s{int} ;; {byp} change {vars}{if}{in}"""),
)}
TEMPLATES = [(promise, line) for promise, group in TEMPLATES.items() for line in group]
PROGRAMS = re.split(r" ;;\s+", r"""program define simple, byable(recall) rclass ;;
  syntax [varlist] [if] [in] [fweight aweight pweight iweight] [, Fail(integer 0) Level(integer 1) BAD] ;;
  marksample use, novarlist ;; tempvar t u ;; tempname s ;; quietly generate double `t' = _n if `use' ;;
  quietly summarize `t' ;; scalar `s' = r(max) ;; quietly replace `t' = `s' - `t' ;; return scalar max = `s' ;;
  if "`bad'" != "" { generate `u' = nosuch } ;; if `level' > 1 { simple in 1, level(`=`level'-1') fail(`fail') } ;;
  if `fail' { error `fail' } ;; end ;;
program define ranks, byable(recall, noheader) sortpreserve ;; syntax [varlist] [if] [in] [, Fail(integer 0)] ;;
  marksample use, novarlist ;; tempvar t ;; sort `varlist' ;; quietly by `varlist': generate `t' = _n if `use' ;;
  sort `t' `varlist' ;; tempfile f ;; preserve ;; quietly drop if `t' > 1 ;; quietly save `f', internal ;; restore ;;
  if `fail' { error `fail' } ;; end ;;
program define group, byable(onecall) ;; syntax [varlist] [if] [in] [fweight aweight pweight iweight] ;;
  display _by() " `_byvars' " _byindex() ;; preserve ;; if _by() { quietly bysort `_byvars': keep if _n == 1 } ;;
  quietly keep `varlist' ;; quietly expand 3 ;; sort `1' ;; end ;;
program define nest ;; args n ;; tempvar t ;; generate byte `t' = `n' ;; preserve ;; if `n' > 1 { nest `=`n'-1' } ;;
  drop `t' ;; if _N { drop in 1 } ;; end ;;
program define lone ;; preserve ;; drop _all ;; set obs 7 ;; generate x = _n ;; tempfile f ;; save `f' ;;
  merge using `f' ;; nosuchcommand ;; end ;;
program define after ;; args k ;; preserve ;; quietly expand 2 ;; tempfile f ;; quietly save `f' ;;
  quietly append using `f' ;; if `k' > 4 { clear } ;; if `k' > 7 { restore, preserve } ;; display _N ;; end ;;
program define inner ;; gettoken colon 0 : 0, parse(":") ;; while `"`0'"' != "" { ;;
  gettoken line 0 : 0, parse("\") ;; if "`line'" != "\" { `line' } ;; } ;; end ;;
program define change, byable(recall) ;; syntax [varlist] [if] [in] ;; marksample use, novarlist ;;
  foreach v of local varlist { ;; capture confirm string variable `v' ;;
  if _rc { quietly replace `v' = `v' * 2 + 1 if `use' } ;; else { quietly replace `v' = "x" + `v' if `use' } ;; } ;;
  quietly drop if `use' & mod(_n, 7) == 3 ;; end ;;
program define guess, eclass ;; syntax varlist [if] ;; marksample use ;; tempname b V ;; matrix `b' = (1,.5,2) ;;
  matrix `V' = I(3)*4 ;; matrix colnames `b' = `varlist' _cons ;; matrix colnames `V' = `varlist' _cons ;;
  matrix rownames `V' = `varlist' _cons ;; estimates post `b' `V', esample(`use') obs(5) dof(3) ;; end ;;
program define binary ;; args f x ;; quietly replace `f' = -ln(1+exp(cond($ML_y1 > 2, -`x', `x'))) ;; end""")

class fault(Exception): pass

class data:
    """A dataset as its file has it; missing numbers are infinite, which compares as the language does."""
    def __init__(self, n, path):
        self.n, self.names, self.types, self.sort, self.columns, self.raw = n, [], [], [], {}, n
        if not os.path.exists(path): return
        b = open(path, "rb").read()
        self.raw = b[:91] + b[109:]
        k, obs = struct.unpack_from("<Hi", b, 4)
        if obs != n: raise fault("_N is %d, the file has %d" % (n, obs))
        at = 109 + k
        self.types = list(b[109:at])
        self.names = [b[at + 33 * i:at + 33 * i + 33].split(b"\0")[0].decode("latin-1") for i in range(k)]
        at += 33 * k
        self.sort = [self.names[v - 1] for v in struct.unpack_from("<%dH" % (k + 1), b, at) if v]
        at += 2 * (k + 1) + k * (12 + 33 + 81)
        while b[at]: at += 5 + struct.unpack_from("<I", b, at + 1)[0]
        row = struct.Struct("<" + "".join(CELLS[t][0] if t in CELLS else "%ds" % t for t in self.types))
        cells = list(zip(*row.iter_unpack(b[at + 5:at + 5 + n * row.size]))) or [()] * k
        for name, t, c in zip(self.names, self.types, cells):
            if t in CELLS: self.columns[name] = [math.inf if x == CELLS[t][1] else x for x in c]
            else: self.columns[name] = [x.split(b"\0")[0] for x in c]
    def rows(self, names=None): return list(zip(*(self.columns[v] for v in names or sorted(self.names))))
    def bag(self): return sorted(self.names), sorted(self.rows())
    def kind(self, number): return [v for v, t in zip(self.names, self.types) if (t in CELLS) == number]

def fit(t, v):
    """A value as storage type t keeps it; None where the model does not follow."""
    if v == math.inf or t == 255: return v
    if abs(v) > 1e30: return None
    if t == 254: return 0.0 if abs(v) < 2.0 ** -120 else struct.unpack("f", struct.pack("f", v))[0]
    return math.inf if abs(int(v)) > CELLS[t][1] or int(v) == CELLS[t][1] else int(v)

class session:
    def __init__(self, program, seed, work):
        self.chance, self.work, self.snap = random.Random(seed), work, os.path.join(work, "snap.dta")
        self.now, self.where, self.value = data(0, ""), None, None
        self.lines, self.output, self.files, self.kept, self.good, self.count = [], "", {}, None, 0, 0
        for i in range(1, 6): self.write("t%d.raw" % i, self.junk())
        for i in "123": self.write("s%s.do" % i, self.fill("\n".join(self.pick(TEMPLATES)[1] for _ in range(4)) + "\n"))
        size = self.pick(("-k10", "-k30", "-k100", "-k300", "-m1", "-m4", "-m4"))
        self.p = subprocess.Popen([program, "-q", size], stdin=subprocess.PIPE, stdout=subprocess.PIPE, cwd=work,
                                  stderr=subprocess.STDOUT, env=dict(os.environ, HOME=work, TEMP=work, TERM="dumb"))
        os.set_blocking(self.p.stdout.fileno(), False)
    def write(self, name, text): open(os.path.join(self.work, name), "wb").write(text.encode("latin-1"))
    def pick(self, words): return self.chance.choice(words)
    def junk(self):
        """A text file, perhaps a dictionary, whose cells are of all kinds."""
        sep, cells = self.pick("\t, "), ("int", "int", "text", "text", "end")
        head = self.pick((["a%sb%sc" % (sep, sep)], [], ["dictionary <<", " a b", ' str9 c "x"', ">>"],
                          ["infix dictionary <<", " a 1-2", " str b 3-5", ">>"]))
        cell = lambda: self.fill(self.pick(("{%s}", "{%s}", '"{%s}"', "1e{%s}")) % self.pick(cells))
        lines = head + [sep.join(cell() for _ in range(3)) for _ in range(self.pick((0, 3, 40)))]
        return self.fill(self.pick(("\n", "\n", "\r\n")).join(lines)) + self.pick(("\n", "", "\x1a"))

    # ---- Templates and what fills them in.
    def model(self, depth=2):
        """An expression: its text, and a function of a dataset and an observation."""
        if not depth or self.chance.random() < .2:
            k, x = self.pick((0, 1, 2, 7, .5, 300)), self.part("num")
            usual = (x, lambda d, i: d.columns[x][i])
            return self.pick((usual, usual, usual, (str(k), lambda d, i: k), (".", lambda d, i: math.inf),
                              ("_n", lambda d, i: i + 1), ("_N", lambda d, i: d.n),
                              (x + "[_n-1]", lambda d, i: d.columns[x][i - 1] if i else math.inf)))
        (a, f), (b, g), op = self.model(depth - 1), self.model(depth - 1), self.pick(list(OPERATORS))
        def value(d, i):
            x, y = f(d, i), g(d, i)
            return OPERATORS[op](x, y) if op not in "+-*" or x != math.inf and y != math.inf else math.inf
        return "(%s %s %s)" % (a, op, b), value
    def part(self, name):
        """What {name} stands for; None where it is no part's name."""
        if name in WORDS: return self.pick(WORDS[name])
        if name in PHRASES: return self.fill(self.pick(PHRASES[name]))
        if name == "key": return " ".join(self.now.sort) or "x1"
        if name == "var": return self.pick(self.now.names or ["x1"]) if self.chance.random() < .97 else "nosuch"
        if name in ("num", "str"): return self.pick(self.now.kind(name == "num") or ["x1"])
        if name == "plain": return self.model(1)[0]
        if name == "model" or name == "if" and self.chance.random() < .6:
            text, value = self.model(2 if name == "model" else 1)
            if name == "model": self.value = value
            else: self.where, text = value, " if " + text
            return text
        return self.part("if_") if name == "if" else None
    def fill(self, t):
        """t with its outermost parts filled in."""
        out = ""
        while "{" in t:
            at = end = t.index("{")
            depth, cuts = 0, [at]
            while depth or end == at:
                depth += {"{": 1, "}": -1}.get(t[end], 0)
                if t[end] == "|" and depth == 1: cuts.append(end)
                end += 1
            word = self.pick([t[a + 1:b] for a, b in zip(cuts, cuts[1:] + [end - 1])])
            text = self.part(word)
            out, t = out + t[:at] + (self.fill(word) if text is None else text), t[end:]
        return (out + t).replace("<<", "{").replace(">>", "}").replace("\\n", "\n")

    # ---- The conversation.
    def run(self, lines, kept=True):
        """Types lines; gives back what comes, up to a mark."""
        text, end = b"", time.time() + 120
        if kept: self.lines, self.output, self.count = self.lines + lines, "", self.count + 1
        self.p.stdin.write(("\n".join(lines) + '\ndisplay "~~~"\n').encode("latin-1"))
        self.p.stdin.flush()
        while not re.search(rb"^~~~$", text, re.M):
            if time.time() > end: raise fault("no answer")
            if not select.select([self.p.stdout], [], [], 1)[0]: continue
            piece = self.p.stdout.read()
            if not piece: raise fault("the session ended, status %s" % self.p.wait(20))
            text += piece
            self.output = self.output + piece.decode("latin-1")
        text = text.decode("latin-1")
        codes = [int(c) for c in re.findall(r"^r\((\d+)\);", text, re.M)]
        if kept: self.rc, self.good = (codes or [0])[-1], self.good + (not codes)
        if unknown := set(codes) - CODES: raise fault("unknown code %s" % unknown)
        if re.search(r"runtime error:|AddressSanitizer", text): raise fault("a sanitizer speaks")
        return text
    def look(self):
        if os.path.exists(self.snap): os.remove(self.snap)
        text = self.run(['display "~~" _N', "debug obstest", "capture save %s, replace internal" % self.snap], False)
        if "(obsptrs checked)" not in text: raise fault("the order of observations is damaged")
        if re.search(r"^-[^\n]*~~", text, re.M): raise fault("trace stayed on")
        d = data(int(re.search(r"^~~(\d+)", text, re.M)[1]), self.snap)
        keys = d.rows(d.sort) if d.sort else []
        if any(a > b for a, b in zip(keys, keys[1:])): raise fault("the data are not sorted by " + " ".join(d.sort))
        if stay := [v for v in d.names if v.startswith("__")]: raise fault("%s stayed" % stay)
        return d
    def step(self):
        (promise, template), before = self.pick(TEMPLATES), self.now
        self.where = self.value = None
        line = self.fill(template).strip()
        self.run(line.split("\n"))
        self.now = self.look()
        if re.match("do|run|postfile", line): self.files = {}      # which they may write
        if promise != "loose": self.check(promise, line, before, self.now)
        if not self.rc and promise != "reads" and not re.match("by|capture|quietly", line):
            self.compare(template, line, before, self.now)
    def check(self, promise, line, before, now):
        """A command that failed, or only reads, changes nothing but the order, where it sorts."""
        sorts = promise == "orders" or "sort " in line or before.n == 0
        same = now.raw == before.raw or sorts and now.bag() == before.bag()
        if self.rc and not same: raise fault("it failed with %d, but changed the data" % self.rc)
        if promise and not same: raise fault("it changed the data")
    def compare(self, template, line, before, now):
        """A command that succeeded, with the model."""
        words = line.replace(",", " ").split()
        word = words[0]
        if word == "save": self.files[words[1]] = None if "old" in line or "mids" in line else before.rows(before.names)
        if template.startswith("use {file}") and self.files.get(words[1]) not in (None, now.rows(now.names)):
            raise fault("other data came back from the file")
        if word == "preserve": self.kept = before.raw
        if word == "restore" and "not" not in line and now.raw != self.kept: raise fault("restore gave other data")
        if word == "append" and self.files.get(words[2]) and now.n != before.n + len(self.files[words[2]]):
            raise fault("rows of the file are lost")
        if word not in ("keep", "drop", "generate", "replace", "expand") or " if " in line and not self.where: return
        place = lambda w: {"f": 1, "l": before.n}.get(w) or (int(w) if int(w) > 0 else before.n + 1 + int(w))
        m = re.search(r" in ([^\s,/]+)(?:/([^\s,]+))?", line)
        some = range(place(m[1]) - 1, place(m[2] or m[1])) if m else range(before.n)
        some = {i for i in some if not self.where or self.where(before, i)}
        if word in ("keep", "drop") and (m or self.where):
            rows = [r for i, r in enumerate(before.rows()) if (i in some) == (word == "keep")]
            if rows != now.rows() and now.names: raise fault("other observations stayed than %s" % rows[:5])
        elif word == "expand":
            more = sum(int(v) - 1 for i in some if (v := min(5, self.value(before, i))) > 1)
            if now.n != before.n + more: raise fault("%d observations, not %d" % (now.n, before.n + more))
        elif self.value:
            name = now.names[-1] if word == "generate" else words[1]
            t, old = now.types[now.names.index(name)], before.columns.get(name, [math.inf] * before.n)
            for i, got in enumerate(now.columns[name]):
                want = fit(t, self.value(before, i)) if i in some else old[i]
                if want not in (None, got) and name + "[" not in line:
                    raise fault("%s[%d] is %r, not %r" % (name, i + 1, got, want))
    def play(self):
        self.run(["set sortseed 7"] + PROGRAMS)
        for i, n in (1, 3), (2, self.pick((0, 1, 30, 300))):
            self.run(["drop _all", "set obs %d" % n, "generate x1 = mod(_n * 37, 11)", "generate double z = _n / 3",
                      "generate byte y1 = mod(_n, 5) if mod(_n, 7)", 'generate str1 t = ""',
                      "generate str9 s1 = char(97 + mod(_n, 3)) + string(y1)", "generate int w = 200 - _n",
                      "save f%d" % i, "label values y1 l1", 'label define l1 0 "nought" 1 "one"'])
        self.now = self.look()
        for _ in range(40): self.step()
        self.p.stdin.write(b"exit, clear\n")
        self.p.stdin.close()
        if status := self.p.wait(60): raise fault("exit status %d" % status)
        if stay := [f for f in os.listdir(self.work) if re.match(r"\.?velmo-", f)]: raise fault("%s stay" % stay)

def main():
    many, seed = int(sys.argv[2]) if len(sys.argv) > 2 else 20, int(sys.argv[3]) if len(sys.argv) > 3 else 1
    program, good, count = os.path.abspath(sys.argv[1]), 0, 0
    for s in range(seed, seed + many):
        with tempfile.TemporaryDirectory(prefix="vs") as work:
            one = session(program, s, work)
            try: one.play()
            except (fault, OSError) as f:
                path = os.path.join(tempfile.gettempdir(), "sessions-%d.do" % s)
                open(path, "w", encoding="latin-1").write("\n".join(one.lines) + "\n")
                print("%s\nseed %d: %s; the lines typed are in %s" % (one.output[-3000:], s, f, path))
                return 1
            finally:
                one.p.kill()
                one.p.wait()
            good, count = good + one.good, count + one.count
    print("%d sessions, %d commands, %d of them succeeded, none astray" % (many, count, good))
    return 0

sys.exit(main())
