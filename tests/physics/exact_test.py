#!/usr/bin/env python3
"""Each formula once more, with 40 digits: the library's resistances are those of their temperatures to 1e-9 K.

  exact_test.py POINTS_PROGRAM SCALE_SOURCE SCALE_1968_SOURCE

The constants of the reference functions are the library's own, which other tests hold to the fixed
points; what is tried here is the arithmetic. And every row of a table by IEC 60751.
"""

import collections
import fractions
import re
import subprocess
import sys

from mpmath import mp, mpf, exp, findroot, log, polyval

mp.dps = 40
WATER, ICE = mpf("273.16"), mpf("273.15")


def constants(path, name):
    text = open(path, encoding="utf-8").read()
    found = re.search(rf"std::array {name} = \{{(.*?)\}};", text, re.S).group(1)
    return [mpf(number.strip()) for number in found.split(",")][::-1]


A, C = (constants(sys.argv[2], name) for name in ("kA", "kC"))
A68 = constants(sys.argv[3], "kA")
DIFFERENCE = constants(sys.argv[3], "kDifference")


def reference(kelvin, high):
    if high:
        return polyval(C, (kelvin - mpf("754.15")) / 481)
    return exp(polyval(A, (log(kelvin / WATER) + mpf("1.5")) / mpf("1.5")))


def deviation(subrange, p, w, aluminium=None):
    x, l, n = w - 1, log(w), str(subrange)
    value = p["a" + n] * x
    if subrange == 4:
        return value + p["b4"] * x * l
    if subrange <= 9:
        value += p["b" + n] * x**2
    if subrange == 1:
        value += sum(p[f"c{i}"] * l ** (i + 2) for i in range(1, 6))
    if subrange == 2:
        value += sum(p[f"c{i}"] * l**i for i in range(1, 4))
    if subrange == 3:
        value += p["c1"] * l**2
    if subrange in (6, 7):
        value += p["c" + n] * x**3
    if subrange == 6 and aluminium is not None and w > aluminium:
        value += p["d"] * (w - aluminium) ** 2
    return value


def solve(f, start):
    return findroot(f, mpf(start), tol=mpf("1e-60"))


def its90(shape, p, kelvin):
    low, high = map(int, shape)
    onhigh = low == -1 or (high != -1 and kelvin >= 273.16)
    wr = reference(kelvin, kelvin >= (273.15 if onhigh else 273.16))
    subrange = high if onhigh else low
    aluminium = None
    if subrange == 6:
        wal = reference(mpf("933.473"), True)
        aluminium = solve(lambda w: w - deviation(6, p, w) - wal, wal)
    return p["RTPW"] * solve(lambda w: w - deviation(subrange, p, w, aluminium) - wr, wr)


def cvd(p, t):
    value = t - p["delta"] * (t / 100) * (t / 100 - 1)
    if t < 0:
        value -= p["beta"] * (t / 100 - 1) * (t / 100) ** 3
    return p["R0"] * (1 + p["alpha"] * value)


def ipts68(shape, p, kelvin):
    t = kelvin - ICE
    if shape == ["90"]:
        t -= polyval(DIFFERENCE, t / 630)
    if t < 0:
        w = exp(solve(lambda l: polyval(A68, l) - (t + ICE), t * mpf("0.0042")))
        return p["R0"] * (w + p["a4"] * t + p["c4"] * t**3 * (t - 100))

    def t68(u):
        h = u / 100
        return u + mpf("0.045") * h * (h - 1) * (u / mpf("419.58") - 1) * (u / mpf("630.74") - 1)

    u = solve(lambda u: t68(u) - t, t)
    return cvd({"R0": p["R0"], "alpha": p["alpha"], "delta": p["delta"], "beta": 0}, u)


def resistance(kind, shape, p, kelvin, near):
    """Of polynomials and thermistors the root that is near the library's."""
    if kind == "ITS90":
        return its90(shape, p, kelvin)
    if kind == "WT90":
        return p["RTPW"] * reference(kelvin, kelvin >= 273.16)
    if kind == "IPTS68":
        return ipts68(shape, p, kelvin)
    if kind == "CVD":
        return cvd(p, kelvin - ICE)
    if kind == "POLYNOMIAL":
        c = [p[f"c{i}"] for i in range(len(p))][::-1]
        return solve(lambda r: polyval(c, r) - (kelvin - ICE), near)
    if kind == "TR":
        b = [p[f"B{i}"] for i in range(4)][::-1]
        return exp(solve(lambda l: polyval(b, l) * kelvin - 1, log(near)))
    return exp(sum(p[f"A{i}"] / kelvin**i for i in range(4)))


worst = collections.defaultdict(mpf)
rows = 0
for line in subprocess.run([sys.argv[1]], check=True, capture_output=True, text=True).stdout.splitlines():
    words, numbers = (part.split() for part in line.split("|"))
    if words[0] == "IEC":
        t = fractions.Fraction(int(numbers[0]))
        a, b, c = (fractions.Fraction(one) for one in ("3.9083e-3", "-5.775e-7", "-4.183e-12"))
        exact = 100 * (1 + a * t + b * t**2 + (c * (t - 100) * t**3 if t < 0 else 0))
        published = f"{float(round(exact * 100)) / 100:.2f}"
        assert f"{float(numbers[1]):.2f}" == published, (line, published)
        rows += 1
        continue
    shape = [word for word in words[1:] if "=" not in word]
    p = {name: mpf(float(value)) for name, value in (w.split("=") for w in words if "=" in w)}
    kelvin, ohms = (mpf(float(number)) for number in numbers)
    exact = resistance(words[0], shape, p, kelvin, ohms)
    step = mpf("1e-4")
    slope = (resistance(words[0], shape, p, kelvin + step, ohms) - exact) / step
    kind = " ".join(words[: 1 + len(shape)])
    worst[kind] = max(worst[kind], abs((ohms - exact) / slope))

assert rows == 1051 and len(worst) > 12
for kind, off in worst.items():
    print(f"{kind:12} {float(off):.1e} K")
    assert off < mpf("1e-9"), kind
