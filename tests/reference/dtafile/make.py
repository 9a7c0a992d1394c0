#!/usr/bin/env python3
"""Dataset files of every format in both byte orders, packed field by field: make.py FOLDER.

All hold the same three observations; tests/unit/dtafile.cpp knows them. Fields are filled with zeros behind their texts.
"""
import os, struct, sys

STAMP = b" 5 Jan 1999 13:45"
TYPES = "b i l f d 3".split()                       # a string is its length
NAMES = ["id", "v_1", "big", "x", "d", "s"]
FORMATS = ["%8.0g", "%8.0g", "%12.0g", "%9.0g", "%12.4f", "%9s"]
VALLABELS = ["rank", "", "", "", "", ""]
VARLABELS = ["Identifier", "", "", "A float", "", ""]
SORT = [1, 4]
CHARS = [("_dta", "note1", "first note"), ("x", "unit", "m")]
LABEL = [(3, "three"), (1, "one"), (-2, "minus")]   # in the order in which they were put in
ROWS = [(1, 1000, -70000, 1.5, 0.1, b"abc"), (2, -2, 2147483646, -0.25, None, b"a"), (None, None, None, None, -1e300, b"")]

def field(text, size): return text.encode().ljust(size, b"\0")

def cell(order, fmt, kind, value):
    if kind.isdigit(): return value.ljust(int(kind), b"\0")
    missing = {"b": 127, "i": 32767, "l": 2147483647, "f": 2.0**127, "d": 2.0**333 if fmt < 108 else 2.0**1023}
    return struct.pack(order + {"b": "b", "i": "h", "l": "i", "f": "f", "d": "d"}[kind], missing[kind] if value is None else value)

def typecode(fmt, kind):
    if fmt < 111: return bytes([int(kind) + 127]) if kind.isdigit() else kind.encode()
    return bytes([int(kind)]) if kind.isdigit() else bytes([251 + "bilfd".index(kind)])

def header(fmt, order, nvar, nobs):
    label = field("Format %d" % fmt, 81 if fmt >= 107 else 32)
    if fmt == 102: return bytes([102, 0, 1, 0]) + struct.pack("<HH", nvar, nobs) + label
    out = bytes([fmt, 2 if order == "<" else 1, 1, 0]) + struct.pack(order + "Hi", nvar, nobs) + label
    return out + (STAMP + b"\0" if fmt >= 105 else b"")

def valuelabel(fmt, order):
    ordered = sorted(LABEL)
    if fmt < 106:
        return (struct.pack(order + "H", len(LABEL)) + field("rank", 10) + b"".join(struct.pack(order + "h", v) for v, t in LABEL)
                + b"".join(field(t, 8) for v, t in LABEL))
    texts, offsets = b"", {}
    for v, t in LABEL:
        offsets[v] = len(texts)
        texts += t.encode() + b"\0"
    table = struct.pack(order + "ii", len(LABEL), len(texts))
    table += b"".join(struct.pack(order + "i", offsets[v]) for v, t in ordered) + b"".join(struct.pack(order + "i", v) for v, t in ordered)
    table += texts
    return struct.pack(order + "i", len(table)) + field("rank", 36 if fmt >= 110 else 12) + table

def dataset(fmt, order):
    name = 33 if fmt >= 110 else 9
    out = header(fmt, order, len(NAMES), len(ROWS)) + b"".join(typecode(fmt, t) for t in TYPES)
    out += b"".join(field(n.replace("_", ".") if fmt < 107 else n, name) for n in NAMES)
    out += b"".join(struct.pack(order + "H", v) for v in SORT + [0] * (len(NAMES) + 1 - len(SORT)))
    out += b"".join(field(f, 12 if fmt >= 105 else 7) for f in FORMATS)
    out += b"".join(field(v, name) for v in VALLABELS)
    out += b"".join(field(v, 81 if fmt >= 107 else 32) for v in VARLABELS)
    length = "I" if fmt >= 110 else "H"
    for owner, key, text in CHARS if fmt >= 105 else []:
        rest = field(owner, name) + field(key, name) + text.encode() + b"\0"
        out += b"\1" + struct.pack(order + length, len(rest)) + rest
    if fmt >= 105: out += b"\0" + struct.pack(order + length, 0)
    for row in ROWS: out += b"".join(cell(order, fmt, t, v) for t, v in zip(TYPES, row))
    return out + valuelabel(fmt, order)

for fmt in (102, 103, 104, 105, 106, 107, 108, 110, 111):
    for order, word in ("<", "lo"), (">", "hi"):
        if fmt == 102 and order == ">": continue
        open(os.path.join(sys.argv[1], "f%d%s" % (fmt, word)), "wb").write(dataset(fmt, order))
