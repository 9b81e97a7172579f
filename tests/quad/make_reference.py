#!/usr/bin/python3
"""Writes reference.tsv: what QUADPACK's dqagse (the published algorithm that
d01rj follows) returns on a battery of integrands, through SciPy's
scipy.integrate.quad(..., full_output=True, limit=maxsub), together with the
exact value of each integral from mpmath at 40 digits.

Every integrand is written with the C library's functions (Python's math
module, ** for pow), never numpy's, so that the C++ tests that evaluate the
same expressions feed the rule bit-identical values: a different log or
pow would change the last bits of every result.

Each line (tab separated): case label, integrand name, its parameter, a, b,
epsabs, epsrel (exact hexadecimal doubles), maxsub, QUADPACK's ier, neval,
last, result, abserr (hexadecimal), the exact integral (25 significant
digits, or "inf" for a divergent one), then the subdivision sorted by lower
end: the lower ends, the upper ends, the error estimates and the
contributions, each a comma-separated list of hexadecimal doubles.  For
b < a SciPy integrates over [b, a] and negates the result, so the
subdivision given is that of [b, a].

Run: /usr/bin/python3 tests/quad/make_reference.py > tests/quad/reference.tsv
(needs Debian's python3-scipy and python3-mpmath).
"""
import math
import warnings

import mpmath
from scipy.integrate import quad

mpmath.mp.dps = 40
PI = math.pi


# The integrands: name -> (f(x, p), exact(p, a, b) as an mpmath number).
# The C++ side (tests/quad/quad_cases.hpp) writes the same expressions.
def unit_interval(value, a, b):
    """value is the integral over [0, 1]; the cases use [0, 1] or [1, 0]."""
    assert (a, b) in ((0.0, 1.0), (1.0, 0.0))
    return value if a < b else -value


def peak_exact(p):
    q = mpmath.mpf(4) ** (p - 1)
    return mpmath.atan((4 - mpmath.pi) * q) + mpmath.atan(mpmath.pi * q)


INTEGRANDS = {
    # x^p log(1/x): an algebraic-logarithmic endpoint singularity; 1/(p+1)^2.
    "xlog": (lambda x, p: -(x ** p) * math.log(x),
             lambda p, a, b: unit_interval(1 / (mpmath.mpf(p) + 1) ** 2, a, b)),
    # x^p: an algebraic endpoint singularity for p < 0.
    "pow": (lambda x, p: x ** p,
            lambda p, a, b: (mpmath.mpf(b) ** (p + 1) - mpmath.mpf(a) ** (p + 1)) / (p + 1)),
    # 4^-p / ((x - pi/4)^2 + 16^-p): a peak of width 4^-p at pi/4 (x - pi/4
    # with the double nearest pi, as the integrand is written).
    "peak": (lambda x, p: 4.0 ** -p / ((x - PI / 4) * (x - PI / 4) + 16.0 ** -p),
             lambda p, a, b: unit_interval(
                 mpmath.atan((1 - mpmath.mpf(PI) / 4) * mpmath.mpf(4) ** p)
                 + mpmath.atan(mpmath.mpf(PI) / 4 * mpmath.mpf(4) ** p), a, b)),
    # cos(2^p sin x) on [0, pi]: oscillates faster as p grows; pi J0(2^p).
    "cossin": (lambda x, p: math.cos(2.0 ** p * math.sin(x)),
               lambda p, a, b: mpmath.quad(lambda t: mpmath.cos(2 ** mpmath.mpf(p) * mpmath.sin(t)),
                                           [a, b]) if (a, b) != (0.0, PI)
               else mpmath.pi * mpmath.besselj(0, 2 ** mpmath.mpf(p))
               + mpmath.quad(lambda t: mpmath.cos(2 ** mpmath.mpf(p) * mpmath.sin(t)),
                             [mpmath.pi, mpmath.mpf(PI)])),
    # cos(p x)
    "cos": (lambda x, p: math.cos(p * x),
            lambda p, a, b: (mpmath.sin(p * mpmath.mpf(b)) - mpmath.sin(p * mpmath.mpf(a))) / p),
    # exp(p x)
    "exp": (lambda x, p: math.exp(p * x),
            lambda p, a, b: (mpmath.exp(p * mpmath.mpf(b)) - mpmath.exp(p * mpmath.mpf(a))) / p),
    # 1 + x + p x^2: integrated exactly by the first rule.
    "poly": (lambda x, p: 1.0 + x + p * x * x,
             lambda p, a, b: (lambda A, B: (B - A) + (B * B - A * A) / 2 + p * (B ** 3 - A ** 3) / 3)(
                 mpmath.mpf(a), mpmath.mpf(b))),
    # |x - 1/3|^p on [0, 1]: an interior singularity, integrable for p > -1.
    "interior": (lambda x, p: abs(x - 1.0 / 3.0) ** p,
                 lambda p, a, b: ((mpmath.mpf(1.0 / 3.0) - a) ** (p + 1)
                                  + (b - mpmath.mpf(1.0 / 3.0)) ** (p + 1)) / (p + 1)),
    # 1/(x - p): a pole inside [0, 1], not integrable (its principal value
    # is log((1 - p)/p)).
    "pole": (lambda x, p: 1.0 / (x - p), None),
    # A jump from 0 to 1 at p.
    "step": (lambda x, p: 0.0 if x < p else 1.0,
             lambda p, a, b: mpmath.mpf(b) - max(mpmath.mpf(p), mpmath.mpf(a))),
    # x^p sin(1/x) on [0, 1]: infinitely many oscillations near 0; with
    # t = 1/x the integral of sin(t) t^-(p+2) over [1, inf).
    "sinrecip": (lambda x, p: math.sin(1.0 / x) * x ** p,
                 lambda p, a, b: unit_interval(mpmath.quadosc(
                     lambda t: mpmath.sin(t) * t ** (-(p + 2)), [1, mpmath.inf], omega=1), a, b)),
}

