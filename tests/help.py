#!/usr/bin/env python3
"""help.py PROGRAM [PAGE ...]: every command, ado-file, function, setting and code has its help, and the help is true.

A page is read as people see it and as it is written; what it says is compared with the tables of the source and with
what the program asks for. Its examples run in a folder of their own with the data sets of examples/: a line
`    {cmd:. COMMAND}` is typed, the lines `    {cmd:  ...}` behind it belong to it. A mark ahead of one says more:
`{* ends 198}{...}` it ends with that code, `{* norun}{...}` it can't run here.
"""
import glob, os, re, shutil, subprocess, sys, tempfile

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BASE = TOP + "/share/velmo/ado/base"
TITLES = ["Syntax", "Description", "Options", "Remarks", "Stored results", "Examples", "See also"]
faults = []

def read(path): return open(path, encoding="latin-1").read()
def fault(page, text): faults.append(f"{page}: {text}")

def session(program, lines, folder):
    run = subprocess.run([program, "-q"], input="\n".join(lines) + "\n", capture_output=True, cwd=folder, text=True,
                         encoding="latin-1", timeout=120, env={**os.environ, "HOME": folder})
    return run.stdout + run.stderr

def unmarked(text):
    for name, char in (("-(", "{"), (")-", "}"), ("'g", "`"), ("S|", "$")):
        text = re.sub(r"\{c(har)? " + re.escape(name) + r"\}", char, text)
    return text

def sections(text):
    """The text of a page by its titles; what stands ahead of the first is ''."""
    parts = re.split(r"^\{title:(.*)\}$", text, flags=re.M)
    return dict(zip(parts[3::2], parts[4::2])), parts[3::2]

def named(text):
    """Words in {cmd:} and {cmdab:}, as {word: fewest characters or None}."""
    found = {}
    for kind, body in re.findall(r"\{(cmdab|cmd):([^{}]*)\}", text):
        m = re.match(r"([A-Za-z_]\w*)?(?::(\w+))?", body)
        if kind == "cmdab" and m[1]: found[m[1] + (m[2] or "")] = len(m[1])
        elif kind == "cmd":
            for word in re.findall(r"[A-Za-z_]\w*", body.split("(")[0]): found.setdefault(word, None)
    return found

def optionsof(page):
    """The options that a page tells of: the heads of the paragraphs of its sections on options."""
    found = {}
    for title, text in sections(page)[0].items():
        if not title.startswith("Options"): continue
        for head in re.findall(r"^\{p[^}]*\}\n(.*)$", text, flags=re.M): found.update(named(head))
    return found

def adooptions(path):
    """The options of an ado-file's syntax lines, as named() has them."""
    found = {}
    for line in re.findall(r"^\s*(?:capture )?syntax (.*)$", read(path), flags=re.M):
        line = re.sub(r"\((?:[^()]|\([^()]*\))*\)", "", line)
        for word in re.findall(r"[A-Za-z_]+", line.partition(",")[2]):
            no, rest = ("no", word[2:]) if re.match("no[A-Z]", word) else ("", word)
            capitals = len(re.match("[A-Z_]*", rest)[0])
            found[(no + rest).lower()] = capitals + len(no) if capitals and capitals < len(rest) else None
    return found

def compareoptions(page, told, asked, also={}):
    for word, least in asked.items():
        match = next((w for w in (word, "no" + word, word.removeprefix("no")) if w in told), None)
        if match is None: fault(page, f"option {word} is missing")
        elif match == word and told[word] != least: fault(page, f"option {word}: {told[word]} told, {least} asked")
    for word in told:
        if not {word, "no" + word, word.removeprefix("no")} & {*asked, *also}:
            fault(page, f"option {word} is not asked for")

def examples(page):
    """[commands, how they end]: a list of lines each, a code or None for what does not run."""
    found, mark = [], "0"
    for line in page.split("\n"):
        m = re.match(r"\{\* (norun|ends (\d+))\}", line)
        if m: mark = m[2]
        m = re.match(r"    \{cmd:(\. |  )(.*)\}$", line)
        if m and m[1] == ". ": found.append([[unmarked(m[2])], mark]); mark = "0"
        elif m and found: found[-1][0].append(unmarked(m[2]))
    return found

def runexamples(program, name, page):
    folder = tempfile.mkdtemp()
    for data in glob.glob(TOP + "/examples/*.csv"): shutil.copy(data, folder)
    told, lines = examples(page), ["set debug on"]
    for i, (commands, mark) in enumerate(told):
        if mark is not None: lines += [f'display "@@ {i}"', *commands]
    output = session(program, lines + ['display "@@ end"', "debug options"], folder)
    shutil.rmtree(folder)
    for i, text in re.findall(r"^@@ (\d+)$(.*?)(?=^@@ )", output, flags=re.M | re.S):
        codes = re.findall(r"^r\((\d+)\);", text, flags=re.M) or ["0"]
        if codes[-1] != told[int(i)][1]: fault(name, f"{told[int(i)][0][0]} ends with {codes[-1]}")
    if "\n@@ end\n" not in output: fault(name, "its examples do not end")
    asked = {}
    behind = output.partition("\n@@ end\n")[2]
    for word, option, least in re.findall(r"^(\w+) (\w+) (\d+)(?: \(\))?$", behind, flags=re.M):
        asked.setdefault(word, {}).setdefault(option, int(least) if 0 < int(least) < len(option) else None)
    return asked

