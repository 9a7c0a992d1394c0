#!/usr/bin/env python3
"""The program on a terminal, and at its ends: terminal.py PROGRAM [CASE]

Each case has a session on a pseudo-terminal. It sends keys and waits for what must show, escape sequences aside;
nothing waits for time to pass."""
import fcntl, os, pty, re, select, shutil, signal, struct, subprocess, sys, tempfile, termios, time

signal.signal(signal.SIGHUP, signal.SIG_DFL)      # children inherit it, also where this runs under nohup
PROGRAM, WAIT = os.path.abspath(sys.argv[1]), 60
CODES = re.compile(rb"\x1b(\[[0-9;?]*[ -/]*[@-~]|\][^\x07\x1b]*(\x07|\x1b\\)|.)")

class session:
    def __init__(self, work, *args, answer=b"", size=(24, 80), **env):
        self.raw, self.seen, self.answer = b"", 0, answer
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.chdir(work)
            for name in ("NO_COLOR", "COLORFGBG", "VELMOTMP"): os.environ.pop(name, None)
            os.environ.update(dict(HOME=work, TEMP=work, TERM="xterm", LC_ALL="C.UTF-8", PS1="$ "), **env)
            fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", *size, 0, 0))
            os.execv(PROGRAM, [PROGRAM, "-q", *args])
    def read(self):
        if not select.select([self.fd], [], [], WAIT)[0]: raise AssertionError("no answer behind %r" % self.raw[-300:])
        try: piece = os.read(self.fd, 65536)
        except OSError: piece = b""
        self.raw += piece
        for _ in range(piece.count(b"\x1b[c")): os.write(self.fd, self.answer + b"\x1b[?1;2c")
        return piece
    def shown(self): return CODES.sub(b"", self.raw).replace(b"\r", b"")
    def wait(self, pattern):
        """Reads until it shows behind what was last waited for; the text in between."""
        while True:
            text = self.shown()[self.seen:]
            m = re.search(pattern, text)
            if m:
                self.seen += m.end()
                return text[:m.end()]
            if not self.read(): raise AssertionError("it ended without %r: %r" % (pattern, text[-600:]))
    def send(self, *keys):
        for k in keys:
            while k: k = k[os.write(self.fd, k):]
            while select.select([self.fd], [], [], 0)[0] and self.read(): pass
    def ask(self, line, pattern):
        self.send(line + b"\r")
        return self.wait(pattern)
    def resize(self, rows, columns): fcntl.ioctl(self.fd, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
    def end(self):
        while self.read(): pass
        return os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1])

PASTE = b"\x1b[200~%s\x1b[201~"
def same(got, want): assert got == want, "%r is not %r" % (got, want)

def pause(work):
    """what is pasted or typed ahead while --more-- waits goes to commands; sequences are one key, or none"""
    s = session(work)
    s.send(b"set obs 30\rgenerate x = _n\rset pagesize 6\rlist\r"); s.wait(b"more")
    s.send(PASTE % b"display 40+2\rdisplay 42+1\r"); s.wait(b"30\\. +30"); s.wait(b"\n42\n"); s.wait(b"\n43\n")
    s.ask(b"list", b"more"); s.send(b"display 43+1\rdisplay 44+1\r"); s.wait(b"30\\. +30"); s.wait(b"\n44\n")
    s.wait(b"\n45\n")
    s.ask(b"list", b"more"); s.send(b"\x1b[15~\x1b[2~\x1bx", b"\x1b[6~"); s.wait(b" 9\\. +9\n.*more")
    s.send(b"l"); s.wait(b" 10\\. +10\n.*more"); s.send(b"q"); assert b" 13." not in s.wait(b"r\\(1\\)")
    s.ask(b"list", b"more"); s.send(b"\x03"); s.wait(b"r\\(1\\)")
    s.send(b"set more off, permanent\rexit, clear\r"); same(s.end(), 0)
    s = session(work)
    s.send(b"set obs 30\rgenerate x = _n\rset pagesize 6\rlist\r"); assert b"more" not in s.wait(b"30\\. +30")
    s.send(b"set more on, permanent\rexit, clear\r"); same(s.end(), 0)