# (label, integrand, parameter, a, b, epsabs, epsrel, maxsub)
CASES = []


def case(label, name, p, a, b, epsabs, epsrel, maxsub):
    CASES.append((label, name, p, a, b, epsabs, epsrel, maxsub))


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
# b < a: the negated integral over [b, a]
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
# tolerances that cannot be met (QUADPACK refuses epsrel below 50 * 2^-52
# unless epsabs > 0)
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
# a = b, and tolerances QUADPACK refuses (it needs epsabs > 0 or
# epsrel >= max(50 * 2^-52, 5e-29)); d01rj accepts both
case("a=b", "exp", 1.0, 0.5, 0.5, 0.0, 1e-10, 50)
case("eps zero", "exp", 1.0, 0.0, 1.0, 0.0, 0.0, 50)

MESSAGES = [
    ("The maximum number of subdivisions", 1),
    ("The occurrence of roundoff error", 2),
    ("Extremely bad integrand behavior", 3),
    ("The algorithm does not converge", 4),
    ("The integral is probably divergent", 5),
    ("The input is invalid", 6),
]


def ier_of(output):
    if len(output) == 3:
        return 0
    for prefix, ier in MESSAGES:
        if output[3].startswith(prefix):
            return ier
    raise SystemExit(f"unknown QUADPACK message: {output[3]!r}")


def hexes(values):
    return ",".join(float(v).hex() for v in values) or "-"


def exact_text(name, p, a, b):
    if a == b:
        return "0"
    value = INTEGRANDS[name][1](p, a, b)
    if mpmath.isinf(value):
        return "inf"
    return mpmath.nstr(value, 25, min_fixed=1, max_fixed=0)


def main():
    print("# QUADPACK dqagse through scipy.integrate.quad; written by tests/quad/make_reference.py")
    for label, name, p, a, b, epsabs, epsrel, maxsub in CASES:
        f = INTEGRANDS[name][0]
        try:
            with warnings.catch_warnings():
                warnings.simplefilter("ignore")
                output = quad(f, a, b, args=(p,), full_output=True, epsabs=epsabs,
                              epsrel=epsrel, limit=maxsub)
        except ValueError:
            # SciPy refuses what dqagse would refuse, before calling it.
            output = (0.0, 0.0, {"neval": 0, "last": 0}, "The input is invalid.")
        result, abserr, info = output[0], output[1], output[2]
        ier = ier_of(output)
        last = int(info.get("last", 0))
        if ier == 6:
            subdivision = [[], [], [], []]
        else:
            rows = sorted(zip(info["alist"][:last], info["blist"][:last], info["elist"][:last],
                              info["rlist"][:last]))
            subdivision = [[r[k] for r in rows] for k in range(4)]
        if name == "pole" or (name in ("pow", "interior") and p <= -1):
            exact = "inf"
        else:
            exact = exact_text(name, p, a, b)
        fields = [label, name, float(p).hex(), float(a).hex(), float(b).hex(), float(epsabs).hex(),
                  float(epsrel).hex(), str(maxsub), str(ier), str(int(info["neval"])), str(last),
                  float(result).hex(), float(abserr).hex(), exact]
        fields += [hexes(column) for column in subdivision]
        print("\t".join(fields))


if __name__ == "__main__":
    main()
