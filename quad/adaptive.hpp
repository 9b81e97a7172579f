// Globally adaptive bisection with Gauss–Kronrod rules, after QUADPACK
// (Piessens, de Doncker-Kapenga, Ueberhuber, Kahaner, 1983): the rule
// applier, the ordering list of subintervals by error, one step of Wynn's
// epsilon algorithm, the bisection both adaptive cores make, and the two
// cores (with extrapolation for d01rj, without for d01rk).
//
// The cores are templates over a set of constants so that the library's
// constants (unit roundoff u = 2^-53 and the thresholds derived from it)
// sit in one place, `Working`, and every threshold is named.  The library
// instantiates them with `Working` only.
//
// Indices follow the published algorithm: subintervals are numbered from 1,
// and so are positions in the ordering list and in the epsilon table; the
// helpers below map them onto the 0-based arrays.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/adapters.hpp"
#include "frame/callbacks.hpp"
#include "frame/record.hpp"
#include "quad/gk_rules.hpp"

namespace kor::quad {

using quad_gk_consts::Rule;

// The constants of the adaptive routines (u = 2^-53, λ = 2^-1022).
struct Working {
    // Largest finite double / 4: "no error estimate yet".
    static constexpr double omega = 4.494232837155789e307;
    // sqrt(omega): above it a difference in the epsilon table is not inverted.
    static constexpr double root_omega = 6.703903964971298e153;
    // 100u: the first estimate's error is at rounding level.
    static constexpr double roundoff_first = 1.1102230246251565e-14;
    // 1 − 50u: |∫f| ≥ (1 − 50u)∫|f| means f keeps one sign (ksgn).
    static constexpr double sign_factor = 0.9999999999999944;
    // 50u and λ/(50u): a rule's error estimate is never below 50u·∫|f|,
    // unless ∫|f| is near underflow.
    static constexpr double rule_floor = 5.551115123125783e-15;
    static constexpr double rule_floor_threshold = 4.008336720017946e-294;
    // u and u/2: tolerance of equal entries in the epsilon table, and the
    // floor of its error estimate relative to the result.
    static constexpr double table_tolerance = 0x1p-53;
    static constexpr double table_floor = 5.551115123125783e-17;
    // 1 + 500·2^-52 and 1000λ: a subinterval whose ends and midpoint agree
    // to this factor cannot be halved any further.
    static constexpr double halving_factor = 1.000000000000111;
    static constexpr double halving_tiny = 2.225073858507202e-305;
    // The rule's error is |K − G| of the two scaled sums (not the scaled
    // difference of the unscaled sums).
    static constexpr bool scale_before_difference = true;
};

// The larger of two bounds, NaN if either is NaN: a NaN tolerance is never
// met, rather than silently ignored.
inline double bound_max(double x, double y) {
    if (std::isnan(x) || std::isnan(y)) return std::numeric_limits<double>::quiet_NaN();
    return x < y ? y : x;
}

// What one rule application gives: K, its error e, and the Kronrod
// approximations of ∫|f| and ∫|f − K/(β−α)|.
struct RuleValues {
    double result = 0.0;
    double abserr = 0.0;
    double resabs = 0.0;
    double resasc = 0.0;
};

// Applies `rule` (of Gauss order NN, fixed at compile time so that the sums
// are unrolled) on [alpha, beta] with one call of f at all 2·NN+1
// abscissae; returns the iflag that f left (negative: stop).  f is called
// as f(x, nx, fv, iflag) and returns iflag.
template <class C, int64_t NN, class F>
int64_t apply_rule_of_order(F &f, const Rule &rule, double alpha, double beta, RuleValues &v) {
    constexpr int64_t nn = NN, npts = 2 * NN + 1;
    double x[npts], fv[npts];
    const double centre = (alpha + beta) / 2, h = (beta - alpha) / 2, dh = std::fabs(h);
    // x[0] is the centre; x[2k+1], x[2k+2] the pair at ∓h·xgk[k].
    x[0] = centre;
    fv[0] = 0.0;
    for (int64_t k = 0; k < nn; ++k) {
        const double t = h * rule.xgk[k];
        x[2 * k + 1] = centre - t;
        x[2 * k + 2] = centre + t;
        fv[2 * k + 1] = fv[2 * k + 2] = 0.0;
    }
    const int64_t iflag = f(static_cast<const double *>(x), npts, static_cast<double *>(fv), int64_t{0});
    if (iflag < 0) return iflag;

    // The sums in the order of the published rules: centre, the Gauss
    // pairs (odd k), the Kronrod pairs (even k).
    const double fc = fv[0];
    double resg = (nn % 2 == 1) ? fc * rule.wg[rule.ngw - 1] : 0.0;
    double resk = fc * rule.wgk[nn];
    double resabs = std::fabs(resk);
    for (int64_t j = 0; j < nn / 2; ++j) {
        const int64_t k = 2 * j + 1;
        const double f1 = fv[2 * k + 1], f2 = fv[2 * k + 2], sum = f1 + f2;
        resg += rule.wg[j] * sum;
        resk += rule.wgk[k] * sum;
        resabs += rule.wgk[k] * (std::fabs(f1) + std::fabs(f2));
    }
    for (int64_t k = 0; k < nn; k += 2) {
        const double f1 = fv[2 * k + 1], f2 = fv[2 * k + 2];
        resk += rule.wgk[k] * (f1 + f2);
        resabs += rule.wgk[k] * (std::fabs(f1) + std::fabs(f2));
    }
    // The mean value K/(β−α) of f, formed without the division so that it
    // stays defined on an interval of zero width.
    const double mean = resk * 0.5;
    double resasc = rule.wgk[nn] * std::fabs(fc - mean);
    for (int64_t k = 0; k < nn; ++k)
        resasc += rule.wgk[k] * (std::fabs(fv[2 * k + 1] - mean) + std::fabs(fv[2 * k + 2] - mean));

    v.result = resk * h;
    v.resabs = resabs * dh;
    v.resasc = resasc * dh;
    double e = C::scale_before_difference ? std::fabs(v.result - resg * h)
                                          : std::fabs((resk - resg) * h);
    if (v.resasc != 0.0 && e != 0.0) {
        const double scale = std::pow(200.0 * e / v.resasc, 1.5);
        e = v.resasc * (scale < 1.0 ? scale : 1.0);
    }
    if (v.resabs > C::rule_floor_threshold) {
        const double floor = C::rule_floor * v.resabs;
        if (floor > e) e = floor;
    }
    v.abserr = e;
    return iflag;
}

// The same for a rule known only at run time.
template <class C, class F>
int64_t apply_rule(F &f, const Rule &rule, double alpha, double beta, RuleValues &v) {
    switch (rule.nn) {
    case 7: return apply_rule_of_order<C, 7>(f, rule, alpha, beta, v);
    case 10: return apply_rule_of_order<C, 10>(f, rule, alpha, beta, v);
    case 15: return apply_rule_of_order<C, 15>(f, rule, alpha, beta, v);
    case 20: return apply_rule_of_order<C, 20>(f, rule, alpha, beta, v);
    case 25: return apply_rule_of_order<C, 25>(f, rule, alpha, beta, v);
    default: return apply_rule_of_order<C, 30>(f, rule, alpha, beta, v);
    }
}

// The ordering list (positions 1 … nsub of iord hold subinterval numbers by
// decreasing error), updated after subinterval maxerr was overwritten by one
// half and subinterval nsub added as the other.  On return maxerr is the
// subinterval at position nrmax, the next to bisect, and errmax its error.
// Only positions up to jbnd − 1 are kept in order, since no more
// subintervals than that can still be bisected before maxsub is reached.
inline void order_list(int64_t maxsub, int64_t nsub, int64_t &maxerr, double &errmax,
                       const double *elist, int64_t *iord, int64_t &nrmax) {
    auto E = [elist](int64_t i) { return elist[i - 1]; };
    auto at = [iord](int64_t p) -> int64_t & { return iord[p - 1]; };
    if (nsub < 3) {
        at(1) = 1;
        at(2) = 2;
        maxerr = at(nrmax);
        errmax = E(maxerr);
        return;
    }
    // A bisection that increased the error moves maxerr up; equal errors
    // do not move it past each other.
    errmax = E(maxerr);
    while (nrmax > 1 && E(at(nrmax - 1)) < errmax) {
        at(nrmax) = at(nrmax - 1);
        --nrmax;
    }
    const int64_t jbnd = nsub > maxsub / 2 + 2 ? maxsub + 3 - nsub : nsub;
    const double errmin = E(nsub);
    // Insert maxerr top-down from position nrmax + 1: it passes the entries
    // of strictly larger error.
    int64_t i = nrmax + 1;
    for (; i <= jbnd - 1; ++i) {
        const int64_t next = at(i);
        if (errmax >= E(next)) break;
        at(i - 1) = next;
    }
    if (i > jbnd - 1) {
        at(jbnd - 1) = maxerr;
        at(jbnd) = nsub;
    } else {
        at(i - 1) = maxerr;
        // Insert the new subinterval bottom-up from position jbnd − 1: it
        // passes the entries whose error is not larger than its own.
        int64_t k = jbnd - 1;
        bool placed = false;
        for (int64_t j = i; j <= jbnd - 1; ++j) {
            const int64_t next = at(k);
            if (errmin < E(next)) {
                at(k + 1) = nsub;
                placed = true;
                break;
            }
            at(k + 1) = next;
            --k;
        }
        if (!placed) at(i) = nsub;
    }
    maxerr = at(nrmax);
    errmax = E(maxerr);
}

// The extrapolation table of the epsilon algorithm: 52 entries, at most 50
// of them live, numbered from 1.
inline constexpr int64_t table_size = 52;
inline constexpr int64_t table_limit = 50;

// One step of Wynn's epsilon algorithm on the n entries of epstab (n is
// updated), giving an extrapolated result and its error estimate; res3la
// keeps the last three results and nres counts the calls.
template <class C>
void epsilon_step(int64_t &n, double *epstab, double &result, double &abserr, double *res3la,
                  int64_t &nres) {
    auto E = [epstab](int64_t i) -> double & { return epstab[i - 1]; };
    nres += 1;
    abserr = C::omega;
    result = E(n);
    if (n >= 3) {
        E(n + 2) = E(n);
        const int64_t newelm = (n - 1) / 2;
        E(n) = C::omega;
        const int64_t num = n;
        int64_t k1 = n;
        for (int64_t i = 1; i <= newelm; ++i) {
            double res = E(k1 + 2);
            const double e0 = E(k1 - 2), e1 = E(k1 - 1), e2 = res;
            const double delta2 = e2 - e1, err2 = std::fabs(delta2);
            const double tol2 = std::fmax(std::fabs(e2), std::fabs(e1)) * C::table_tolerance;
            const double delta3 = e1 - e0, err3 = std::fabs(delta3);
            const double tol3 = std::fmax(std::fabs(e1), std::fabs(e0)) * C::table_tolerance;
            if (err2 <= tol2 && err3 <= tol3) {
                // e0, e1 and e2 agree to rounding: the table has converged.
                result = res;
                abserr = std::fmax(err2 + err3, C::table_floor * std::fabs(res));
                return;
            }
            const double e3 = E(k1);
            E(k1) = e1;
            const double delta1 = e1 - e3, err1 = std::fabs(delta1);
            const double tol1 = std::fmax(std::fabs(e1), std::fabs(e3)) * C::table_tolerance;
            if (err1 <= tol1 || err2 <= tol2 || err3 <= tol3) {
                // Two entries nearly equal: drop the rest of the table.
                n = i + i - 1;
                break;
            }
            // The first term is dropped only above R, the other two already
            // at R.
            const double s = (err1 > C::root_omega ? 0.0 : 1.0 / delta1) +
                             (err2 < C::root_omega ? 1.0 / delta2 : 0.0) -
                             (err3 < C::root_omega ? 1.0 / delta3 : 0.0);
            if (std::fabs(s * e1) <= 1e-4) {
                // Irregular behaviour: drop the rest of the table.
                n = i + i - 1;
                break;
            }
            res = e1 + 1.0 / s;
            E(k1) = res;
            k1 -= 2;
            const double error = err2 + std::fabs(res - e2) + err3;
            if (error <= abserr) {
                abserr = error;
                result = res;
            }
        }
        if (n == table_limit) n = table_limit - 1;
        // Shift the table down by two, then keep only its last n entries.
        int64_t ib = (num % 2 == 0) ? 2 : 1;
        for (int64_t i = 1; i <= newelm + 1; ++i, ib += 2) E(ib) = E(ib + 2);
        if (num != n)
            for (int64_t i = 1; i <= n; ++i) E(i) = E(num - n + i);
    }
    if (nres < 4) {
        res3la[nres - 1] = result;
        abserr = C::omega;
    } else {
        abserr = std::fabs(result - res3la[2]) + std::fabs(result - res3la[1]) +
                 std::fabs(result - res3la[0]);
        res3la[0] = res3la[1];
        res3la[1] = res3la[2];
        res3la[2] = result;
    }
    abserr = std::fmax(abserr, C::table_floor * std::fabs(result));
}

// How an adaptive run ended.
struct Outcome {
    int64_t ier = 0;           // 0 success; d01rj: 1..5, d01rk: 1..3 (see the engines)
    int64_t nsub = 0;          // subintervals in use (0 only when a = b)
    int64_t calls = 0;         // calls of the user function
    bool summed = false;       // result is the plain sum of the r_i
    bool stopped = false;      // f set iflag < 0; nothing else is meaningful
    double bad_lower = 0.0;    // the subinterval that could not be halved (ier 3)
    double bad_upper = 0.0;
};

// One bisection: subinterval maxerr halved at its midpoint into [a1, b1]
// and [a2, b2], with the rule's values on each and what they say about
// rounding.
struct Halves {
    double a1, b1, a2, b2;
    RuleValues left, right;
    double area12, erro12;  // the sums over both halves
    // The signs of rounding the cores count: the halves' sum agrees with
    // the r it replaces to 1e-5 while the error fell by under 1%
    // (stalled), or, after the first ten bisections, the error grew.
    bool stalled, grew;
};

// The subinterval list inside rinfo (four blocks of maxsub) and the
// ordering list in iinfo, numbered from 1.
struct Subintervals {
    double *alist, *blist, *elist, *rlist;
    int64_t *iord;
    Subintervals(double *rinfo, int64_t *iinfo, int64_t maxsub)
        : alist(rinfo), blist(rinfo + maxsub), elist(rinfo + 2 * maxsub),
          rlist(rinfo + 3 * maxsub), iord(iinfo) {}
    double &a(int64_t i) { return alist[i - 1]; }
    double &b(int64_t i) { return blist[i - 1]; }
    double &e(int64_t i) { return elist[i - 1]; }
    double &r(int64_t i) { return rlist[i - 1]; }
    int64_t &at(int64_t p) { return iord[p - 1]; }
    double sum(int64_t nsub) {
        double s = 0.0;
        for (int64_t k = 1; k <= nsub; ++k) s += r(k);
        return s;
    }
    // Stores the halves of subinterval maxerr: the one with the larger error
    // (the right one only when its error is strictly larger) keeps the slot.
    void store_halves(int64_t maxerr, int64_t nsub, const Halves &h) {
        if (h.right.abserr > h.left.abserr) {
            a(maxerr) = h.a2;
            a(nsub) = h.a1;
            b(nsub) = h.b1;
            r(maxerr) = h.right.result;
            r(nsub) = h.left.result;
            e(maxerr) = h.right.abserr;
            e(nsub) = h.left.abserr;
        } else {
            a(nsub) = h.a2;
            b(maxerr) = h.b1;
            b(nsub) = h.b2;
            r(maxerr) = h.left.result;
            r(nsub) = h.right.result;
            e(maxerr) = h.left.abserr;
            e(nsub) = h.right.abserr;
        }
    }
};

template <class C>
bool cannot_halve(double a1, double a2, double b2) {
    return std::fmax(std::fabs(a1), std::fabs(b2)) <=
           C::halving_factor * (std::fabs(a2) + C::halving_tiny);
}

inline void zero_arrays(double *rinfo, int64_t *iinfo, int64_t maxsub) {
    for (int64_t i = 0; i < 4 * maxsub; ++i) rinfo[i] = 0.0;
    for (int64_t i = 0; i < (maxsub > 4 ? maxsub : 4); ++i) iinfo[i] = 0;
}

// rinfo and iinfo are zero on entry as far as anyone can see, but clearing
// them up front costs as much as a cheap integral: every finished run
// rewrites all of both (finish_subdivision), so only a run that f stops
// needs the entries it never wrote cleared.  `stored` subintervals are in
// rinfo; the ordering list has been written up to position
// min(stored, maxsub/2 + 2), since beyond that jbnd only shrinks.
inline void clear_unwritten(double *rinfo, int64_t *iinfo, int64_t maxsub, int64_t stored) {
    for (int64_t k = 0; k < 4; ++k)
        for (int64_t i = stored; i < maxsub; ++i) rinfo[k * maxsub + i] = 0.0;
    const int64_t high = stored < maxsub / 2 + 2 ? stored : maxsub / 2 + 2;
    for (int64_t i = high; i < (maxsub > 4 ? maxsub : 4); ++i) iinfo[i] = 0;
}

// What the two cores do alike: the first estimate over [a, b], the
// bisection of the subinterval of largest error, and the bookkeeping of the
// subinterval list, the ordering list and the running sums.  They differ
// in their rule, in how they judge a run and in extrapolation.
// apply(lo, hi, v) applies the core's rule and returns the iflag that f
// left; every call is counted in the outcome.
template <class C, class Apply>
class Bisection {
public:
    Subintervals s;
    // The subinterval to bisect next, its error and its position in the
    // ordering list.
    int64_t maxerr = 1, nrmax = 1;
    double errmax = 0.0;
    // The running sums of the r_i and of the e_i.
    double area = 0.0, errsum = 0.0;

