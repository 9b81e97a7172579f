#!/usr/bin/python3
"""Writes zeros.tsv beside this script: the test functions of the zero
finders, their brackets and their zeros to 30 significant digits.

Each zero is found by bisection in mpmath at 60 digits and checked against
its closed form where there is one.  Each line: name, a, b, zero, scale (the
size of a sensible absolute accuracy near the zero).  The C++ tests define
each function under the same name.

Run: python3 tests/data/roots/make_zeros.py  (needs python3-mpmath)
"""
import os

import mpmath
from mpmath import mpf

mpmath.mp.dps = 60
s69 = mpmath.sqrt(69)

# name, f, a, b, scale, closed form (or None)
CASES = [
    ("square_minus_2", lambda x: x * x - 2, "0", "2", "1", mpmath.sqrt(2)),
    ("wallis", lambda x: (x * x - 2) * x - 5, "2", "3", "1", None),
    ("dottie", lambda x: mpmath.cos(x) - x, "0", "1", "1", None),
    ("omega", lambda x: mpmath.exp(-x) - x, "0", "1", "1", mpmath.lambertw(1).real),
    ("plastic", lambda x: (x * x - 1) * x - 1, "2", "1", "1",
     mpmath.cbrt((9 + s69) / 18) + mpmath.cbrt((9 - s69) / 18)),
    ("three_simple_zeros", lambda x: (x - 1) * (x - 2) * (x - 3), "1.5", "2.8", "1", mpf(2)),
    ("steep_tanh", lambda x: mpmath.tanh(50 * (x - mpf("0.3"))), "0", "1", "1", mpf("0.3")),
    ("zero_near_0", lambda x: mpmath.expm1(x) - mpf("1e-8"), "-1", "1", "1",
     mpmath.log1p(mpf("1e-8"))),
    ("zero_at_0", mpmath.sin, "-1", "3", "1", mpf(0)),
    ("zero_near_1e6", lambda x: x * x - mpf("2e12"), "5e5", "2e6", "1e6", mpmath.sqrt(mpf("2e12"))),
]


def bisect(f, a, b):
    a, b = mpf(a), mpf(b)
    fa = f(a)
    for _ in range(400):
        m = (a + b) / 2
        fm = f(m)
        if fm == 0:
            return m
        if (fm < 0) == (fa < 0):
            a, fa = m, fm
        else:
            b = m
    return (a + b) / 2


def main():
    lines = ["# name\ta\tb\tzero\tscale  (written by make_zeros.py)"]
    for name, f, a, b, scale, closed in CASES:
        zero = bisect(f, a, b)
        if closed is not None:
            assert abs(zero - closed) <= mpf("1e-50") * max(1, abs(closed)), name
        lines.append("\t".join([name, a, b, mpmath.nstr(zero, 30, min_fixed=-5, max_fixed=8), scale]))
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "zeros.tsv")
    with open(path, "w") as out:
        out.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
