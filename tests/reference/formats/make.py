#!/usr/bin/env python3
"""Writes vectors.txt beside this file: display formats rendered by a second implementation, in exact decimal
arithmetic and with Python's calendar, that shares nothing with the program.   python3 make.py

Lines, tab-separated:  N format decimal-comma value(hex) text | C format kind width (0: not valid)
                       D date year month day weekday yearday week month quarter half
"""
import datetime, os, random, re, struct
from decimal import Decimal, ROUND_HALF_EVEN, localcontext

MISSING = 2.0 ** 1023
EPOCH = datetime.date(1960, 1, 1)
MONTHS = "January February March April May June July August September October November December".split()
DEFAULTS = {"d": "DlCY", "w": "CY!ww", "m": "CY!mn", "q": "CY!qq", "h": "CY!hh", "y": "CY"}
WIDTHS = dict({c: 2 for c in "CcYyDdNnWw"}, J=3, j=3, M=9, L=9, m=3, l=3, h=1, q=1)
WIDTHS.update({c: 1 for c in "_.,:-/'"})



def image(x):
    """(digits, decpt): nineteen digits, rounded half even on the exact value."""
    if x == 0:
        return "0" * 19, 1
    with localcontext() as c:
        c.prec, c.rounding, c.Emax, c.Emin = 19, ROUND_HALF_EVEN, 9999, -9999
        d = +Decimal(abs(x))
    digits = "".join(map(str, d.as_tuple().digits)).ljust(19, "0")
    return digits, d.adjusted() + 1

def keep(digits, decpt, n):
    """n digits, half up on the text."""
    if n >= len(digits):
        return digits.ljust(n, "0"), decpt
    v = int(digits[:n]) + (digits[n] >= "5")
    if v == 10 ** n:
        return "1" + "0" * (n - 1), decpt + 1
    return str(v).rjust(n, "0"), decpt

def general(x, W, D, X, left, comma):
    digits, decpt = image(x)
    room = W - 2 - D if D else W - 1
    sig = W - 2 + (decpt if decpt < 0 else 0)
    if comma and decpt >= 4:
        sig -= (decpt - 1) // 3
        if sig < 1:
            return None
    if sig < max(W - 6, 2) or -decpt < sig < decpt:
        return None
    digits, decpt = keep(digits, decpt, sig)
    if decpt >= 0:
        whole, frac, lead = digits.ljust(decpt, "0")[:decpt], digits[decpt:], 0
    else:
        whole, frac, lead = "", digits, -decpt
    for i in range(len(whole)):
        if i > room:
            if D == 0:
                return None
            D, room = D - 1, room + 1
    if comma and len(whole) >= 4:
        k = (len(whole) - 1) // 3
        if len(whole) + k <= room or D - k >= 0:
            if len(whole) + k > room:
                D -= k
            whole = format(int(whole), ",")
    frac = frac.rstrip("0")
    f = len(frac)
    pad = W - (len(whole) + 1) if f == 0 else W - (len(whole) + 1 + lead + f + 1)
    if pad < 0:
        return None
    want = D - f - lead
    if want > 0 and pad > 0:
        left_over = pad - 1 if f == 0 else pad
        z = min(want, left_over)
        if z:
            frac += "0" * z
            pad = left_over - z
    text = whole + ("." + "0" * lead + frac if frac else "")
    if left:
        return "-" + text + " " * (X + pad) if x < 0 else text + " " * (X + pad + 1)
    return " " * (X + pad) + ("-" if x < 0 else " ") + text

def expo(x, W, D, X, left):
    W2 = max(W, 8)
    maxd = W2 - 7
    d = maxd if D < 1 or D >= maxd else D
    digits, decpt = keep(*image(x), d + 1)
    e = decpt - 1
    text = "%s.%se%s%02d" % (digits[0], digits[1:], "+" if e >= 0 else "-", abs(e))
    pad = X - (3 if abs(e) > 99 else 2) - d + W2 - 5
    if left:
        return ("-" if x < 0 else "") + text + (" " * (pad + (x >= 0)) if pad > 0 else "")
    return " " * max(pad, 0) + ("-" if x < 0 else " ") + text

def plainfixed(x, D):
    with localcontext() as c:
        c.prec, c.Emax, c.Emin = 1500, 9999, -9999
        d = Decimal(x).quantize(Decimal(1).scaleb(-D), rounding=ROUND_HALF_EVEN)
    return ("-" if x < 0 else "") + format(d.copy_abs(), "f")

def fixedcomma(x, W, D, left):
    t = plainfixed(x, D)
    b = max(W - len(t), 0)
    sign = "-" if t[0] == "-" else ""
    whole, point, frac = t[len(sign):].partition(".")
    k = (len(whole) - 1) // 3
    if k == 0:
        return " " * b + t
    body = sign + format(int(whole), ",") + point + frac
    return body + " " * max(b - k, 0) if left else " " * max(b - k, 0) + body