    Bisection(Apply &apply, double *rinfo, int64_t *iinfo, int64_t maxsub, Outcome &out)
        : s(rinfo, iinfo, maxsub), apply_(apply), rinfo_(rinfo), iinfo_(iinfo), maxsub_(maxsub),
          out_(out) {}

    // The first estimate, stored as subinterval 1.  False when the run ends
    // with it (a = b, f stopped, the estimate is good enough or at rounding
    // level, or maxsub = 1): result, abserr and the outcome are then final.
    bool start(double a, double b, double epsabs, double epsrel, double &result, double &abserr,
               RuleValues &first) {
        out_ = Outcome{};
        result = abserr = 0.0;
        if (a == b) {
            zero_arrays(rinfo_, iinfo_, maxsub_);
            return false;
        }
        ++out_.calls;
        if (apply_(a, b, first) < 0) return stop(0);
        result = first.result;
        abserr = first.abserr;
        s.a(1) = a;
        s.b(1) = b;
        s.r(1) = result;
        s.e(1) = abserr;
        s.at(1) = 1;
        out_.nsub = 1;
        const double errbnd = bound_max(epsabs, epsrel * std::fabs(result));
        int64_t ier = 0;
        if (abserr <= C::roundoff_first * first.resabs && abserr > errbnd) ier = 2;
        if (maxsub_ == 1) ier = 1;
        if (ier != 0 || (abserr <= errbnd && abserr != first.resasc) || abserr == 0.0) {
            out_.ier = ier;
            return false;
        }
        errmax = errsum = abserr;
        area = result;
        return true;
    }

