#!/usr/bin/env python3
"""What the system refuses or takes away: faults.py PROGRAM. Work space, room on the disk, files that vanish, closed
descriptors, pipes that stay silent, signals. The code is the one told, the data stay whole, nothing is left behind."""
import os, re, resource, signal, subprocess, sys, tempfile, time

program = os.path.abspath(sys.argv[1])
signal.signal(signal.SIGHUP, signal.SIG_DFL)      # children inherit it, also where this runs under nohup
DATA = ["set obs 3000", "generate x = mod(_n * 37, 101)", "generate str12 s = string(_n)", "generate double y = _n / 3"]
bad = []

def environment(work): return dict(os.environ, HOME=work, TEMP=work, TERM="dumb")

def run(work, lines, args=("-q",), **more):
    """The session's output and status, when `lines` are typed."""
    p = subprocess.run([program, *args], input=("\n".join(lines) + "\n").encode(), stdout=subprocess.PIPE,
                       stderr=subprocess.STDOUT, cwd=work, env=environment(work), timeout=300, **more)
    return p.stdout.decode("latin-1"), p.returncode

def want(what, text, *patterns):
    for pattern in patterns:
        if not re.search(pattern, text, re.M): bad.append("%s: no %s in\n%s" % (what, pattern, text[-1500:]))

def leftovers(what, work):
    stay = [f for f in os.listdir(work) if f.startswith((".velmo-", "velmo-"))]
    if stay: bad.append("%s: %s stayed" % (what, stay))

def refusedspace(work):
    """The nth request for work space fails, for each n that the command reaches: 909, and the data are as before."""
    commands = ["sort x", "save whole, replace", "summarize x, detail", "by x: summarize y", "merge using whole",
                "append using whole", "egen m = median(y), by(x)", "preserve", "drop if x < 50", "collapse y, by(x)",
                "set maxvar 6000", "insheet using t.csv, clear", "compress", "encode s in 1/20, generate(e)",
                "_bygroup g = s y, first(f)", "_bystats m = p9(y) f = first(s), by(s x) reduce"]
    lines = DATA + ["quietly save whole", "quietly outsheet using t.csv, comma"]
    for command in commands:
        for n in range(1, 7):
            lines += ["capture use whole, clear", "debug refuse %d" % n, "capture " + command, "local rc = _rc",
                      "debug refuse 0", "capture restore", "capture debug obstest", "local test = _rc",
                      "if `rc' { capture assert _N == 3000 & s[3000] != \"\" & x < 101 }",
                      "else { capture assert 1 }", 'display "[%s] %d: " `rc\' " " `test\' " " _rc' % (command, n)]
    text, _ = run(work, lines)
    answers = re.findall(r"^\[(.*)\] (\d): (\d+) (\d+) (\d+)$", text, re.M)
    if len(answers) != 6 * len(commands): bad.append("refused work space: the session broke off\n" + text[-1500:])
    for command, n, rc, test, data in answers:
        fits = rc in ("0", "909", "110", "4", "5") and test == "0" and (data == "0"
                or command.startswith(("insheet", "set")))
        if not fits:
            bad.append("refused work space %s of %s: code %s, order %s, data %s" % (n, command, rc, test, data))

def fulldisk(work):
    """Files may have 40,000 bytes: what can't be written is told and not left half-written; an old dataset stays."""
    writers = ["save new", "outsheet using new.out", "outfile using new.raw", "preserve"]
    lines = DATA + ["quietly keep in 1/500", "quietly save old", "quietly expand 20"]
    for w in writers + ["save old, replace"]:
        lines += ["capture %s" % w, 'display "[%s] " _rc' % w, "capture restore"]
    lines += ["postfile h a b using posted", "forvalues i = 1/9000 {", "capture post h (1) (2)", "}",
              "capture postclose h", "use old, clear", 'display "old " _N']
    def limit(): resource.setrlimit(resource.RLIMIT_FSIZE, (40000, 40000))
    text, _ = run(work, lines, preexec_fn=limit)
    want("full disk", text, r"^old 500$", *(r"^\[%s\] 699$" % re.escape(w) for w in writers + ["save old, replace"]))
    stay = [f for f in os.listdir(work) if f != "old.dta"]
    if stay: bad.append("full disk: %s stayed" % stay)

