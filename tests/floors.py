#!/usr/bin/env python3
"""Checks that every include goes to the same folder or to a lower floor (src/FLOORS), and that no headers form a circle."""
import os, re, sys

top = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "src")
floor = {}
for line in open(os.path.join(top, "FLOORS")):
    if line.strip() and not line.startswith("#"):
        number, folder = line.split()
        floor[folder] = int(number)

bad, graph = [], {}
for folder, _, files in os.walk(top):
    here = os.path.relpath(folder, top)
    for name in files:
        if not name.endswith((".h", ".cpp", ".def")): continue
        path = os.path.normpath(os.path.join(here, name))
        if here not in floor:
            bad.append("%s: folder is on no floor" % path)
            continue
        includes = re.findall(r'^\s*#include "([^"]+)"', open(os.path.join(folder, name)).read(), re.M)
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
