#!/usr/bin/python3
"""Writes reference.tsv: what QUADPACK's dqagse (the algorithm d01rj follows)
returns on a battery of integrands, through scipy.integrate.quad(...,
full_output=True, limit=maxsub), with each integral's exact value (mpmath).

The integrands use the C library's functions (math, ** for pow), never
numpy's, so that the C++ tests (tests/quad/quad_support.hpp), which write the
same expressions, feed the rule bit-identical values.

Each line (tab separated): label, integrand, its parameter, a, b, epsabs,
epsrel, maxsub, QUADPACK's ier, neval, last, result, abserr (reals in exact
hexadecimal), the exact integral (25 digits, or "inf"), then the subdivision
sorted by lower end: lower ends, upper ends, error estimates, contributions,
each a comma list ("-" when QUADPACK refused the input).  For b < a SciPy
integrates over [b, a] and negates the result: the subdivision is that of
[b, a].

Run: /usr/bin/python3 tests/data/quad/make_reference.py > tests/data/quad/reference.tsv
(Debian's python3-scipy and python3-mpmath).
"""
import math
import warnings

import mpmath
from scipy.integrate import quad

mpmath.mp.dps = 40
mpf = mpmath.mpf
PI = math.pi


def unit(value, a, b):
    """value is the integral over [0, 1]; the cases use [0, 1] or [1, 0]."""
    assert (a, b) in ((0.0, 1.0), (1.0, 0.0))
    return value if a < b else -value


def cossin_exact(p, a, b):
    """pi J0(2^p) over [0, pi], corrected to the double nearest pi."""
    g = lambda t: mpmath.cos(2 ** mpf(p) * mpmath.sin(t))
    assert (a, b) == (0.0, PI)
    return mpmath.pi * mpmath.besselj(0, 2 ** mpf(p)) + mpmath.quad(g, [mpmath.pi, mpf(PI)])


# name -> (f(x, p), exact(p, a, b)); divergent integrands have no exact value.
INTEGRANDS = {
    # x^p log(1/x): algebraic-logarithmic endpoint singularity; 1/(p+1)^2.
    "xlog": (lambda x, p: -(x ** p) * math.log(x),
             lambda p, a, b: unit(1 / (mpf(p) + 1) ** 2, a, b)),
    "pow": (lambda x, p: x ** p,
            lambda p, a, b: (mpf(b) ** (p + 1) - mpf(a) ** (p + 1)) / (p + 1)),
    # a peak of width 4^-p at the double nearest pi/4
    "peak": (lambda x, p: 4.0 ** -p / ((x - PI / 4) * (x - PI / 4) + 16.0 ** -p),
             lambda p, a, b: unit(mpmath.atan((1 - mpf(PI) / 4) * mpf(4) ** p)
                                  + mpmath.atan(mpf(PI) / 4 * mpf(4) ** p), a, b)),
    # cos(2^p sin x) on [0, pi]: oscillates faster as p grows
    "cossin": (lambda x, p: math.cos(2.0 ** p * math.sin(x)), cossin_exact),
    "cos": (lambda x, p: math.cos(p * x),
            lambda p, a, b: (mpmath.sin(p * mpf(b)) - mpmath.sin(p * mpf(a))) / p),
    "exp": (lambda x, p: math.exp(p * x),
            lambda p, a, b: (mpmath.exp(p * mpf(b)) - mpmath.exp(p * mpf(a))) / p),
    # integrated exactly by the first rule
    "poly": (lambda x, p: 1.0 + x + p * x * x,
             lambda p, a, b: (lambda A, B: (B - A) + (B * B - A * A) / 2 + p * (B ** 3 - A ** 3) / 3)(
                 mpf(a), mpf(b))),
    # |x - 1/3|^p: interior singularity, integrable for p > -1
    "interior": (lambda x, p: abs(x - 1.0 / 3.0) ** p,
                 lambda p, a, b: ((mpf(1.0 / 3.0) - a) ** (p + 1) + (b - mpf(1.0 / 3.0)) ** (p + 1))
                 / (p + 1)),
    # 1/(x - p): a pole inside [0, 1], not integrable
    "pole": (lambda x, p: 1.0 / (x - p), None),
    # a jump from 0 to 1 at p
    "step": (lambda x, p: 0.0 if x < p else 1.0, lambda p, a, b: mpf(b) - max(mpf(p), mpf(a))),
    # x^p sin(1/x): with t = 1/x the integral of sin(t) t^-(p+2) over [1, inf)
    "sinrecip": (lambda x, p: math.sin(1.0 / x) * x ** p,
                 lambda p, a, b: unit(mpmath.quadosc(lambda t: mpmath.sin(t) * t ** (-(p + 2)),
                                                     [1, mpmath.inf], omega=1), a, b)),
}

CASES = []  # (label, integrand, p, a, b, epsabs, epsrel, maxsub)


def case(*row):
    CASES.append(row)


for p in (-0.9, -0.5, 0.0, 0.5, 2.6):
    case(f"xlog p={p}", "xlog", p, 0.0, 1.0, 0.0, 1e-10, 200)
for p in (-0.99, -0.9, -0.5, -0.2, 0.5):
    case(f"pow p={p}", "pow", p, 0.0, 1.0, 0.0, 1e-10, 200)
for p in range(0, 9, 2):
    case(f"peak p={p}", "peak", float(p), 0.0, 1.0, 0.0, 1e-10, 200)
for p in (0, 3, 6, 9):
    case(f"cossin p={p}", "cossin", float(p), 0.0, PI, 0.0, 1e-10, 200)
