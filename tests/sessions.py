#!/usr/bin/env python3
"""Random plausible sessions: sessions.py PROGRAM [SESSIONS [SEED]]; session i has the seed SEED+i, and a fault prints its own,
so that `sessions.py PROGRAM 1 THAT` repeats it. The lines typed are kept as sessions-SEED.do in the temporary folder.

After each command the dataset is read back (from a file that the session saves) and must be whole: sorted as it says,
without temporary variables, unchanged by a command that failed or only reads, and as a plain model has it where the
model is cheap. The code is a known one; the end leaves no file behind; no sanitizer speaks.

A template is text with {parts}: {a|b} chooses, {name} calls the method of that name; << and >> are braces of the language.
Lines may begin with a word that says what must hold: `reads`, `orders` (the same rows), `loose` (a failure may leave
something changed: files of commands, loops, what works step by step)."""
import math, os, random, re, select, shutil, struct, subprocess, sys, tempfile, time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CODES = {int(n) for n in re.findall(r"^\w+\((\d+)", open(ROOT + "/src/output/errors.def").read(), re.M)}
CODES |= {0, 1, 3, 4, 5, 6, 7, 9, 18, 100, 101, 106, 110, 132, 133, 170, 180, 182, 601, 602, 603, 608, 609, 610, 692, 693, 697, 698, 699, 950}
SIZES = {251: "b", 252: "h", 253: "i", 254: "f", 255: "d"}
MISSING = {251: 127, 252: 32767, 253: 2147483647, 254: 2.0 ** 127, 255: 2.0 ** 1023}
TYPES = {"byte": 251, "int": 252, "long": 253, "float": 254, "double": 255}
TEMPLATES = [line for line in r"""
reads summarize {vars}{if}{in}{w}{, detail|, meanonly|, format|}
reads {byp}summarize {vars}{if}{w}{|, detail|, meanonly}
reads list {vars}{if}{in}{, nolabel|, noobs|, display|, nodisplay doublespace|, noheader|}
reads {byp}list {vars}{if}
reads describe{| {vars}|, short|, detail|, numbers|, fullnames}
reads describe using {file}{|, short}
reads inspect {vars}{if}{in}
reads codebook {vars}{if}{|, tabulate({int})|, notes}
reads {byp}count{if}{in}
reads assert {cond}{if}{|, rc0}
reads {byp}assert {cond}
reads display {exp} " " {sexp} " " %{format} {num}[{int}] _skip({int}) _dup({int}) "{text}"
reads display {num}[_n+{int}]{| , _newline({int}) _col({int})} _quote "{text}"
reads lookfor {text}
reads duplicates {report|list|examples} {vars}{if}{in}
reads notes{| {var}| list {vars}}
reads label list{| {lab}}
reads label dir
reads char list{| {var}[]}
reads memory
reads query
reads macro list
reads scalar list
reads return list
reads sreturn list
reads dir{| *.dta| *.raw}
reads program dir
reads program list {simple|ranks|group|nest|after}
reads which {egen|list|simple|nothing|_gmean}
reads about
reads sysdir{| list| set PERSONAL "x y"}
reads adopath
reads pwd
reads discard
reads type t{int}.raw
reads numlist "{int}/{int} {int}({int}){int}"{|, sort|, integer descending|, range(>0)}
reads confirm {variable|numeric variable|new variable|file|number|integer number} {var|new|int|file|x}
reads parse "{text}", parse("{text}")
reads debug {memory|sizes|basics|term|map|retvals|os}
reads showpoint
reads scalar {a|b} = {exp}
reads local m = {exp}
reads global g {text}
reads local l : {type {var}|format {var}|variable label {var}|value label {var}|sortedby|label {lab} {int}|word {int} of {text}|\
data label|char {var}[note1]|char _dta[]|subinstr global g "{text}" "{text}", all count(local k)|dir . files "*"|environment HOME|\
permname {var}|display %{format} {exp}|constraint 1|list|word count `l'|label ({var}) {int}, strict|label {lab} maxlength}
reads tokenize "{text}", parse("{text}")
reads display "`l' ${g} ${S_FN} `1' `=_N' `=`m'+1' `:type {var}' `r(N)' `x``i'''"
reads file open h using t{int}.raw, {read|write replace|write append|write binary replace|read write} {text|binary|}
reads file write h {({exp})|"{text}" _n|%{format} ({exp}) _tab _char({int})|%8z ({exp})|%4bu ({exp}) %9s ("{text}")} {|_n}
reads file read h {line|%4b a|%8z b|%1bs s}
reads file {close h|close _all|query|seek h {int}|seek h eof}
reads {outsheet|outfile} {vars} using t{int}.raw{if}{in}, replace {nolabel|comma|noquote|}
reads outfile {vars} using t{int}.raw{if}, replace {dictionary|wide|comma wide|runtogether|nolabel}
reads {log using l{int}{, replace|, append|, text replace}|log close|log off|log on|cmdlog using c1, replace|cmdlog close}
reads postfile h {new} {new} {int} using {file}, replace {double|every({int})|}
reads post h ({exp}) ({num}[{int}])
reads postclose h
reads copy t{int}.raw t{int}.raw{|, replace}
reads {erase|type} t{int}.raw
reads mkdir d{int}
reads set {linesize {int}{int}|type {float|double|byte}|rmsg {on|off}|seed {int}|sortseed {int}|level {int}{int}|trace {off|on}|\
matsize {int}0|adosize {int}0|dp {comma|period}|pagesize {int}|linegap {int}|varlabelpos {int}|virtual {on|off}|debug off|more off}
reads {byp}simple {vars}{if}{in}{w}{|, fail({0|459|2000})|, level({int})|, bad}
reads {byp}ranks {vars}{if}{in}{|, fail(459)}
reads {byp}group {vars}{if}{in}{w}
reads nest {int}{int}
reads lone
reads return drop _all
reads capture noisily {error {codes}|regress x|xyz|exit {int}|merge|use|by|list nosuch|egen|drop}
reads quietly noisily capture {list|count} {if}
reads label save{| {lab}} using lab{int}.do, replace
reads tempvar q r
reads `l'
reads collapse {num}, by({num}
reads tsrevar {L.{num}|D.{num}|L({int}/{int}).{num}}, list
reads foreach v of varlist {vars} <<\n  summarize `v'\n  local l : type `v'\n>>
reads forvalues i = 1/{int} <<\n  display `i' " " `i'^2 "{text}"\n  if `i' == {int} <<\n    continue{|, break}\n  >>\n>>
reads foreach v in a "b c" {text} <<\n  display "`v'"\n>>
reads while {cond} & `++z' < {int} <<\n  local z = `z' + 1\n>>
reads if {cond} <<\n  display 1\n>>\nelse <<\n  count{if}\n>>
reads local z 0
reads program drop {simple|nosuch}
reads version {7|6|5|3.1}: list {vars}{in}
reads push display {int}
reads more
reads sleep {int}
reads shell true
reads capture <<\n  list{if}\n  xyz\n>>
orders sort {vars}{|{in}}
orders gsort {vars}
orders bysort {vars}: summarize {num}
orders {by|bysort} {vars}: list {vars}{in}
orders order {vars}
orders move {var} {var}
orders tsset {num} {num|}
orders tsset, clear
generate {type} {new} = {model}{if}{in}
generate {type} {new} = {model}
{byp}generate {type} {new} = {exp}{if}
{byp}generate {|str{int} |str80 }{new} = {sexp}{if}{in}
generate {new}:{lab} = {exp}
replace {num} = {model}{if}{in}
replace {num} = {model}{if}
{byp}replace {num} = {exp}{if}{in}{|, nopromote}
{byp}replace {str} = {sexp}{if}{in}
keep{if}
drop{if}
keep {in}
drop {in}
{byp}{keep|drop}{if}
drop {vars}
keep {vars}
loose expand {model}{if}
set obs {int}{int|}{int|}
rename {var} {new}
recast {type} {vars}{|, force}
compress{| {vars}}
format {vars} %{format}
label define {lab} {int} "{text}" {int} `"{text}"'{|, add|, modify|, nofix}
label values {num} {lab|}
label variable {var} {"{text}"|`"{text}"'|= {sexp}}
label data "{text}"
label drop {lab|_all}
label copy {lab} {lab}
do lab{int}
char {var|_dta}[{text}] {text}
char {rename {var} {var}|{var}[note1]}
notes {{var}|_dta|}: {text}
notes drop {var}
encode {str}{if}, generate({new}){| label({lab})}
decode {num}{if}, generate({new}){| maxlength({int})}
mark {new}{if}{w}
markout {num} {vars}{|, strok}
egen {type} {new} = {mean|sum|sd|median|min|max|count|iqr|rank|mad|mode|std|total|kurt|skew|mdev|pc|diff}({exp}){if}{in}{|, by({vars})}
egen {type} {new} = {rmean|rsum|rmiss|rowfirst|rowlast|rsd|robs|concat|group|tag|diff}({vars}){if}{|, by({vars})|, label|, missing}
egen {new} = {cut({num}), at({int} {int} {int}{int})|cut({num}), group({int})|seq(), from({int}) to({int})|fill({int} {int})|\
eqany({vars}), values({int} {int}/9)|anymatch({vars}), v({int})|pctile({num}), p({int}{int})|ma({num}), t({int})|ends({str})}{if}
recode {vars} {int}={int} {int}/{int}={int}{| *=.}{if}{|, generate({new})|, prefix(r)|, test}
mvencode {vars}{if}, mv({int}{int}){|, override}
mvdecode {vars}{if}, mv({int} {int})
separate {num}{if}, by({var|cond}){|, generate({new})|, missing|, shortlabel}
duplicates {drop|drop {vars}, force|tag {vars}, generate({new})}
sample {int}{int}{if}{|, count|, by({vars})}
collapse {({mean|sum|median|p10|sd|count|max|first|iqr}) }{vars} (count) {new}={var}{if}{w}{|, by({vars})|, cw}
contract {vars}{if}{|, freq({new})|, zero|, nomiss}
fillin {vars}
stack {vars} {vars}, into({new} {new}) {clear|wide clear|}
cross using {file}
joinby {vars} using {file}{|, unmatched(both)|, unmatched(master) update|, update replace}
merge {vars} using {file}{|, nokeep|, update|, update replace|, _merge({new})|, nolabel}
merge using {file}{|, nokeep}
append using {file}{|, nolabel}
save {file}, replace{| old| nolabel| all| midscale}
use {file}, clear{| nolabel}
use {vars} using {file}{if}{in}, clear
use {file}
preserve
restore{|, preserve|, not}
loose insheet {vars|} using t{int}.raw, clear{| comma| tab| names| nonames| double}
loose infile {str9 {new} {new}|{new}-{new}|{new} {new}|byte {new}:{lab} str3 {new}} using t{int}.raw{if}{in}, clear{| automatic| byvariable({int})}
loose infix {new} 1-{int} str {new} 3-9 using t{int}.raw{if}{in}, clear
loose infile using t{int}.raw, clear
loose infix using t{int}.raw{in}, clear
loose input {new} str{int} {new}\n{int} "{text}"\n. {int}\n{text} {text}\nend
loose input\n{int} {int}\nend
loose drop _all\nset memory {int}{int}{int|}k
set maxvar {2047|2100|3000|5000|9000}
set memory {int}m
loose foreach v of varlist {vars} <<\n  quietly replace `v' = `v' + {int}\n>>
loose forvalues i = 1/{int}{int|} <<\n  generate {type} {new}`i' = `i'\n>>
loose foreach v of varlist {vars} <<\n  drop `v'\n  drop nosuch\n>>
loose keep {vars} {var}\nbysort {var}: generate jj = _n{| - 5|*7}\nreshape wide {vars}, i({var}) j(jj)\nreshape long\nreshape wide
loose reshape {wide|long} {num}, i({vars}) j({new}){| string}
loose tempvar q\ngenerate `q' = {exp}\nsort `q'\ndrop `q'
loose tempfile f\nsave `f'\ndrop in 1\nappend using `f'\nerase `f'
loose nobreak {byp}keep{if}
loose capture <<\n  drop{if}\n  xyz\n>>
loose {do|run} s{int}
reads after {int}
reads inner: preserve \ drop{if} \ sort {vars} \ error {codes}
loose {byp}change {vars}{if}{in}
discard
clear
""".replace("\\\n", "").split("\n") if line]
PROGRAMS = r"""
program define simple, byable(recall) rclass
  syntax [varlist] [if] [in] [fweight aweight pweight iweight] [, Fail(integer 0) Level(integer 1) BAD]
  marksample use, novarlist
  tempvar t u
  tempname s
  quietly generate double `t' = _n if `use'
  quietly summarize `t'
  scalar `s' = r(max)
  quietly replace `t' = `s' - `t'
  return scalar max = `s'
  if "`bad'" != "" { generate `u' = nosuch }
  if `level' > 1 { simple in 1, level(`=`level'-1') fail(`fail') }
  if `fail' { error `fail' }
end
program define ranks, byable(recall, noheader) sortpreserve
  syntax [varlist] [if] [in] [, Fail(integer 0)]
  marksample use, novarlist
  tempvar t
  sort `varlist'
  quietly by `varlist': generate `t' = _n if `use'
  sort `t' `varlist'
  tempfile f
  preserve
  quietly drop if `t' > 1
  quietly save `f', internal
  restore
  if `fail' { error `fail' }
end
program define group, byable(onecall)
  syntax [varlist] [if] [in] [fweight aweight pweight iweight]
  display _by() " `_byvars' " _byindex()
  preserve
  if _by() { quietly bysort `_byvars': keep if _n == 1 }
  quietly keep `varlist'
  quietly expand 3
  sort `1'
end
program define nest
  args n
  tempvar t
  generate byte `t' = `n'
  preserve
  if `n' > 1 { nest `=`n'-1' }
  drop `t'
  if _N { drop in 1 }
end
program define lone
  preserve
  drop _all
  set obs 7
  generate x = _n
  tempfile f
  save `f'
  merge using `f'
  nosuchcommand
end
program define after
  args k
  preserve
  quietly expand 2
  tempfile f
  quietly save `f'
  quietly append using `f'
  if `k' > 4 { clear }
  if `k' > 7 { restore, preserve }
  display _N
end
program define inner
  gettoken colon 0 : 0, parse(":")
  while `"`0'"' != "" {
    gettoken line 0 : 0, parse("\")
    if "`line'" != "\" { `line' }
  }
end
program define change, byable(recall)
  syntax [varlist] [if] [in]
  marksample use, novarlist
  foreach v of local varlist {
    capture confirm string variable `v'
    if _rc { quietly replace `v' = `v' * 2 + 1 if `use' }
    else { quietly replace `v' = "x" + `v' if `use' }
  }
  quietly drop if `use' & mod(_n, 7) == 3
end
"""

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
        row = struct.Struct("<" + "".join(SIZES.get(t, "%ds" % t) for t in self.types))
        cells = list(zip(*row.iter_unpack(b[at + 5:at + 5 + n * row.size]))) or [()] * k
        for name, t, c in zip(self.names, self.types, cells):
            self.columns[name] = [x.split(b"\0")[0] for x in c] if t not in SIZES else [math.inf if x == MISSING[t] else x for x in c]
    def rows(self, names=None): return list(zip(*(self.columns[v] for v in names or sorted(self.names))))
    def numbers(self): return [v for v, t in zip(self.names, self.types) if t in SIZES]

