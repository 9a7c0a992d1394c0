#!/usr/bin/env python3
"""Checks that every include goes to the same folder or to a lower floor (src/FLOORS), that no headers form a circle,
that no two headers declare the same name, and that a .cpp file declares nothing of another's."""
import os, re, sys

top = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "src")
floor = {}
for line in open(os.path.join(top, "FLOORS")):
    if line.strip() and not line.startswith("#"):
        number, folder = line.split()
        floor[folder] = int(number)

def statements(text):
    """What stands at namespace level, bodies as {}; with what is seen by its own file only left out."""
    text = re.sub(r'//.*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|^ *#(?:.*\\\n)*.*', " ", text, flags=re.M)
    text = re.sub(r"namespace velmo \{|namespace \{", lambda m: "{;" if m.group() == "namespace {" else "", text)
    out, depth = "", 0
    for c in text:
        depth += (c == "{") - (c == "}")
        if depth == 0: out += "{};" if c == "}" else c
    return [" ".join(s.split()) for s in out.split(";")]

def prototypes(s):
    """The functions and variables that a statement declares and does not define."""
    if s.startswith("extern ") and "=" not in s: return re.findall(r"(\w+)\)?(?:\[[^]]*\])*(?:,|$)", s)
    defaults = r"(?:=[^{}()]*(?:\(\))?(?:\{\})?)*"
    m = re.match(r"(?!using|static|typedef|template|return|friend)[\w:<>,*& ]+[ *&](\w+) ?\([^{}=]*%s\)$" % defaults, s)
    return [m.group(1)] if m else []

bad, graph, homes = [], {}, {}
for folder, _, files in os.walk(top):
    here = os.path.relpath(folder, top)
    for name in files:
        if not name.endswith((".h", ".cpp", ".def")): continue
        path = os.path.normpath(os.path.join(here, name))
        if here not in floor:
            bad.append("%s: folder is on no floor" % path)
            continue
        text = open(os.path.join(folder, name)).read()
        for declared in [d for s in statements(text) if not name.endswith(".def") for d in prototypes(s)]:
            if name.endswith(".cpp"): bad.append("%s declares %s, which is another's" % (path, declared))
            elif homes.setdefault(declared, path) != path:
                bad.append("%s declares %s, as %s does" % (path, declared, homes[declared]))
        includes = re.findall(r'^\s*#include "([^"]+)"', text, re.M)
        graph[path] = includes
        for target in includes:
            there = os.path.dirname(target)
            if there not in floor: bad.append("%s includes %s, which is on no floor" % (path, target))
            elif there != here and floor[there] >= floor[here]: bad.append("%s includes %s upward" % (path, target))

state = {}
def visit(path, chain):
    if state.get(path) == 2: return
    if state.get(path) == 1:
        bad.append("circle: " + " > ".join(chain[chain.index(path):] + [path]))
        return
    state[path] = 1
    for target in graph.get(path, []): visit(target, chain + [path])
    state[path] = 2
for path in graph:
    if path.endswith(".h"): visit(path, [])

print("\n".join(bad) or "%d files, all includes go down" % len(graph))
sys.exit(1 if bad else 0)