def rows():
    """Built commands with their fewest characters, and the pages that others are told of on."""
    table = read(TOP + "/src/core/commands.def")
    commands = {w: int(n) for w, n in re.findall(r"^CMD\((\w+), (\d+)", table, flags=re.M)}
    source = read(TOP + "/src/core/helppages.cpp")
    shared = dict(re.findall(r'\{"(\w+)", "(\w+)"\}', source.partition("shared[]")[2].partition("};")[0]))
    return commands, shared

def entriesneeded():
    """What the pages of entries must have."""
    def words(file, pattern): return re.findall(pattern, read(TOP + "/src/" + file), flags=re.M)
    functions = words("expr/functions.def", r'^FUNCTION\("(\w+)"')
    functions += words("expr/compilefunctions.cpp", r'\{"(\w+)", (?:compile|")')
    functions += words("expr/compilematrix.cpp", r'\{"(\w+)", (?:cw_|compile)')
    yield from (word + "()" for word in functions)
    yield from ("set " + word for word in words("session/settings.def", r"^[A-Z]+\((\w+),"))
    yield from words("output/vtmldirectives.cpp", r'^    \{"(\S+)", \w+, ')
    yield from (f"r({code})" for code in words("output/errors.def", r"^[A-Z]+\((\d+),"))
    yield from ("extended " + word for word in words("language/extfunctions.def", r"^EXT\((\w+),"))

def checkpage(program, name, page, commands, shared):
    parts, titles = sections(page)
    known = [TITLES.index(t.split(" of ")[0]) for t in titles if t.split(" of ")[0] in TITLES]
    if known != sorted(known): fault(name, "sections out of order: " + ", ".join(titles))
    if not page.startswith("{vtml}\n{title:" + name + " {hline 2} "): fault(name, "does not begin with its title")
    if "\n{* keywords: " not in page: fault(name, "has no keywords")
    asked = runexamples(program, name, page)
    if name in commands or name in shared.values():
        mine = [w for w in commands if w == name or shared.get(w) == name]
        told = named(parts.get("Syntax", ""))
        for word in mine:
            least = commands[word] if commands[word] < len(word) else None
            if word not in told: fault(name, f"{word} is not in its syntax")
            elif told[word] != least: fault(name, f"{word}: {told[word]} characters told, {least} in the table")
        compareoptions(name, optionsof(page), {o: n for w in mine for o, n in asked.get(w, {}).items()})
    elif os.path.exists(ado := f"{BASE}/{name[0]}/{name}.ado"):
        functions = glob.glob(BASE + "/_/_g*.ado") if name == "egen" else []
        compareoptions(name, optionsof(page), adooptions(ado), {o for f in functions for o in adooptions(f)})

def checkshown(program, pages):
    """What is seen: no braces of directives that failed, and links that lead somewhere."""
    folder = tempfile.mkdtemp()
    targets = sorted({t.strip('"') for p in pages.values() for t in re.findall(r"\{(?:help|search) ([^:{}]+)[:}]", p)})
    names = sorted(pages)
    lines = ["set more off"] + [line for n in names for line in (f'display "@@ {n}"', "help " + n)]
    lines += [line for t in targets for line in (f"capture HELPCHK {t}", 'display "@@ " _rc')]
    output = session(program, lines + ['display "@@ end"'], folder)
    shown = re.findall(r"^@@ ([^\n]*)\n(.*?)(?=^@@ )", output, flags=re.M | re.S)
    for name, text in shown[:len(names)]:
        escaped = len(re.findall(r"\{c(?:har)? (?:-\(|\)-|123|125)\}", pages[name]))
        if len(re.findall("[{}]", text.replace("{vtml}", ""))) > escaped:
            fault(name, "shows braces: " + " | ".join(l for l in text.split("\n") if "{" in l or "}" in l)[:300])
    for target, (code, _) in zip(targets, shown[len(names):]):
        link = r"\{(help|search) \"?" + re.escape(target) + r"\"?[:}]"
        if code != "0": fault(", ".join(n for n in names if re.search(link, pages[n])), f"{target} leads nowhere")
    shutil.rmtree(folder)

def main():
    program, only = os.path.abspath(sys.argv[1]), sys.argv[2:]
    pages = {os.path.basename(f)[:-4]: read(f) for f in glob.glob(BASE + "/*/*.hlp")}
    commands, shared = rows()
    ados = {os.path.basename(f)[:-4] for f in glob.glob(BASE + "/[a-z]/*.ado")}
    for name in sorted(pages):
        if not only or name in only: checkpage(program, name, pages[name], commands, shared)
    if not only:
        for word in {*commands, *ados} - {*pages}:
            if shared.get(word) not in pages: fault(word, "has no page")
        contents = "".join(p for n, p in pages.items() if n == "velmo" or "{* index}" in p)
        linked = set(re.findall(r"\{help (\w+)[:}]", contents))
        for name in {*pages} - {*commands} - ados - linked - {"velmo"}:
            fault(name, "is neither a command's page nor on a page of contents")
        lines = re.findall(r"^\{\* entry: ([^}]*)\}", "\n".join(pages.values()), flags=re.M)
        entries = {entry.strip() for line in lines for entry in line.split(", ")}
        for entry in entriesneeded():
            if entry not in entries: fault(entry, "has no entry")
    checkshown(program, {n: p for n, p in pages.items() if not only or n in only})
    print("\n".join(faults), f"{len(pages)} pages, {len(faults)} faults", sep="\n")
    sys.exit(bool(faults))

main()