def fit(t, v):
    """A value as storage type t keeps it; None where the model does not follow."""
    if v == math.inf: return v
    if abs(v) > 1e30: return None
    if t == 254: return 0.0 if abs(v) < 2.0 ** -120 else struct.unpack("f", struct.pack("f", v))[0]
    if t == 255: return v
    return math.inf if abs(v) >= MISSING[t] + 1 or int(v) == MISSING[t] else int(v)

class session:
    def __init__(self, program, seed, work):
        self.chance, self.seed, self.work, self.lines, self.output, self.files, self.kept = random.Random(seed), seed, work, [], "", {}, None
        self.snap, pick = os.path.join(work, "snap.dta"), self.chance.choice
        self.good = self.count = 0
        for i in range(1, 6): open("%s/t%d.raw" % (work, i), "wb").write(self.junk())
        self.p = subprocess.Popen([program, "-q", pick(("-k10", "-k30", "-k100", "-k300", "-m1", "-m4", "-m4"))], stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, cwd=work, env=dict(os.environ, HOME=work, TEMP=work, TERM="dumb"))
        os.set_blocking(self.p.stdout.fileno(), False)
    def junk(self):
        pick, sep = self.chance.choice, self.chance.choice(("\t", ",", " "))
        cell = lambda: pick((self.int, self.int, lambda: ".", lambda: '"%s"' % self.text(), self.text, lambda: "1e%s" % self.int(), lambda: ""))()
        head = pick((["a" + sep + "b" + sep + "c"], [], ["dictionary {", " a b", ' str9 c "x"', "}"], ["infix dictionary {", " a 1-2", " str b 3-5", "}"]))
        lines = head + [sep.join(cell() for _ in range(3)) for _ in range(pick((0, 3, 40)))]
        return (pick(("\n", "\n", "\r\n")).join(lines) + pick(("\n", "", "\x1a"))).encode("latin-1")

    # ---- The parts of templates.
    def pick(self, *words): return self.chance.choice(words)
    def int(self): return self.pick("0", "1", "2", "2", "3", "3", "5", "7", "9")
    def type(self): return self.pick("byte", "int", "long", "float", "double", "", "")
    def format(self): return self.pick("9.0g", "8.2f", "-12.3e", "d", "td", "10s", "-5s", "012.1f", "9,2f", "1.0f", "244s", "tq", "9.9z", "12.0fc")
    def codes(self): return self.pick("1", "4", "9", "111", "198", "459", "601", "2000", "8001", "0")
    def file(self): return self.pick("f1", "f2", "f3", "f1", "f2", "f3", "nofile")
    def lab(self): return self.pick("l1", "l2", "l3")
    def text(self): return self.pick("", "a", "b c", "x1", "caf\xe9", "\x80\x9b[2J", "$g", "`l'", "it's", "{bf:x}", "a\xc3\xa9b", "1", ".", "y" * 90, " z ")
    def var(self): return self.chance.choice(self.now.names or ["x1"]) if self.chance.random() < .97 else "nosuch"
    def num(self): return self.chance.choice(self.now.numbers() or ["x1"])
    def str(self): return self.chance.choice([v for v in self.now.names if v not in self.now.numbers()] or ["s1"])
    def new(self): return self.pick(*"abcdefgh") + self.pick("", "1", "2", "name_of_thirty_two_characters_x")
    def vars(self): return self.fill(self.pick("{var}", "{num}", "{var} {var}", "{num} {num}", "{var} {num} {var}", "_all", self.pick("a*", "?1", "x-y", "")))
    def w(self): return "" if self.chance.random() < .7 else self.fill(" [{fw|aw|pw|iw|weight}={num}]")
    def byp(self):
        sort = " ".join(self.now.sort) or "x1"
        return self.fill(self.pick("", "", "", "by %s: " % sort, "bysort {vars}: ", "by {vars}: ", "quietly ", "capture noisily "))
    def cond(self):
        return self.fill(self.pick("{num} < {int}", "{num} == .", '{str} > "b"', "_n > _N/2", "1", "0", "uniform() < .5", self.model(1)[0]))
    def exp(self): return self.fill(self.pick(*[self.model()[0]] * 6, "sum({num})", "uniform()", "{num}[_n-{int}]", "length({str})", "group({int})",
        "real({str})", "{str} < {str}", "L.{num}", "ln({num})/{int}", "cond({cond}, {num}, .)", "mod({num}, {int})", "`l'", "normprob({num})",
        'index({str}, "{text}")', "scalar(a)", "_rc + r(N)", "{num}^{num}", "{str} + 1", "("))
    def sexp(self): return self.fill(self.pick("{str}", '"{text}"', 'string({num}, "%{format}")', "{str} + string(_n)", "substr({str}, {int}, {int})",
        "char({int}{int}) + {str}", 'subinstr({str}, "{text}", "x", {int})', "upper({str})", "{str}[_n-1]", 'trim({str}) + "{text}"', "char(233)"))
    def model(self, depth=2):
        """An expression: its text, and a function of a dataset and an observation."""
        def leaf():
            k, x = self.chance.choice((0, 1, 2, 7, .5, 300)), self.num()
            usual = (x, lambda d, i: d.columns[x][i])
            return self.chance.choice((usual, usual, usual, (str(k), lambda d, i: k), (".", lambda d, i: math.inf), ("_n", lambda d, i: i + 1),
                ("_N", lambda d, i: d.n), (x + "[_n-1]", lambda d, i: d.columns[x][i - 1] if i else math.inf)))
        if not depth or self.chance.random() < .2: return leaf()
        (a, f), (b, g), op = self.model(depth - 1), self.model(depth - 1), self.chance.choice(list(OPERATORS))
        def value(d, i):
            x, y = f(d, i), g(d, i)
            return OPERATORS[op](x, y) if op in "< >= == != & |".split() or x != math.inf and y != math.inf else math.inf
        return "(%s %s %s)" % (a, op, b), value
    def modelled(self):
        m = self.model()
        self.value = m[1]
        return m[0]
    def if_(self):
        self.where = None
        if self.chance.random() < .4: return self.fill(self.pick("", "", " if {cond}"))
        text, self.where = self.model(1)
        return " if " + text
    def in_(self):
        return "" if self.chance.random() < .6 else self.fill(" in " + self.pick("{int}", "1/{int}", "{int}/{int}{int}", "f/{int}", "-{int}/l", "l", "{int}/l"))
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
            word = self.chance.choice([t[a + 1:b] for a, b in zip(cuts, cuts[1:] + [end - 1])])
            out += t[:at] + (getattr(self, PARTS[word])() if word in PARTS else self.fill(word))
            t = t[end:]
        return out + t

    # ---- The conversation.
    def say(self, lines, until="~~~"):
        """Types lines, and gives back what comes up to the mark."""
        typed, text, end = ("\n".join(lines) + '\ndisplay "%s"\n' % until).encode("latin-1"), b"", time.time() + 40
        self.p.stdin.write(typed)
        self.p.stdin.flush()
        while not re.search(rb"^%s$" % until.encode(), text, re.M):
            if time.time() > end: raise fault("no answer")
            if not select.select([self.p.stdout], [], [], 1)[0]: continue
            piece = self.p.stdout.read()
            if not piece: raise fault("the session ended, status %s" % self.p.wait(20))
            text += piece
            self.output = (self.output + piece.decode("latin-1"))[-6000:]
        return text.decode("latin-1")
    def look(self):
        if os.path.exists(self.snap): os.remove(self.snap)
        text = self.say(['display "~~" _N', "debug obstest", "capture save %s, replace internal" % self.snap])
        if "(obsptrs checked)" not in text: raise fault("the order of observations is damaged")
        if re.search(r"^-[^\n]*~~|runtime error:|AddressSanitizer", text, re.M): raise fault("a sanitizer speaks, or trace stayed on")
        d = data(int(re.search(r"^~~(\d+)", text, re.M)[1]), self.snap)
        keys = d.rows(d.sort) if d.sort else []
        if any(a > b for a, b in zip(keys, keys[1:])): raise fault("the data are not sorted by " + " ".join(d.sort))
        if stay := [v for v in d.names if v.startswith("__")]: raise fault("%s stayed" % stay)
        return d
    def range(self, line, n):
        m = re.search(r" in ([^\s,]+)", line)
        if not m: return range(n)
        first, _, last = m[1].partition("/")
        place = lambda w: {"f": 1, "l": n}.get(w) or (int(w) if int(w) > 0 else n + 1 + int(w))
        return range(place(first) - 1, place(last or first))
    def step(self):
        template = self.chance.choice(TEMPLATES)
        self.where, self.value, before = None, None, self.now
        promise, _, rest = template.partition(" ")
        if promise not in ("reads", "orders", "loose"): promise, rest = "", template
        line = self.fill(rest).replace("<<", "{").replace(">>", "}").replace("\\n", "\n")
        self.run(line.split("\n"))
        rc, now, self.now = self.rc, self.look(), None
        self.now = now
        self.check(promise, rest, line, before, now, rc)
    def run(self, lines):
        self.lines += lines
        self.output = ""
        text = self.say(lines)
        codes = re.findall(r"^r\((\d+)\);", text, re.M)
        self.rc = int(codes[-1]) if codes else 0
        self.count += 1
        self.good += not codes
        if unknown := {int(c) for c in codes} - CODES: raise fault("unknown code %s" % unknown)
        if re.search(r"runtime error:|AddressSanitizer|memory check", text): raise fault("a sanitizer speaks")
    def check(self, promise, template, line, before, now, rc):
        if now.raw == before.raw and promise in ("reads", "orders", "loose"): return
        same = now.names == before.names and sorted(now.rows()) == sorted(before.rows())
        sorts = "sort " in line or promise == "orders" or before.n == 0
        if promise == "loose" and (rc or "expand" not in template): return
        if now.raw != before.raw and os.environ.get("DIFF"): print(line, before.n, now.n, before.names, now.names, before.sort, now.sort, before.types, now.types, same)
        if rc and not (sorts and same) and now.raw != before.raw: raise fault("it failed with %d, but changed the data" % rc)
        if promise == "reads" and not (sorts and same): raise fault("it changed the data")
        if promise == "orders" and sorted(before.rows()) != sorted(now.rows()): raise fault("not the same observations")
        if rc or line.startswith(("by", "capture", "quietly")): return
        word, kept = line.split()[0], line.split()
        if template.startswith("save {file}"): self.files[re.search(r"nofile|f\d", line)[0]] = None if re.search("old|mids", line) else before.rows(before.names)
        elif template == "use {file}, clear{| nolabel}":
            if (rows := self.files.get(kept[1].strip(","))) is not None and rows != now.rows(now.names): raise fault("the file came back otherwise")
        elif word == "preserve": self.kept = before.raw
        elif word == "restore" and "not" not in line:
            if now.raw != self.kept: raise fault("restore gave other data than preserve had")
        if " if " in line and not self.where or word not in ("keep", "drop", "generate", "replace", "expand", "append"): return
        some = [i for i in self.range(line, before.n) if not self.where or self.where(before, i)]
        if word in ("keep", "drop") and (" if " in line or " in " in line):
            rows = [r for i, r in enumerate(before.rows()) if (i in set(some)) == (word == "keep")]
            if rows != now.rows() and now.names: raise fault("other observations stayed than %s" % rows[:5])
        elif word in ("generate", "replace") and self.value:
            name = now.names[-1] if word == "generate" else kept[1]
            if name + "[" in line: return
            t, inside = now.types[now.names.index(name)], set(some)
            for i, got in enumerate(now.columns[name]):
                old = before.columns[name][i] if name in before.columns else math.inf
                want = fit(t, self.value(before, i)) if i in inside else old
                if want is not None and want != got: raise fault("%s[%d] is %r, not %r" % (name, i + 1, got, want))
        elif word == "expand":
            more = sum(max(1, min(int(v), 9999) if (v := self.value(before, i)) < 1e9 else 1) - 1 for i in some)
            if now.n != before.n + more: raise fault("%d observations, not %d" % (now.n, before.n + more))
        elif word == "append" and now.n != before.n + len(self.files.get(kept[2].strip(",")) or [0] * (now.n - before.n)):
            raise fault("the observations of the file did not all come")
    def play(self):
        self.now = data(0, "")
        self.run(["set sortseed 7"] + PROGRAMS.strip().split("\n"))
        for n in range(1, 4): open("%s/s%d.do" % (self.work, n), "w", encoding="latin-1").write("".join(
            self.fill(re.sub("^(reads|orders|loose) ", "", self.chance.choice(TEMPLATES))).replace("<<", "{").replace(">>", "}").replace("\\n", "\n") + "\n" for _ in range(4)))
        for n in ("3", self.chance.choice(("0", "1", "30", "300", "700"))):
            self.run(["drop _all", "set obs " + n, "generate x1 = mod(_n * 37, 11)", "generate byte y1 = mod(_n, 5) if mod(_n, 7)", "generate double z = _n / 3",
                      'generate str9 s1 = char(97 + mod(_n, 3)) + string(y1)', 'generate str1 t = ""', "generate int w = 200 - _n", "save f%d, replace" % (1 + (n != "3")),
                      "label define l1 0 \"nought\" 1 `\"a \"one\"\"'", "label values y1 l1"])
        self.now = self.look()
        for _ in range(40): self.step()
        self.p.stdin.write(b"exit, clear\n")
        self.p.stdin.close()
        if (status := self.p.wait(60)) != 0: raise fault("exit status %d" % status)
        if stay := [f for f in os.listdir(self.work) if f.startswith(("velmo-", ".velmo-"))]: raise fault("%s stayed" % stay)