    // Halves subinterval maxerr, subinterval nsub to be, and brings the
    // running sums up to date.  False when f stopped.
    bool bisect(int64_t nsub, Halves &h) {
        out_.nsub = nsub;
        h.a1 = s.a(maxerr);
        h.b1 = (s.a(maxerr) + s.b(maxerr)) * 0.5;
        h.a2 = h.b1;
        h.b2 = s.b(maxerr);
        ++out_.calls;
        if (apply_(h.a1, h.b1, h.left) < 0) return stop(nsub - 1);
        ++out_.calls;
        if (apply_(h.a2, h.b2, h.right) < 0) return stop(nsub - 1);
        h.area12 = h.left.result + h.right.result;
        h.erro12 = h.left.abserr + h.right.abserr;
        // A half whose error is its resasc (the estimate at its cap) says
        // nothing about rounding.
        const bool telling =
            !(h.left.resasc == h.left.abserr || h.right.resasc == h.right.abserr);
        h.stalled = telling && std::fabs(s.r(maxerr) - h.area12) <= 1e-5 * std::fabs(h.area12) &&
                    h.erro12 >= 0.99 * errmax;
        h.grew = telling && nsub > 10 && h.erro12 > errmax;
        errsum = errsum + h.erro12 - errmax;
        area = area + h.area12 - s.r(maxerr);
        return true;
    }

