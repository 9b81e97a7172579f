#!/usr/bin/python3
"""Writes reference.tsv beside this script: high-precision values of ln Γ,
Γ, the normal distribution and its tails, erfc, erf and the normal deviates
of every tail at sample arguments, computed with mpmath at 40 significant
digits.

Each line: function (with the tail letter after a colon for g01ea and
g01fa's other tails), range label, the argument as an exact hexadecimal
double, the reference value to 25 significant digits.  The samples are
fixed by a seeded generator, so the table is reproducible.

Run: python3 tests/data/specfun/make_reference.py  (needs python3-mpmath)
"""
import math
import os
import random

import mpmath

mpmath.mp.dps = 40
rng = random.Random(20261122)


def log_uniform(lo, hi, n):
    return [math.exp(rng.uniform(math.log(lo), math.log(hi))) for _ in range(n)]


def uniform(lo, hi, n):
    return [rng.uniform(lo, hi) for _ in range(n)]


def probit(p):
    """z with Φ(z) = p: Newton's method on ln Φ(z) = ln p at 40 digits, from
    Abramowitz and Stegun's 26.2.23 (error below 4.5e-4) as the start."""
    if p == 0.5:
        return mpmath.mpf(0)
    if p > 0.5:
        return -probit(1 - p)
    t = math.sqrt(-2.0 * math.log(float(p)))
    z0 = -(t - (2.515517 + 0.802853 * t + 0.010328 * t * t)
           / (1 + 1.432788 * t + 0.189269 * t * t + 0.001308 * t ** 3))
    lnp = mpmath.log(p)
    return mpmath.findroot(lambda z: mpmath.log(mpmath.ncdf(z)) - lnp, mpmath.mpf(z0),
                           solver="newton",
                           df=lambda z: mpmath.npdf(z) / mpmath.ncdf(z))


def emit(function, label, xs, value):
    for x in xs:
        v = value(mpmath.mpf(x))
        out.write(f"{function}\t{label}\t{float(x).hex()}\t{mpmath.nstr(v, 25, min_fixed=1, max_fixed=0)}\n")


def main():
    lgamma = lambda x: mpmath.loggamma(x)
    emit("s14ab", "(0,2^-53]", log_uniform(1e-300, 2.0**-53, 40) + [2.0**-53], lgamma)
    emit("s14ab", "(2^-53,0.5]", log_uniform(2.0**-52, 0.5, 100) + [0.5], lgamma)
    emit("s14ab", "(0.5,0.6796875)", uniform(0.5, 0.6796875, 100), lgamma)
    emit("s14ab", "[0.6796875,1.5]", uniform(0.6796875, 1.5, 150) + [0.6796875, 1.0, 1.5], lgamma)
    emit("s14ab", "(1.5,4]", uniform(1.5, 4.0, 150) + [2.0, 4.0], lgamma)
    emit("s14ab", "(4,12]", uniform(4.0, 12.0, 150) + [12.0], lgamma)
    emit("s14ab", "(12,2.24e76]", log_uniform(12.0, 2.24e76, 150), lgamma)
    emit("s14ab", "(2.24e76,2.55e305]", log_uniform(2.24e76, 2.55e305, 60) + [2.55e305], lgamma)

    gamma = lambda x: mpmath.gamma(x)
    emit("s14aa", "[-170,-1)", [x for x in uniform(-170.0, -1.0, 200) if x != math.floor(x)], gamma)
    emit("s14aa", "(-1,0)", uniform(-1.0, 0.0, 100) + [-1e-17, -0.5], gamma)
    emit("s14aa", "(0,1)", log_uniform(1e-17, 1.0, 150) + [2.23e-308, 1e-300, 1e-17], gamma)
    emit("s14aa", "[1,2)", uniform(1.0, 2.0, 150) + [1.0, 1.5], gamma)
    emit("s14aa", "[2,12)", uniform(2.0, 12.0, 150) + [3.5], gamma)
    emit("s14aa", "[12,170]", uniform(12.0, 170.0, 200) + [170.0], gamma)

    phi = lambda x: mpmath.ncdf(x)
    # Beyond |x| = 37 the tail probability is subnormal and has no relative accuracy.
    emit("s15ab", "[-37,-5)", uniform(-37.0, -5.0, 100), phi)
    emit("s15ab", "[-5,5]", uniform(-5.0, 5.0, 200) + [0.0], phi)
    emit("s15ab", "(5,9]", uniform(5.0, 9.0, 50), phi)
    # Q(x) = Φ(-x) exactly; 1 - Φ(x) would cancel at any precision for large x.
    emit("s15ac", "[-9,-5)", uniform(-9.0, -5.0, 50), lambda x: mpmath.ncdf(-x))
    emit("s15ac", "[-5,5]", uniform(-5.0, 5.0, 200) + [0.0], lambda x: mpmath.ncdf(-x))
    emit("s15ac", "(5,37]", uniform(5.0, 37.0, 100), lambda x: mpmath.ncdf(-x))
    emit("s15ad", "[-6,0.5]", uniform(-6.0, 0.5, 100), mpmath.erfc)
    emit("s15ad", "(0.5,26.5]", uniform(0.5, 26.5, 200), mpmath.erfc)
    emit("s15ae", "[-6,6]", uniform(-6.0, 6.0, 200) + [1e-10, 1e-300], mpmath.erf)

    emit("g01fa", "(0,1e-300]", log_uniform(1e-307, 1e-300, 20), probit)
    emit("g01fa", "(1e-300,0.075]", log_uniform(1e-300, 0.075, 150), probit)
    emit("g01fa", "(0.075,0.925)", uniform(0.075, 0.925, 150) + [0.5, 0.25], probit)
    emit("g01fa", "[0.925,1)", [1.0 - d for d in log_uniform(2.0**-53, 0.075, 100)], probit)

    # The other tails of g01ea, to where the probability is still normal.
    sqrt2 = mpmath.sqrt(2)
    emit("g01ea:L", "[-37,9]", uniform(-37.0, 9.0, 100) + [0.0], phi)
    emit("g01ea:U", "[-9,37]", uniform(-9.0, 37.0, 100) + [0.0], lambda x: mpmath.ncdf(-x))
    emit("g01ea:S", "[-26,26]", uniform(-26.0, 26.0, 100) + [0.0], lambda x: mpmath.erfc(abs(x) / sqrt2))
    emit("g01ea:C", "[-6,6]", uniform(-6.0, 6.0, 100) + [1e-10, 1e-300],
         lambda x: mpmath.erf(abs(x) / sqrt2))
    # Subnormal probabilities, and g01fa's other tails: 'U' -z(p), 'S' -z(p/2)
    # and 'C' z(1/2 + p/2) = √2 erfinv(p).
    emit("g01fa", "(0,1e-307)", [1e-310, 1e-320, 5e-324], probit)
    emit("g01fa:U", "(0,1)", log_uniform(1e-300, 1.0, 50) + [0.025, 1.0 - 2.0**-53], lambda p: -probit(p))
    emit("g01fa:S", "(0,1)", log_uniform(1e-300, 1.0, 50) + [0.05, 1.0 - 2.0**-53], lambda p: -probit(p / 2))
    emit("g01fa:C", "(0,1)", uniform(0.0, 1.0, 50) + [1e-300, 0.95, 1.0 - 2.0**-53],
         lambda p: sqrt2 * mpmath.erfinv(p))


if __name__ == "__main__":
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "reference.tsv"), "w") as out:
        main()