def typing(work):
    """pasted tabs are tabs, also without marks; Ctrl-D ends what reads; unknown sequences do nothing; lines whole"""
    s = session(work)
    s.send(b"input a b\r"); s.wait(b"1\\. "); s.send(PASTE % b"1\t2\r3\t4\r", b"5\t6\r"); s.wait(b"4\\. ")
    s.send(b"\x04"); s.wait(b"r\\(612\\)"); s.ask(b"display a[1] b[2] b[3] _N", b"\n1463\n")
    s.send(b"program define p\r"); s.wait(b"1\\. "); s.send(b"\x04"); s.wait(b"r\\(612\\)")
    s.send(b"while 1 {\r"); s.wait(b"2\\. "); s.send(b"\x04"); s.wait(b"r\\(612\\)")
    s.ask(b"dis\x1b[5~\x1b[2~\x1bx\x1b[15;3~play \"\xc3\xa9\x1b[D\xc3\xa8\x1b[C\x1b[1;3D"
          b"\x1b[Hq\x1b[D\x1b[3~\x1b[F\" 9*9",
          "\nèé81\n".encode())
    for n in (5000, 9000): s.send(b"local a %s\rdisplay \"`: length local a'\"\r" % (b"x" * n)); s.wait(b"\n%d\n" % n)
    s.send(b"forvalues i = 1/100000000 {\rdisplay _c \"\"\r}\r"); s.wait(b"3\\. }"); s.wait(b"\n")
    s.send(b"\x03"); assert b"^C" not in s.wait(b"r\\(1\\)")
    s.send(b"\x04"); s.wait(b"no; data in memory would be lost\nr\\(4\\)")
    s.send(b"drop _all\r\x04"); same(s.end(), 0)

def window(work):
    """the window gives the sizes until they are set; a typed line longer than it shows once"""
    s = session(work, size=(30, 100))
    s.ask(b"query linesize", b"linesize 100\n"); s.ask(b"query pagesize", b"pagesize 29\n")
    s.resize(20, 50); s.ask(b"query linesize", b"linesize 50\n")
    s.send(b"display \"%s" % (b"c" * 60)); s.wait(b"\x08c{20}"); s.resize(20, 40)
    while b"\x1b[1A\r\x1b[J" not in s.raw: assert s.read()
    s.ask(b"\"", b"\nc{40}\n> c{20}\n")
    s.resize(20, 50); s.ask(b"query linesize", b"linesize 50\n"); s.raw, s.seen = b"", 0
    s.ask(b"display \"%s\"" % (b"a" * 48 + b"b" * 40), b"\na{48}bb\n> b{38}\n"); same(s.shown().count(b"\n> "), 1)
    s.send(b"set linesize 70\rset pagesize 0\r"); s.resize(20, 120); s.ask(b"query linesize", b"linesize 70\n")
    s.ask(b"query pagesize", b"pagesize 0\n"); s.send(b"set linesize\r"); s.ask(b"query linesize", b"linesize 120\n")
    s.send(b"exit\r"); same(s.end(), 0)

def colours(work):
    """the terminal's background chooses the colours; NO_COLOR, a setting and a dumb terminal want none"""
    for answer, env, code in ((b"\x1b]11;rgb:ffff/ffff/f0f0\x1b\\", {}, b";34"),
                              (b"\x1b]11;rgb:10/10/10\x07", {}, b";33"), (b"", {}, b";35"),
                              (b"", dict(COLORFGBG="0;15"), b";34"), (b"", dict(NO_COLOR="1"), b"")):
        s = session(work, answer=answer, **env)
        s.ask(b"display as result 40+2", b"\n42\n"); assert b"\x1b[0%sm42" % code in s.raw, s.raw
        s.send(b"set colors none\r"); s.ask(b"display as result 41+2", b"\n43\n"); assert b"\x1b[0m43" in s.raw, s.raw
        s.send(b"exit\r"); same(s.end(), 0)
    s = session(work, TERM="dumb")
    s.ask(b"display 40+2", b"42\n"); s.send(b"\x04"); same(s.end(), 0); assert b"\x1b" not in s.raw, s.raw

