#!/usr/bin/env python3
"""Random merges against a plain model: merges.py PROGRAM [CASES]. Keys repeat on both sides, values are often absent"""
import os, random, subprocess, sys, tempfile

def mergerows(master, using, keys, o):
    """Rows are dictionaries; master and using are sorted by keys. Returns the result with _merge, in its order."""
    shared = [v for v in using[0] if v in master[0] and v not in keys]
    fresh = [v for v in using[0] if v not in master[0]]
    out, extra = [], []
    def match(m, u):
        row, mark = dict(m), 3
        for v in fresh: row[v] = u[v]
        for v in shared if o["update"] else []:
            if u[v] is None or u[v] == m[v]: continue
            mark = max(mark, 4 if m[v] is None else 5)
            if m[v] is None or o["replace"]: row[v] = u[v]
        return dict(row, _merge=mark)
    def key(r): return tuple((r[k] is None, r[k]) if k != "s" else (0, r[k]) for k in keys)
    groups = {}
    for side, rows in (0, master), (1, using):
        for r in rows: groups.setdefault(key(r), ([], []))[side].append(r)
    for k in sorted(groups, key=lambda k: [(a, b or 0) if not isinstance(b, str) else (a, b) for a, b in k]):
        ms, us = groups[k]
        for i in range(max(len(ms), len(us))):
            if not us: out.append(dict(ms[i], **{v: None for v in fresh}, _merge=1))
            elif not ms:
                if not o["keep"]: continue
                row = {v: None for v in master[0]}
                row.update({v: us[i][v] for v in fresh + list(keys)})
                if o["update"]: row.update({v: us[i][v] for v in shared})
                extra.append(dict(row, _merge=2))
            else:
                (out if i < len(ms) else extra).append(match(ms[min(i, len(ms) - 1)], us[min(i, len(us) - 1)]))
    return out + extra

def sortkey(r): return (r["id"] is None, r["id"] or 0, r["s"])
def cell(v): return "" if v is None else str(v)
def write(name, rows):
    with open(name, "w") as f:
        f.write(",".join(rows[0]) + "\n" + "".join(",".join(map(cell, r.values())) + "\n" for r in rows))

def main(program, cases):
    random.seed(7)
    number = lambda top: None if random.random() < .2 else random.randrange(top)
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        lines, wanted = [], []
        for i in range(cases):
            side = lambda n, own: sorted(({"id": number(4), "s": random.choice("ab"), "x": number(3), "t": number(2),
                                           own: j} for j in range(n)), key=sortkey)
            master, using = side(random.randrange(1, 12), "m"), side(random.randrange(1, 12), "u")
            o = {"update": random.random() < .6, "keep": random.random() < .7}
            o["replace"] = o["update"] and random.random() < .5
            text = "".join(" " + w for w, on in (("update", o["update"]), ("replace", o["replace"]),
                                                 ("nokeep", not o["keep"])) if on)
            for name, rows in ("m", master), ("u", using):
                write(name + ".csv", rows)
                write("%s%d.csv" % (name, i), rows)
            lines += ["set sortseed 1", "insheet using u%d.csv, comma names" % i, "generate id2 = _n", "sort id s id2",
                      "drop id2", "save u%d" % i, "drop _all",
                      "insheet using m%d.csv, comma names" % i, "generate id2 = _n", "sort id s id2", "drop id2",
                      "merge id s using u%d,%s" % (i, text), "outsheet using r%d.csv, comma" % i, "drop _all"]
            wanted.append(mergerows(master, using, ("id", "s"), o))
        open("all.do", "w").write("\n".join(lines) + "\n")
        run = subprocess.run([program, "-q", "-b", "do", "all.do"], capture_output=True, text=True)
        for i, rows in enumerate(wanted):
            got = open("r%d.csv" % i).read().split("\n")[1:-1] if os.path.exists("r%d.csv" % i) else [run.stdout[-600:]]
            names = open("r%d.csv" % i).read().split("\n")[0].split(",") if os.path.exists("r%d.csv" % i) else []
            want = [",".join('"%s"' % r[v] if v == "s" else cell(r[v]) for v in names) for r in rows]
            if got != want:
                print("case %d differs\nwanted %s\ngot    %s" % (i, want, got))
                return 1
    print("%d merges as the model has them" % cases)
    return 0

sys.exit(main(os.path.abspath(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) > 2 else 100))