def vanished(work):
    """Temporary files and folders that somebody removed."""
    text, _ = run(work, DATA + ["preserve", "drop _all", "shell rm -r velmo-*", "capture noisily restore, not",
                                "preserve", 'display "next " 1 + 1'])
    want("folder gone", text, r"^next 2$")
    text, status = run(work, DATA + ["preserve", "drop _all", "shell rm velmo-*/*", "restore", 'display "next " 1 + 1'])
    want("file gone", text, r"preserved data could not be restored", r"not found")
    if status != 1: bad.append("file gone: exit status %d" % status)
    subprocess.run("rm -rf velmo-*", shell=True, cwd=work)

def closed(work):
    """Started without standard input, output and error, a session writes none of its text into the files it opens."""
    open(os.path.join(work, "job.do"), "w").write("\n".join(DATA + ["save kept", "outsheet using kept.csv in 1/2", ""]))
    def close():
        for fd in (0, 1, 2): os.close(fd)
    subprocess.run([program, "-q", "-b", "do", "job"], cwd=work, env=environment(work), preexec_fn=close, timeout=60)
    if open(os.path.join(work, "kept.csv"), "rb").read().count(b"\n") != 3:
        bad.append("closed descriptors: kept.csv is spoilt")
    text, _ = run(work, ["use kept", 'display "rows " _N'])
    want("closed descriptors", text, r"^rows 3000$")

def unwritable(work):
    with open("/dev/full", "wb") as full:
        p = subprocess.run([program, "-q"], input=b'display "x"\n', stdout=full, cwd=work, env=environment(work),
                           timeout=60)
    if p.returncode != 1: bad.append("/dev/full: exit status %d" % p.returncode)
    many = "forvalues i = 1/200000 {\ndisplay `i'\n}\nsave late\n"
    open(os.path.join(work, "many.do"), "w").write("set obs 1\ngenerate x = 1\n" + many)
    subprocess.run("%s -q -b do many | head -3" % program, shell=True, stdout=subprocess.DEVNULL, cwd=work,
                   env=environment(work), timeout=60)
    if os.path.exists(os.path.join(work, "late.dta")): bad.append("a reader that goes away does not end the session")

def silent(work):
    """Break ends what waits for a pipe, whether nobody opens it or nobody writes."""
    pipe = os.path.join(work, "p.raw")
    os.mkfifo(pipe)
    for command in ("use p.raw", "insheet using p", "infile a using p", "infix a 1 using p", "do p.raw", "type p.raw",
                    "copy p.raw q"):
        for opened in (False, True):
            held = os.open(pipe, os.O_RDWR) if opened else -1
            p = subprocess.Popen([program, "-q"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT, cwd=work, env=environment(work))
            p.stdin.write(("capture noisily %s\ndisplay \"code \" _rc\nexit\n" % command).encode())
            p.stdin.flush()
            end = time.time() + 30
            while p.poll() is None and time.time() < end:
                time.sleep(0.05)
                p.send_signal(signal.SIGINT)
            text = p.communicate(timeout=30)[0].decode("latin-1")
            if not re.search(r"^code 1$|--Break--", text, re.M):
                bad.append("a silent pipe: %s, %s: %s" % (command, opened, text))
            if held >= 0: os.close(held)

def signals(work):
    """A session that is told to end closes its posts and logs and takes its temporary files along."""
    for name in ("SIGHUP", "SIGTERM"):
        p = subprocess.Popen([program, "-q"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, cwd=work,
                             env=environment(work))
        say = DATA + ["postfile h a using posted, replace", "post h (7)", "preserve", "tempfile f", "quietly save `f'",
                      'display "ready"']
        p.stdin.write(("\n".join(say) + "\n").encode())
        p.stdin.flush()
        while b"\nready\n" not in (line := p.stdout.readline()) and line and line != b"ready\n": pass
        p.send_signal(getattr(signal, name))
        try: p.wait(20)
        except subprocess.TimeoutExpired:
            p.stdin.close()
            p.wait(20)
        leftovers(name, work)
        text, _ = run(work, ["use posted", 'display "posted " a[1]'])
        want(name, text, r"^posted 7$")

def main():
    for check in (refusedspace, fulldisk, vanished, closed, unwritable, silent, signals):
        with tempfile.TemporaryDirectory() as work:
            check(work)
            leftovers(check.__name__, work)
    print("\n".join(bad) or "refusals, full disks, lost files, pipes and signals are met as they must")
    return 1 if bad else 0

sys.exit(main())