def control(work):
    """no byte from data controls the terminal; files get them"""
    s = session(work)
    t = "+".join('"%s"' % c if isinstance(c, str) else "char(%d)" % c
                 for c in ("a", 27, "[2Jb", 155, "2J", 194, 155, 208, 155, 233))
    s.send(b"set obs 1\rgenerate str40 t = %s\r" % t.encode())
    s.send(b"label variable t \"x`=char(27)'[2Jy\"\rlist\rdescribe\rtype t.txt\routfile using t.raw\r")
    open(work + "/t.txt", "wb").write(b"q\x1b[2J\x07\n")
    s.ask(b"display 40+2", b"\n42\n")
    for bad in (b"\x1b[2J", b"\x07", b"b\x9b", b"\xc2\x9b"): assert bad not in s.raw, bad
    for good in ("a\ufffd[2Jb\ufffd2J\ufffd\ufffd\u041bé", "x\ufffd[2Jy"): assert good.encode() in s.shown(), s.shown()
    assert b"a\x1b[2Jb\x9b2J\xc2\x9b\xd0\x9b\xe9" in open(work + "/t.raw", "rb").read()
    s.send(b"exit, clear\r"); same(s.end(), 0)

def hangup(work):
    """a hangup closes what is open and leaves nothing behind"""
    lines = ("log using l, text replace\nset obs 3\ngenerate x = 1\npreserve\ntempfile t\nsave `t'\n"
             "file open h using h.txt, write replace\nfile write h \"kept\"\ndisplay 40+2\n")
    open(work + "/job.do", "w").write(lines + "forvalues i = 1/1000000000 {\nlocal a `i'\n}\n")
    for how in (signal.SIGHUP, signal.SIGTERM, 0):
        s = session(work)
        s.send(b"do job\r" if how else lines.replace("\n", "\r").encode()); s.wait(b"\n42\n")
        os.kill(s.pid, how) if how else os.close(s.fd)
        same(s.end() if how else os.waitstatus_to_exitcode(os.waitpid(s.pid, 0)[1]), 128 + (how or signal.SIGHUP))
        same(open(work + "/h.txt").read(), "kept"); assert "closed on:" in open(work + "/l.log").read()
        same([n for n in os.listdir(work) if n.startswith(("VM", "velmo"))], [])

def newcomer(work):
    """what newcomers type is understood at a prompt; a command that is none has near ones proposed; q ends a page"""
    s = session(work)
    s.ask(b"?", b"what there is help on"); s.wait(b"\xe2\x94\x80more"); s.send(b"q"); s.wait(b"\n\\. ")
    s.ask(b"set more off", b"\n\\. "); s.ask(b"?count", b"how many observations")
    s.ask(b".help exit", b"leave: the session"); s.ask(b"sumarize", b"r\\(199\\);\nnear to it: summarize")
    s.ask(b"codebok", b"near to it: codebook"); s.ask(b"load x", b"near to it: use")
    s.ask(b"capture sumarize", b"\n\\. "); s.ask(b"display 1", b"\n1\n"); s.send(b"quit\r"); same(s.end(), 0)
    assert b"near" not in s.shown().split(b"capture sumarize")[-1]

def ends(work):
    """the exit status; closed descriptors, full devices and readers that go away"""
    files = {"bad.do": "display 1\nerror 9\n", "long.do": "forvalues i = 1/1000000000 {\ndisplay \"`i'\"\n}\n",
             "good.do": "display 7*6\n",
             "write.do": "file open h using out, write replace\nfile write h \"mine\"\n"
                         "display \"not mine\"\nfile close h\n"}
    for name, text in files.items(): open(work + "/" + name, "w").write(text)
    for line, status in (("$V do bad </dev/null", 1), ("$V <bad.do", 1), ("$V do good </dev/null", 0),
                         ("(cat bad.do good.do) | $V", 0), ("$V <good.do >/dev/full", 1),
                         ("$V do long </dev/null | head -3", 0), ("$V do /dev/stdin <good.do | grep -q 42", 0),
                         ("$V do <(cat good.do) </dev/null | grep -q 42", 0),
                         ("$V do write <&- >&- 2>&- && test $(cat out) = mine", 0)):
        p = subprocess.run(["bash", "-c", line.replace("$V", PROGRAM + " -q")], cwd=work,
                           env=dict(os.environ, HOME=work),
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=WAIT)
        same((line, p.returncode), (line, status))

def main():
    cases = pause, typing, window, colours, control, hangup, newcomer, ends
    cases = [c for c in cases if sys.argv[2:3] in ([], [c.__name__])]
    for case in cases:
        work = tempfile.mkdtemp(prefix="vterm")
        try: case(work)
        except Exception as e: raise SystemExit("FAIL %s: %s\n    %s" % (case.__name__, case.__doc__, e))
        finally: shutil.rmtree(work, ignore_errors=True)
    print("%d passed, 0 failed" % len(cases))
main()