OPERATORS = {"+": lambda x, y: x + y, "-": lambda x, y: x - y, "*": lambda x, y: x * y, "<": lambda x, y: int(x < y), ">=": lambda x, y: int(x >= y),
             "==": lambda x, y: int(x == y), "!=": lambda x, y: int(x != y), "&": lambda x, y: int(x != 0 and y != 0), "|": lambda x, y: int(x != 0 or y != 0)}
PARTS = {w: w for w in "int type format codes file lab text var num str new vars w byp cond exp sexp".split()} | {"model": "modelled", "if": "if_", "in": "in_"}

def main():
    program, many, seed = os.path.abspath(sys.argv[1]), *[int(w) for w in sys.argv[2:4] + ["25", "1"][len(sys.argv) - 2:]]
    count = good = 0
    for s in range(seed, seed + many):
        with tempfile.TemporaryDirectory(prefix="vs") as work:
            one = session(program, s, work)
            try: one.play()
            except (fault, LookupError) as f:
                path = os.path.join(tempfile.gettempdir(), "sessions-%d.do" % s)
                open(path, "w", encoding="latin-1").write("\n".join(one.lines) + "\n")
                print("the lines typed are in %s; the last output was\n%s\nseed %d: %s" % (path, one.output[-3000:], s, f))
                return 1
            finally:
                one.p.kill()
                one.p.wait()
            count, good = count + one.count, good + one.good
    print("%d sessions, %d commands, %d of them succeeded" % (many, count, good))
    return 0

sys.exit(main())
