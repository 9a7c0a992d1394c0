#!/usr/bin/env python3
"""Sends SIGINT at random moments into a session that runs a long do-file, many times: breaks.py PROGRAM [TIMES [SEED]]

After each Break the session must be whole: the prompt comes back at the console's level, the settings that the do-file
changes at its levels are as before, its temporary things are gone, and the data obey their own check. The do-file has
no `capture`, which would keep a Break for itself; programs of the base library have, and must hand it on."""
import os, random, re, select, shutil, signal, subprocess, sys, tempfile, time

LONG = """
version 6
quietly set obs 400
program define inner, sortpreserve
  tempvar t
  quietly generate `t' = _n
  forvalues i = 1/40 {
    quietly replace `t' = `t' + `i'
    if mod(`i', 7) == 0 {
      noisily display "inner"
    }
  }
  sort `t'
end
program define group, byable(recall, noheader)
  syntax [varlist] [if] [in]
  marksample touse
  quietly count if `touse'
end
program define middle
  preserve
  keep x s
  quietly keep in 1/100
  sort x
  quietly save half, replace
  generate z = _n
  quietly merge x using half
  drop _merge
  quietly bysort x: keep if _n == 1
  quietly keep if _n <= 10
  by x: group z
end
program define library
  preserve
  quietly {
    _bystats m = mean(x) p = p9(y) f = first(s), by(s)
    _bystats q = sum(x), by(x s) reduce
    keep in 1/60
    generate i = int((_n - 1) / 3)
    generate j = mod(_n, 3)
    label define j 0 "a" 1 "b" 2 "c", modify
    label values j j
    egen t = concat(x j), decode
    egen k = cut(x), group(3) label
    recode x 1/50=1 (*=2), generate(r)
    duplicates report r j
    separate x, by(r)
    keep i j y
    reshape wide y, i(i) j(j)
    reshape long
    save other, replace
    joinby i using other
    stack i j i y, into(a b) clear
    codebook
    notes: done
  }
end
program define models
  regress y x, robust
  predict double fit
  drop fit
  logit big x y2, robust iterate(4)
  regress y2 x (x), hc3
  regress y2 x
  bptest, white
  sw regress x y y2, pr(.5)
  maxlik mynormal (mean: y2 = x) (lns:), iterate(3)
  bootstrap summarize x, reps(5) nodots
  regress y2 x, cluster(s)
end
program define mynormal
  args lnf m s
  quietly replace `lnf' = -`s' - .5*((y2-`m')/exp(`s'))^2
end
generate x = mod(_n * 37, 101)
generate y2 = uniform()
generate byte big = uniform() < .5
generate str8 s = string(x)
generate y = 1
label define l 1 "one", modify
local k 0
while `k' < 2000 {
  local k = `k' + 1
  inner
  middle
  library
  quietly models
  quietly {
    sort x s
    summarize x, detail
    replace x = x + 1 in 1/10
    compress
    drop y
    generate double y = sum(x)
  }
  display "round `k'"
}
program drop inner middle group library models mynormal
"""
CHECK = ('capture program drop inner', 'capture program drop middle', 'capture program drop group',
         'capture program drop library', 'capture program drop models', 'capture program drop mynormal',
         'capture assert e(N) == . | (e(N) == 400 & el(e(V),1,1)+el(e(b),1,1) < .)',
         'display "model " _rc', 'matrix dir', 'estimates dir', 'scalar dir', 'label drop _all',
         'version', 'display "obs " (_N == 400 | _N == 0)',
         'display "[`k\'][`t\']"', 'capture debug obstest', 'display "rc " _rc',
         'capture assert length(s) > 0', 'display "data " _rc', 'drop _all', 'display "whole " 1+1')

def read(p, until, seconds=20):
    """Output up to a line that begins with `until`."""
    text, end = b"", time.time() + seconds
    while not re.search(rb"^" + until, text, re.M):
        if time.time() > end: raise SystemExit("no answer; the last output was:\n" + text[-2000:].decode("latin-1"))
        if select.select([p.stdout], [], [], 0.2)[0]:
            piece = os.read(p.stdout.fileno(), 65536)
            if not piece: raise SystemExit("the session ended; the last output was:\n" + text[-2000:].decode("latin-1"))
            text += piece
    return text.decode("latin-1")

def main():
    program, times = os.path.abspath(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) > 2 else 60
    chance = random.Random(int(sys.argv[3]) if len(sys.argv) > 3 else 1)
    work = tempfile.mkdtemp(prefix="vb")
    open(os.path.join(work, "long.do"), "w").write(LONG)
    p = subprocess.Popen([program, "-q"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                         cwd=work, env=dict(os.environ, HOME=work, TEMP=work, TERM="dumb"))
    say = lambda line: (p.stdin.write((line + "\n").encode()), p.stdin.flush())
    try:
        for i in range(times):
            say("do long")
            read(p, rb"\. version 6")
            time.sleep(chance.random() * 0.15)
            p.send_signal(signal.SIGINT)
            time.sleep(0.002)
            say('display "ended"')
            first = read(p, rb"ended")
            if "--Break--" not in first or re.search(r"^r\((?!1\))", first, re.M):
                raise SystemExit("Break %d was lost:\n%s" % (i + 1, first[-1500:]))
            for line in CHECK: say(line)
            text = read(p, rb"whole 2")
            for wanted in (r"^version 7\.0$", r"^obs 1$", r"^\[\]\[\]$", r"^rc 0$", r"^data [09]$|^data 111$",
                           r"^model 0$"):
                if not re.search(wanted, text, re.M):
                    raise SystemExit("after Break %d: no %s in\n%s%s" % (i + 1, wanted, first[-1500:], text))
            if re.search(r"^ *__", text, re.M): raise SystemExit("a temporary name stayed:\n" + text)
            if [f for _, _, names in os.walk(work) for f in names if f.endswith(".tmp")]:
                raise SystemExit("a temporary file stayed")
        say("exit, clear")
        p.wait(20)
        if [f for f in os.listdir(work) if f.startswith("velmo-")]: raise SystemExit("the session's folder stayed")
        print("%d Breaks sent, none lost, the session whole after each" % times)
    finally:
        p.kill()
        shutil.rmtree(work, ignore_errors=True)
main()