for k in (10.0, 100.0, 1000.0):
    case(f"cos k={k:g}", "cos", k, 0.0, 1.0, 0.0, 1e-10, 200)
case("exp", "exp", 1.0, 0.0, 1.0, 0.0, 1e-10, 50)
case("exp wide", "exp", 1.0, -20.0, 20.0, 0.0, 1e-12, 50)
case("poly", "poly", 3.0, 0.0, 2.0, 0.0, 1e-10, 50)
case("interior", "interior", -0.5, 0.0, 1.0, 0.0, 1e-10, 200)
case("step", "step", 0.3, 0.0, 1.0, 0.0, 1e-10, 200)
case("sinrecip", "sinrecip", 1.0, 0.0, 1.0, 0.0, 1e-8, 200)
# b < a
case("xlog reversed", "xlog", -0.5, 1.0, 0.0, 0.0, 1e-10, 200)
case("exp reversed", "exp", 1.0, 1.0, 0.0, 0.0, 1e-10, 50)
case("peak reversed", "peak", 4.0, 1.0, 0.0, 0.0, 1e-10, 200)
# absolute tolerances, and both
case("xlog epsabs", "xlog", -0.5, 0.0, 1.0, 1e-6, 0.0, 200)
case("peak epsabs", "peak", 6.0, 0.0, 1.0, 1e-9, 1e-3, 200)
case("cos loose", "cos", 100.0, 0.0, 1.0, 1e-3, 1e-3, 200)
# tiny and exhausted maxsub
for m in (1, 2, 3, 4, 5, 8):
    case(f"xlog maxsub={m}", "xlog", -0.5, 0.0, 1.0, 0.0, 1e-10, m)
case("poly maxsub=1", "poly", 3.0, 0.0, 2.0, 0.0, 1e-10, 1)
case("cos k=1000 maxsub=10", "cos", 1000.0, 0.0, 1.0, 0.0, 1e-10, 10)
case("peak p=8 maxsub=6", "peak", 8.0, 0.0, 1.0, 0.0, 1e-10, 6)
case("cossin p=9 maxsub=20", "cossin", 9.0, 0.0, PI, 0.0, 1e-10, 20)
# tolerances that cannot be met
case("pow p=-0.9 tight", "pow", -0.9, 0.0, 1.0, 1e-300, 0.0, 200)
case("xlog p=-0.5 tight", "xlog", -0.5, 0.0, 1.0, 1e-300, 0.0, 200)
case("exp tight", "exp", 1.0, 0.0, 1.0, 1e-300, 0.0, 50)
case("cos k=100 tight", "cos", 100.0, 0.0, 1.0, 1e-300, 0.0, 200)
case("interior tight", "interior", -0.5, 0.0, 1.0, 1e-300, 0.0, 200)
# divergent integrals
case("pow p=-1", "pow", -1.0, 0.0, 1.0, 0.0, 1e-10, 200)
case("pow p=-1.5", "pow", -1.5, 0.0, 1.0, 0.0, 1e-10, 200)
case("interior p=-1", "interior", -1.0, 0.0, 1.0, 0.0, 1e-10, 200)
case("pole", "pole", 1.0 / 3.0, 0.0, 1.0, 0.0, 1e-10, 200)
case("pole off-grid", "pole", PI / 4, 0.0, 1.0, 0.0, 1e-10, 50)
# a = b, and zero tolerances (dqagse refuses them); d01rj accepts both
case("a=b", "exp", 1.0, 0.5, 0.5, 0.0, 1e-10, 50)
case("eps zero", "exp", 1.0, 0.0, 1.0, 0.0, 0.0, 50)

MESSAGES = ["The maximum number of subdivisions", "The occurrence of roundoff error",
            "Extremely bad integrand behavior", "The algorithm does not converge",
            "The integral is probably divergent", "The input is invalid"]


def ier_of(output):
    if len(output) == 3:
        return 0
    return 1 + next(i for i, m in enumerate(MESSAGES) if output[3].startswith(m))


def exact_text(name, p, a, b):
    if a == b:
        return "0"
    if name == "pole" or (name in ("pow", "interior") and p <= -1):
        return "inf"
    return mpmath.nstr(INTEGRANDS[name][1](p, a, b), 25, min_fixed=1, max_fixed=0)


def main():
    print("# QUADPACK dqagse through scipy.integrate.quad; written by tests/data/quad/make_reference.py")
    for label, name, p, a, b, epsabs, epsrel, maxsub in CASES:
        try:
            with warnings.catch_warnings():
                warnings.simplefilter("ignore")
                output = quad(INTEGRANDS[name][0], a, b, args=(p,), full_output=True,
                              epsabs=epsabs, epsrel=epsrel, limit=maxsub)
        except ValueError:  # SciPy refuses what dqagse would, before calling it
            output = (0.0, 0.0, {"neval": 0, "last": 0}, "The input is invalid.")
        result, abserr, info = output[:3]
        ier, last = ier_of(output), int(info.get("last", 0))
        rows = [] if ier == 6 else sorted(zip(*(info[k][:last] for k in ("alist", "blist", "elist", "rlist"))))
        fields = [label, name] + [float(v).hex() for v in (p, a, b, epsabs, epsrel)]
        fields += [str(maxsub), str(ier), str(int(info["neval"])), str(last), float(result).hex(),
                   float(abserr).hex(), exact_text(name, p, a, b)]
        fields += [",".join(float(r[k]).hex() for r in rows) or "-" for k in range(4)]
        print("\t".join(fields))


if __name__ == "__main__":
    main()