def hexa(x):
    bits = struct.unpack(">Q", struct.pack(">d", x))[0]
    e = (bits >> 52 & 0x7FF)
    tail = "X+%03x" % (e - 1023) if e >= 1023 else "X-%03x" % (1023 - e)
    return ("-" if bits >> 63 else "+") + ("1" if e else "0") + "." + "%013x" % (bits & (2 ** 52 - 1)) + tail

def week(d):
    return min((d.timetuple().tm_yday - 1) // 7, 51) + 1

def render(mask, d):
    out, it = "", iter(mask)
    for c in it:
        name = MONTHS[d.month - 1]
        out += {"C": "%02d" % (d.year // 100), "Y": "%02d" % (d.year % 100), "D": "%02d" % d.day, "d": "%d" % d.day,
                "J": "%03d" % d.timetuple().tm_yday, "j": "%d" % d.timetuple().tm_yday, "N": "%02d" % d.month,
                "n": "%d" % d.month, "W": "%02d" % week(d), "w": "%d" % week(d), "M": name, "L": name.lower(),
                "m": name[:3], "l": name[:3].lower(), "h": "12"[d.month > 6], "q": "%d" % ((d.month + 2) // 3),
                "_": " "}.get({"c": "C", "y": "Y"}.get(c, c)) or (next(it) if c == "!" else c)
    return out

def maskwidth(mask):
    w, it = 0, iter(mask)
    for c in it:
        if c == "!":
            next(it)
            w += 1
        else:
            w += WIDTHS[c]
    return max(w, 8)

def periodday(kind, v):
    """The first day of the period as a date, None when there is none."""
    if kind == "y":
        y, m, extra = v, 1, 0
    else:
        per = {"w": 52, "m": 12, "q": 4, "h": 2}[kind]
        y, p = 1960 + v // per, v % per
        m, extra = (1, 7 * p) if kind == "w" else (12 // per * p + 1, 0)
    return datetime.date(y, m, 1) + datetime.timedelta(extra) if 100 <= y <= 9999 else None

def number(fmt, x, dp):
    x = 0.0 if x == 0 else x
    left = fmt[1] == "-"
    body = fmt.lstrip("%-")
    if body[0] == "t" and body[1] == "g":
        return number("%9.0g", x, dp)
    if body[0] in "dt":
        kind, mask = ("d", body[1:]) if body[0] == "d" else (body[1], body[2:])
        mask = mask or DEFAULTS[kind]
        w = maskwidth(mask)
        pad = (lambda t: t.ljust(w)) if left else (lambda t: t.rjust(w))
        if x == MISSING:
            return pad(".")
        v = int(x) if -2147483648 <= x <= 2147483647 else None
        if kind == "d":
            ok = v is not None and -679350 <= v <= 2936549
            d = EPOCH + datetime.timedelta(v) if ok else None
            if not ok:
                t = expo(x, min(w, 26), 0, max(w - 26, 0), left)
                return t.translate(str.maketrans(".,", ",.")) if dp else t
        else:
            d = periodday(kind, v) if v is not None else None
            if d is None:
                return pad(".")
        return pad(render(mask, d))
    m = re.fullmatch(r"%-?(\d+)(?:([.,])(\d+))?([gfex])(c?)", fmt)
    w, D = int(m[1]), int(m[3] or 0)
    if x == MISSING:
        return ".".ljust(w) if left else ".".rjust(w)
    if fmt == "%21x":
        return hexa(x)
    swap = dp or m[2] == ","
    W, X = min(w, 26), max(w - 26, 0)
    DD = 0 if D > W else D
    if m[4] == "f" and not m[5] and not swap:
        t = plainfixed(x, D)
        return t.ljust(w) if left else t.rjust(w)
    if m[4] == "f":
        t = fixedcomma(x, W, DD, left) if m[5] else plainfixed(x, DD).rjust(W)
    elif m[4] == "g":
        t = general(x, W, DD, X, left, m[5] == "c")
        if t is None and m[5]:
            t = general(x, W, DD, X, left, False)
        if t is None:
            t = expo(x, W, 0, X, left)
    else:
        t = expo(x, W, 0 if m[4] == "x" else DD, X, left)
    return t.translate(str.maketrans(".,", ",.")) if swap else t

def value(r):
    k = r.randrange(11)
    s = r.choice((1, 1, -1))
    if k == 0:
        return s * float(r.randrange(10 ** r.randrange(1, 17)))
    if k == 1:
        return s * r.randrange(10 ** r.randrange(1, 12)) / 10.0 ** r.randrange(1, 8)
    if k == 2:
        return s * (10.0 ** r.randrange(-8, 12) - r.choice((0, 10.0 ** r.randrange(-12, 3))))
    if k == 3:
        return s * r.random() * 10.0 ** r.randrange(-320, 308)
    if k == 4:
        return s * (r.randrange(10 ** r.randrange(1, 8)) + r.choice((.5, .25, .125, .0625)))
    if k == 5:
        return r.choice((0.0, -0.0, MISSING, -MISSING, 1e15, 1e15 - 1, 2.0 ** 53, 1e22, 1e23, 5e-324, 1e-4,
                         9.99999999999e-5, .1, .01, .001, .5, 1e300, 9e307, 1e99, 1e100, 1e-99, 1e-100,
                         9999999.9, 99999999.5))
    return s * r.random() * 10.0 ** r.randrange(-6, 12)

def numeric_format(r):
    if r.random() < .12:
        return r.choice(("%21x", "%-21x", "%9.0g", "%10.0g", "%18.0g", "%9.2f", "%8.0g", "%12.0gc", "%244.243f"))
    w = r.choice((9, 9, 10, 12, 8, r.randrange(1, 27), r.randrange(1, 60), r.randrange(1, 245)))
    d = r.choice((0, 0, 1, 2, 3, r.randrange(w))) % w
    c = r.choice("gggfe")
    minus, point, comma = r.choice(("", "", "-")), r.choice("...,"), r.choice(("", "c")) if c != "e" else ""
    return "%%%s%d%s%d%s%s" % (minus, w, point, d, c, comma)

def date_format(r):
    n = r.randrange(0, 7)
    mask = "".join(r.choice("CYDdJjNnWwMLmlhq_.,:-/'cy") for _ in range(n)) + r.choice(("", "", "!x", "!!"))
    return "%" + r.choice(("", "", "-")) + r.choice(("d", "d", "td", "tw", "tm", "tq", "th", "ty", "tg")) + mask

def main():
    r, out = random.Random(19600101), []
    for _ in range(3200):
        f = numeric_format(r)
        if len(f) > 11:
            continue
        x, dp = value(r), int(r.random() < .08)
        out.append("N\t%s\t%d\t%s\t%s" % (f, dp, float(x).hex(), number(f, x, dp)))
    for _ in range(900):
        f = date_format(r)
        if len(f) > 11:
            continue
        span = {"ty": 12000, "tw": 500000, "tm": 120000, "tq": 40000, "th": 20000}.get(f.lstrip("%-")[:2], 3500000)
        x = float(r.randrange(-span, span)) if r.random() < .5 else float(r.randrange(-20000, 40000) * span // 3500000)
        if f.lstrip("%-")[:2] == "ty":
            x = float(r.randrange(0, 12000))
        if r.random() < .1:
            x = r.choice((MISSING, 1e10, -1e10, 2147483647.0, x + .75, x - .75, 0.0))
        dp = int(r.random() < .05)
        out.append("N\t%s\t%d\t%s\t%s" % (f, dp, x.hex(), number(f, x, dp)))
    for f, kind, width in CHECKS:
        out.append("C\t%s\t%d\t%d" % (f, kind, width))
    for i in range(700):
        v = r.randrange(-679350, 2936550)
        if i <= 30:
            v = (-679350, 2936549, 0, -1, 365, 366, 59, 60, -21856, 14669)[i % 10] + i // 10
        v = min(v, 2936549)
        d = EPOCH + datetime.timedelta(v)
        y = d.year - 1960
        out.append("D\t%d\t%d\t%d\t%d\t%d\t%d\t%d\t%d\t%d\t%d" % (
            v, d.year, d.month, d.day, d.isoweekday() % 7, d.timetuple().tm_yday, 52 * y + week(d) - 1,
            12 * y + d.month - 1, 4 * y + (d.month - 1) // 3, 2 * y + (d.month - 1) // 6))
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "vectors.txt"), "w") as file:
        file.write("\n".join(out) + "\n")


# Format, kind asked for, width when valid (0: not valid); by hand from the grammar.
CHECKS = [(f, int(k), int(w)) for f, k, w in (item.split() for item in """
%9.0g 1 9|%1.0g 1 1|%244.0g 1 244|%245.0g 1 0|%0.0g 1 0|%244.243f 1 244|%-12.2fc 1 12|%9,2g 1 9|%12.0gc 1 12
%10.3e 1 10|%10.3ec 1 0|%9g 1 0|%9.g 1 0|%9.9g 1 0|%9.8g 1 9|%9.0gx 1 0|%9.0gcc 1 0|%9.0G 1 0|9.0g 1 0|%- 1 0|% 1 0
%21x 1 21|%-21x 1 21|%20x 1 0|%21.0x 1 0|%21x 2 0|%9s 1 0|%9s 2 9|%-9s 2 9|%9s 3 9|%~9s 3 0|%~9s 13 9|%~9s 12 9
%~9s 11 0|%~9.0g 13 0|%~d 13 0|%244s 2 244|%245s 2 0|%0s 2 0|%9.2s 2 0|%s 2 0|%9.0g 2 0|%d 2 0|%tq 2 0
%d 1 9|%-d 3 9|%dm 1 8|%dD_m_CY 1 11|%td 1 9|%tw 1 8|%ty 1 8|%tg 1 9|%-tg 1 9|%tx 1 0|%t 1 0|%dZ 1 0|%dd! 1 0|%dd!x!y 1 8|%tmCY_M 1 14
%-tmCY 1 8|%123.100fc 1 123|%-123.100fc 1 123|%-123.100fcc 1 0|%1234.0g 1 0|%9.0001g 1 0|%dMMMMMMMMM 1 81
%dMMMMMMMMMM 1 0|%-~9s 13 0
""".strip().replace("\n", "|").split("|"))]

if __name__ == "__main__":
    main()