    // Keeps the halves as subintervals maxerr and nsub and picks the next
    // to bisect.
    void keep(int64_t nsub, const Halves &h) {
        s.store_halves(maxerr, nsub, h);
        order_list(maxsub_, nsub, maxerr, errmax, s.elist, s.iord, nrmax);
    }

    // Ends the run with the sum of the r_i of its nsub subintervals.
    void take_sum(int64_t nsub, double &result, double &abserr) {
        result = s.sum(nsub);
        abserr = errsum;
        out_.summed = true;
    }

private:
    bool stop(int64_t stored) {
        out_.stopped = true;
        clear_unwritten(rinfo_, iinfo_, maxsub_, stored);
        return false;
    }

    Apply &apply_;
    double *rinfo_;
    int64_t *iinfo_;
    int64_t maxsub_;
    Outcome &out_;
};

// The adaptive core of d01rj: bisection with the 21-point rule and
// extrapolation of the partial sums by the epsilon algorithm.  maxsub ≥ 1;
// rinfo and iinfo as d01rj documents them, zeroed here.
template <class C, class F>
void extrapolating_core(F &f, double a, double b, double epsabs, double epsrel, int64_t maxsub,
                        double &result, double &abserr, double *rinfo, int64_t *iinfo,
                        Outcome &out) {
    const Rule &rule = quad_gk_consts::gk21;
    auto apply = [&f, &rule](double lo, double hi, RuleValues &v) {
        return apply_rule_of_order<C, 10>(f, rule, lo, hi, v);
    };
    Bisection<C, decltype(apply)> run(apply, rinfo, iinfo, maxsub, out);
    RuleValues first;
    if (!run.start(a, b, epsabs, epsrel, result, abserr, first)) return;
    Subintervals &s = run.s;
    const double defabs = first.resabs;
    const double dres = std::fabs(result);

    double epstab[table_size] = {};
    double res3la[3] = {};
    epstab[0] = result;
    abserr = C::omega;
    int64_t nres = 0, numrl2 = 2, ktmin = 0;
    bool extrap = false, noext = false;
    int64_t ier = 0, iroff1 = 0, iroff2 = 0, iroff3 = 0, ierro = 0;
    const int ksgn = dres >= C::sign_factor * defabs ? 1 : -1;
    double small = 0.0, erlarg = 0.0, ertest = 0.0, correc = 0.0;

    enum class End { final_choice, sum };
    End end = End::final_choice;
    int64_t nsub = 2;
    for (; nsub <= maxsub; ++nsub) {
        const double erlast = run.errmax;
        Halves h;
        if (!run.bisect(nsub, h)) return;
        if (h.stalled) {
            if (extrap)
                ++iroff2;
            else
                ++iroff1;
        }
        if (h.grew) ++iroff3;
        const double errbnd = bound_max(epsabs, epsrel * std::fabs(run.area));
        if (iroff1 + iroff2 >= 10 || iroff3 >= 20) ier = 2;
        if (iroff2 >= 5) ierro = 3;
        if (nsub == maxsub) ier = 1;
        if (cannot_halve<C>(h.a1, h.a2, h.b2)) {
            ier = 4;
            out.bad_lower = h.a1;
            out.bad_upper = h.b2;
        }
        run.keep(nsub, h);
        if (run.errsum <= errbnd) {
            end = End::sum;
            break;
        }
        if (ier != 0) break;

        // Extrapolation control.
        if (nsub == 2) {
            small = std::fabs(b - a) * 0.375;
            erlarg = run.errsum;
            ertest = errbnd;
            epstab[1] = run.area;
            continue;
        }
        if (noext) continue;
        erlarg -= erlast;
        if (std::fabs(h.b1 - h.a1) > small) erlarg += h.erro12;
        if (!extrap) {
            // Small subintervals only once the next to bisect is small.
            if (std::fabs(s.b(run.maxerr) - s.a(run.maxerr)) > small) continue;
            extrap = true;
            run.nrmax = 2;
        }
        if (ierro != 3 && erlarg > ertest) {
            // Work on the larger subintervals first, as long as they
            // carry the larger errors.
            const int64_t jupbnd = nsub > 2 + maxsub / 2 ? maxsub + 3 - nsub : nsub;
            const int64_t id = run.nrmax;
            bool larger = false;
            for (int64_t k = id; k <= jupbnd; ++k) {
                run.maxerr = s.at(run.nrmax);
                run.errmax = s.e(run.maxerr);
                if (std::fabs(s.b(run.maxerr) - s.a(run.maxerr)) > small) {
                    larger = true;
                    break;
                }
                ++run.nrmax;
            }
            if (larger) continue;
        }

        // Extrapolate.
        ++numrl2;
        epstab[numrl2 - 1] = run.area;
        double reseps = 0.0, abseps = 0.0;
        epsilon_step<C>(numrl2, epstab, reseps, abseps, res3la, nres);
        ++ktmin;
        if (ktmin > 5 && abserr < 1e-3 * run.errsum) ier = 5;
        if (abseps < abserr) {
            ktmin = 0;
            abserr = abseps;
            result = reseps;
            correc = erlarg;
            ertest = bound_max(epsabs, epsrel * std::fabs(reseps));
            if (abserr <= ertest) break;
        }
        if (numrl2 == 1) noext = true;
        if (ier == 5) break;
        run.maxerr = s.at(1);
        run.errmax = s.e(run.maxerr);
        run.nrmax = 1;
        extrap = false;
        small *= 0.5;
        erlarg = run.errsum;
    }
    if (nsub > maxsub) nsub = maxsub;  // not reached: ier = 1 ends the last pass
    out.nsub = nsub;

    // The final choice between the extrapolated result and the sum.
    const double area = run.area, errsum = run.errsum;
    enum class Step { sum, divergence, done };
    Step step = Step::sum;
    if (end == End::final_choice) {
        if (abserr == C::omega) {
            step = Step::sum;
        } else if (ier + ierro == 0) {
            step = Step::divergence;
        } else {
            if (ierro == 3) abserr += correc;
            if (ier == 0) ier = 3;
            if (result != 0.0 && area != 0.0)
                step = abserr / std::fabs(result) > errsum / std::fabs(area) ? Step::sum
                                                                            : Step::divergence;
            else if (abserr > errsum)
                step = Step::sum;
            else if (area == 0.0)
                step = Step::done;
            else
                step = Step::divergence;
        }
    }
    if (step == Step::divergence) {
        if (!(ksgn == -1 && std::fmax(std::fabs(result), std::fabs(area)) <= 0.01 * defabs)) {
            const double ratio = result / area;
            if (0.01 > ratio || ratio > 100.0 || errsum > std::fabs(area)) ier = 6;
        }
    } else if (step == Step::sum) {
        run.take_sum(nsub, result, abserr);
    }
    if (ier > 2) ier -= 1;
    out.ier = ier;
}

// The adaptive core of d01rk: the same bisection with a rule of the caller's
// choice and no extrapolation; the result is the sum of the r_i.  Ends
// 1 maximum subdivisions, 2 round-off, 3 bad integrand point.
template <class C, class F>
void plain_core(F &f, const Rule &rule, double a, double b, double epsabs, double epsrel,
                int64_t maxsub, double &result, double &abserr, double *rinfo, int64_t *iinfo,
                Outcome &out) {
    auto apply = [&f, &rule](double lo, double hi, RuleValues &v) {
        return apply_rule<C>(f, rule, lo, hi, v);
    };
    Bisection<C, decltype(apply)> run(apply, rinfo, iinfo, maxsub, out);
    RuleValues first;
    if (!run.start(a, b, epsabs, epsrel, result, abserr, first)) return;

    int64_t ier = 0, iroff1 = 0, iroff2 = 0;
    int64_t nsub = 2;
    for (; nsub <= maxsub; ++nsub) {
        Halves h;
        if (!run.bisect(nsub, h)) return;
        if (h.stalled) ++iroff1;
        if (h.grew) ++iroff2;
        const double errbnd = bound_max(epsabs, epsrel * std::fabs(run.area));
        // Without extrapolation a run that has met the tolerance is a
        // success, even on its last permitted bisection.
        if (!(run.errsum <= errbnd)) {
            if (iroff1 >= 6 || iroff2 >= 20) ier = 2;
            if (nsub == maxsub) ier = 1;
            if (cannot_halve<C>(h.a1, h.a2, h.b2)) {
                ier = 3;
                out.bad_lower = h.a1;
                out.bad_upper = h.b2;
            }
        }
        run.keep(nsub, h);
        if (ier != 0 || run.errsum <= errbnd) break;
    }
    if (nsub > maxsub) nsub = maxsub;
    out.nsub = nsub;
    run.take_sum(nsub, result, abserr);
    out.ier = ier;
}

}  // namespace kor::quad

