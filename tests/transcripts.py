#!/usr/bin/env python3
"""Runs transcript tests: transcripts.py PROGRAM FOLDER-or-FILE ... [-k WORD] [-v]

A .test file holds cases:

    === a sentence that must hold
    --- file NAME     (optional, repeatable) a file of the work folder; \\xHH, \\n, \\r, \\t, \\0, \\\\ in NAME.bin
    --- do            (optional) a do-file that the session runs ahead of its lines
    --- args          (optional) arguments instead of -q
    --- stdin         (optional) typed lines instead of those of the session
    --- exit N        (optional) the exit status; otherwise 1 when the last command failed, else 0
    --- locale NAME   (optional) C otherwise
    --- outfile NAME  (optional, repeatable) the text of a file that must stand there afterwards
    --- session       lines that begin ". " are typed; all others must come back exactly, `...` skips any number,
                      `~regex` matches one line. Trailing blanks and empty lines at the ends don't count. Short answers
                      may stand behind their command: `. command  => line  => line`.
    --- session numbered   as well, lines that begin with the number of a line asked for are typed

A line `--- compact` ahead of the first case: in this file empty lines of the session don't count at all.
Each case has its own process and its own empty folder.
"""
import os, re, shutil, subprocess, sys, tempfile

PROMPTS = {"": r"\. ", "numbered": r"(\.| *\d+\.) (?=\S)"}

def parse(path):
    cases, section, compact = [], None, False
    for raw in open(path, encoding="latin-1", newline="\n"):
        line = raw.rstrip("\n")
        if line.startswith("=== "):
            cases.append({"name": line[4:], "sections": [], "compact": compact})
            section = None
        elif line.startswith("--- ") and cases:
            kind, _, arg = line[4:].partition(" ")
            section = ("file", "setup.do", []) if kind == "do" else (kind, arg.strip(), [])
            if kind == "session" and ("file", "setup.do") in [s[:2] for s in cases[-1]["sections"]]:
                section[2].append(". run setup")
            cases[-1]["sections"].append(section)
        elif line == "--- compact": compact = True
        elif section:
            section[2].extend(line.split("  => ") if section[0] == "session" and line.startswith(". ") else [line])
    return cases

def unescape(text):
    names = {"n": "\n", "r": "\r", "t": "\t", "0": "\0", "\\": "\\"}
    return re.sub(r"\\(x[0-9a-fA-F]{2}|[nrt0\\])", lambda m: chr(int(m[1][1:], 16)) if m[1][0] == "x" else names[m[1]],
                  text)

def same(want, got):
    return re.search(want[1:], got) is not None if want.startswith("~") else want.rstrip() == got.rstrip()

def compare(want, got):
    """None, or where it differs. Blocks between gaps must be contiguous and in order."""
    def trim(lines):
        while lines and not lines[-1].strip(): lines = lines[:-1]
        while lines and not lines[0].strip(): lines = lines[1:]
        return lines
    want, got = trim(want), trim(got)
    at, gap, block = 0, False, []
    def place(block, at, gap, last):
        starts = [len(got) - len(block)] if gap and last else range(at, len(got) - len(block) + 1) if gap else [at]
        for i in starts:
            if i >= at and i + len(block) <= len(got) and all(same(w, got[i + j]) for j, w in enumerate(block)):
                return i + len(block)
        return None
    for line in want + ["..."]:
        if line.strip() != "...":
            block.append(line)
            continue
        end = place(block, at, gap, False) if block else at
        if end is None:
            i = at
            while not gap and i - at < len(block) and i < len(got) and same(block[i - at], got[i]): i += 1
            return "wanted: %s\n    got: %s" % (block[i - at] if i - at < len(block) else block,
                                                got[i] if i < len(got) else "(nothing)")
        at, gap, block = end, True, []
    if want and want[-1].strip() != "..." and at != len(got): return "more came: " + got[at]
    return None

def run(case, program):
    work = tempfile.mkdtemp(prefix="vt")
    try:
        locale = next((arg for kind, arg, _ in case["sections"] if kind == "locale"), "C")
        args, session, typed, status, outfiles = ["-q"], [], None, None, []
        for kind, arg, lines in case["sections"]:
            text = "\n".join(lines) + "\n"
            if kind == "file":
                data = unescape("".join(lines)) if arg.endswith(".bin") else text
                place = os.path.join(work, arg)
                os.makedirs(os.path.dirname(place), exist_ok=True)
                open(place, "wb").write(data.encode("latin-1"))
            elif kind == "args": args = " ".join(lines).split()
            elif kind == "stdin": typed = text
            elif kind == "exit": status = int(arg)
            elif kind == "outfile": outfiles.append((arg, text))
            elif kind == "session": session, prompt = lines, PROMPTS[arg]
        if typed is None: typed = "".join(l[m.end():] + "\n" for l in session if (m := re.match(prompt, l)))
        environment = dict(os.environ, HOME=work, TEMP=work, TERM="dumb", LC_ALL=locale)
        for name in ("VELMO", "VELMOTMP", "S_ADO"): environment.pop(name, None)
        p = subprocess.run([program] + args, input=typed.encode("latin-1"), stdout=subprocess.PIPE,
                           stderr=subprocess.STDOUT, cwd=work, env=environment, timeout=120)
        out = p.stdout.decode("latin-1").replace("\r\n", "\n").split("\n")
        if status is None: status = int(([l for l in out if l.strip(" .")] or [""])[-1].startswith("r("))
        if p.returncode != status: return "exit status %d, want %d" % (p.returncode, status), out
        if case["compact"]: session, out = ([l for l in lines if l.strip()] for lines in (session, out))
        fault = compare(session, [l for l in out if l.rstrip() != "."] if not any(s.rstrip() == "." for s in session)
                        else out)
        for name, text in outfiles:
            place = os.path.join(work, name)
            got = None
            if os.path.exists(place): got = open(place, encoding="latin-1", newline="").read().replace("\r\n", "\n")
            if got is None or got.rstrip("\n") != text.rstrip("\n"):
                fault = fault or "file %s: %r" % (name, got and got[:300])
        return fault, out
    except subprocess.TimeoutExpired as e: return "timed out", (e.stdout or b"").decode("latin-1").split("\n")
    finally: shutil.rmtree(work, ignore_errors=True)

def main():
    words, verbose, only = sys.argv[1:], False, ""
    if "-v" in words: verbose = True; words.remove("-v")
    if "-k" in words: i = words.index("-k"); only = words[i + 1]; del words[i:i + 2]
    program, files = os.path.abspath(words[0]), []
    for path in words[1:]:
        if os.path.isfile(path): files.append(path)
        for folder, _, names in sorted(os.walk(path)):
            files += [os.path.join(folder, n) for n in sorted(names) if n.endswith(".test")]
    good = bad = 0
    for path in files:
        for case in parse(path):
            if only not in case["name"]: continue
            fault, out = run(case, program)
            if fault is None: good += 1; continue
            bad += 1
            print("FAIL %s: %s\n    %s" % (path, case["name"], fault))
            if verbose: print("    | " + "\n    | ".join(out))
    print("%d passed, %d failed" % (good, bad))
    sys.exit(1 if bad else 0)
main()