// The published building blocks under their layer names, with the library's
// constants (hidden symbols of the library; tests reach them through the
// static archive).
namespace kor::quad {
using Integrand = frame::UserFunction<frame::VectorOfVector>;
}

extern "C" {
// One rule given by its triple (nn, npts, ngw) on [alpha, beta]; returns the
// iflag that f left.  A triple that names none of the six rules calls
// nothing, returns 0 and leaves the four values 0.
int64_t d01rkzn_(kor::quad::Integrand &f, double alpha, double beta, int64_t nn, int64_t npts,
                 int64_t ngw, double *result, double *abserr, double *resabs, double *resasc);
// The ordering list after a bisection.
void d01ajxn_(int64_t maxsub, int64_t nsub, int64_t *maxerr, double *errmax, const double *elist,
              int64_t *iord, int64_t *nrmax);
// One epsilon step on the 52-entry table epstab holding *n entries.
void d01ajyn_(int64_t *n, double *epstab, double *result, double *abserr, double *res3la,
              int64_t *nres);
// The adaptive cores of d01rj and d01rk (maxsub ≥ 1), inline so that the
// engines fold them in.
inline void d01rjvn_(kor::quad::Integrand &f, double a, double b, double epsabs, double epsrel,
                     int64_t maxsub, double *result, double *abserr, double *rinfo,
                     int64_t *iinfo, kor::quad::Outcome *out) {
    kor::quad::extrapolating_core<kor::quad::Working>(f, a, b, epsabs, epsrel, maxsub, *result,
                                                      *abserr, rinfo, iinfo, *out);
}
inline void d01rkvn_(kor::quad::Integrand &f, int64_t key, double a, double b, double epsabs,
                     double epsrel, int64_t maxsub, double *result, double *abserr,
                     double *rinfo, int64_t *iinfo, kor::quad::Outcome *out) {
    kor::quad::plain_core<kor::quad::Working>(f, kor::quad_gk_consts::rules[key - 1], a, b, epsabs,
                                              epsrel, maxsub, *result, *abserr, rinfo, iinfo, *out);
}
}

namespace kor::quad {
// Puts the subdivision of a finished run in the documented form: the four
// blocks contiguous with stride nsub, the tail zeroed, the subintervals in
// increasing order of their lower ends; iinfo = {nsub, 0, flag, 0, 0 ...}
// with flag 0 when the result is the sum of the r_i.
void finish_subdivision(double *rinfo, int64_t *iinfo, int64_t maxsub, const Outcome &out);

// What d01rj and d01rk make alike of their core's run, raising the
// routine's exits: a run that f stopped gives zero result and abserr and
// nothing else; any other has its subdivision put in order and the final
// codes both cores have (1 to 3) reported.  Codes above 3 are left to the
// caller (a stopped run has code 0).
template <class Exit>
void conclude(frame::Record &rec, const Outcome &out, int64_t maxsub, double epsabs,
              double epsrel, double &result, double &abserr, double *rinfo, int64_t *iinfo) {
    if (out.stopped) {
        result = abserr = 0.0;
        return rec.raise<typename Exit::user_stop>();
    }
    finish_subdivision(rinfo, iinfo, maxsub, out);
    switch (out.ier) {
    case 1: return rec.raise<typename Exit::max_subdivisions>(maxsub);
    case 2: return rec.raise<typename Exit::roundoff>(epsabs, epsrel);
    case 3: return rec.raise<typename Exit::bad_subinterval>(out.bad_lower, out.bad_upper);
    default: return;
    }
}
}  // namespace kor::quad
