// The building blocks of the quadrature chapter on their own: the
// Gauss–Kronrod tables, the rule applier d01rkzn_, the ordering list
// d01ajxn_ and the epsilon step d01ajyn_, against properties of the rules
// and small cases worked by hand.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <vector>

#include "quad/adaptive.hpp"
#include "quad/gk_rules.hpp"

extern "C" {
void d01rjf_print_fh_(KorAdapter, KorUserFn, CallbackContext *, void *, void *, void *);
void d01rjc_f_helper(KorUserFn, CallbackContext *, void *, void *, void *);
}

namespace {

using kor::quad_gk_consts::Rule;
using kor::quad_gk_consts::rules;

constexpr double u = 0x1p-53;
constexpr double omega = 4.494232837155789e307;
constexpr double R = 6.703903964971298e153;

// Legendre P_n(x) by the three-term recurrence.
double legendre(int n, double x) {
    double p0 = 1.0, p1 = x;
    if (n == 0) return p0;
    for (int k = 2; k <= n; ++k) {
        const double p2 = ((2 * k - 1) * x * p1 - (k - 1) * p0) / k;
        p0 = p1;
        p1 = p2;
    }
    return p1;
}

TEST(GaussKronrodTables, AreThePublishedRules) {
    const int nns[] = {7, 10, 15, 20, 25, 30};
    for (int r = 0; r < 6; ++r) {
        const Rule &rule = rules[r];
        SCOPED_TRACE(rule.npts);
        EXPECT_EQ(rule.nn, nns[r]);
        EXPECT_EQ(rule.npts, 2 * rule.nn + 1);
        EXPECT_EQ(rule.ngw, (rule.nn + 1) / 2);
        // Abscissae in (0, 1), decreasing, the last one 0.
        EXPECT_EQ(rule.xgk[rule.nn], 0.0);
        for (int k = 0; k < rule.nn; ++k) {
            EXPECT_GT(rule.xgk[k], rule.xgk[k + 1]);
            EXPECT_LT(rule.xgk[k], 1.0);
        }
        // The Gauss points (odd k, and 0 for odd nn) are the zeros of P_nn.
        for (int k = 1; k <= rule.nn; k += 2)
            EXPECT_NEAR(legendre(int(rule.nn), rule.xgk[k]), 0.0, 1e-13) << k;
        if (rule.nn % 2 == 1) {
            EXPECT_NEAR(legendre(int(rule.nn), 0.0), 0.0, 1e-15);
        }
        // Both rules integrate 1 over [-1, 1] exactly.
        double sk = rule.wgk[rule.nn], sg = rule.nn % 2 == 1 ? rule.wg[rule.ngw - 1] : 0.0;
        for (int k = 0; k < rule.nn; ++k) sk += 2 * rule.wgk[k];
        for (int j = 0; j < rule.nn / 2; ++j) sg += 2 * rule.wg[j];
        EXPECT_NEAR(sk, 2.0, 4e-16 * rule.npts);
        EXPECT_NEAR(sg, 2.0, 4e-16 * rule.npts);
    }
    // The rule of d01rj, named as the published module names it.
    EXPECT_EQ(kor::quad_gk_consts::wgk_10[10], 0.1494455540029169);
    EXPECT_EQ(&kor::quad_gk_consts::gk21, &rules[1]);
    EXPECT_EQ(kor::quad_gk_consts::find_rule(10, 21, 5), &rules[1]);
    EXPECT_EQ(kor::quad_gk_consts::find_rule(10, 21, 4), nullptr);
}

// A vectorised integrand for the rule applier, reached through the frame's
// adapter chain exactly as the engine reaches the user's function.
struct Poly {
    explicit Poly(int d = 0, double s = 0.0, double sc = 1.0) : degree(d), shift(s), scale(sc) {}
    int degree;
    double shift;
    double scale;
    int calls = 0;
    std::vector<double> last_x;
    int64_t iflag_to_return = 0;
};

void poly_fn(const double x[], int64_t nx, double fv[], int64_t *iflag, Kor_Comm *comm) {
    auto *p = static_cast<Poly *>(comm->data);
    ++p->calls;
    p->last_x.assign(x, x + nx);
    for (int64_t i = 0; i < nx; ++i) fv[i] = p->scale * std::pow(x[i], p->degree) + p->shift;
    *iflag = p->iflag_to_return;
}

struct Applied {
    double result, abserr, resabs, resasc;
    int64_t iflag;
};

Applied apply(Poly &p, double alpha, double beta, const Rule &rule) {
    CallbackContext ctx;
    Kor_Comm comm{&p, nullptr, nullptr};
    kor::quad::Integrand f(&ctx, reinterpret_cast<KorUserFn>(poly_fn), d01rjc_f_helper, &comm,
                           nullptr, d01rjf_print_fh_);
    Applied a{};
    a.iflag = d01rkzn_(f, alpha, beta, rule.nn, rule.npts, rule.ngw, &a.result, &a.abserr,
                       &a.resabs, &a.resasc);
    return a;
}

TEST(RuleApplier, CallsOnceWithAllPointsSymmetricAboutTheCentre) {
    for (const Rule &rule : rules) {
        SCOPED_TRACE(rule.npts);
        Poly p;
        apply(p, 0.5, 2.5, rule);
        ASSERT_EQ(p.calls, 1);
        ASSERT_EQ(int64_t(p.last_x.size()), rule.npts);
        std::vector<double> x = p.last_x;
        std::sort(x.begin(), x.end());
        EXPECT_GT(x.front(), 0.5);
        EXPECT_LT(x.back(), 2.5);
        for (size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(x[i] + x[x.size() - 1 - i], 3.0, 1e-15);
        EXPECT_EQ(x[x.size() / 2], 1.5);
    }
}

double power_integral(int d, double a, double b) {
    return (std::pow(b, d + 1) - std::pow(a, d + 1)) / (d + 1);
}

TEST(RuleApplier, KronrodIsExactToDegree3nPlus1AndGaussTo2nMinus1) {
    for (const Rule &rule : rules) {
        const int n = int(rule.nn);
        for (int d = 0; d <= 3 * n + 1; ++d) {
            SCOPED_TRACE(std::to_string(rule.npts) + " points, degree " + std::to_string(d));
            Poly p{d};
            const Applied a = apply(p, 0.25, 1.5, rule);
            const double exact = power_integral(d, 0.25, 1.5);
            EXPECT_NEAR(a.result, exact, 8e-15 * exact);
            // f >= 0: the integral of |f| is the integral.
            EXPECT_EQ(a.resabs, a.result);
            if (d <= 2 * n - 1) {
                // The embedded Gauss rule is exact too: only rounding is left
                // of |K - G|, and the floor 50u·resabs decides.
                EXPECT_EQ(a.abserr, 50 * u * a.resabs);
            }
        }
    }
}

TEST(RuleApplier, ErrorOfDegree2nFollowsTheGaussRemainder) {
    // For the larger rules the remainder is below rounding; the two smallest
    // show the formula e = resasc·min(1, (200|K − G|/resasc)^1.5).
    for (const Rule &rule : {rules[0], rules[1]}) {
        const int n = int(rule.nn);
        SCOPED_TRACE(rule.npts);
        Poly p{2 * n};
        const Applied a = apply(p, -1.0, 1.0, rule);
        // The n-point Gauss rule misses the integral of x^(2n) over [-1, 1]
        // by 2^(2n+1) (n!)^4 / ((2n+1) ((2n)!)^2); the Kronrod rule is exact.
        double ratio = std::pow(2.0, 2 * n + 1) / (2 * n + 1);
        for (int k = 1; k <= n; ++k) ratio *= double(k) * k / ((n + k) * double(n + k));
        const double e = a.resasc * std::fmin(1.0, std::pow(200.0 * ratio / a.resasc, 1.5));
        EXPECT_NEAR(a.abserr, std::fmax(e, 50 * u * a.resabs), 1e-9 * a.abserr);
        EXPECT_GT(a.abserr, 50 * u * a.resabs);
    }
}

TEST(RuleApplier, ResascIsTheRuleOnTheDeviationFromTheMean) {
    // For 1 + x on [-1, 1] the mean is 1, so resasc is the rule applied to
    // |x|: resabs of x.
    for (const Rule &rule : rules) {
        Poly shifted{1, 1.0}, plain{1, 0.0};
        const Applied a = apply(shifted, -1.0, 1.0, rule), b = apply(plain, -1.0, 1.0, rule);
        EXPECT_NEAR(a.resasc, b.resabs, 1e-15);
        EXPECT_NEAR(b.result, 0.0, 1e-16);
    }
}

TEST(RuleApplier, FloorAppliesOnlyAboveTheUnderflowThreshold) {
    const Rule &rule = rules[1];
    Poly c{0, 2.0};  // f = 3 on [0, 2]: resasc = 0, e = |K - G| = 0 or rounding
    Applied a = apply(c, 0.0, 2.0, rule);
    EXPECT_EQ(a.resasc, 0.0);
    EXPECT_EQ(a.abserr, 50 * u * a.resabs);
    EXPECT_NEAR(a.resabs, 6.0, 1e-14);
    // f = 1e-300: resabs below λ/(50u) = 4.0e-294, so no floor: the error
    // of a constant stays 0.  At 1e-290 the floor is applied.
    Poly tiny{0, 0.0, 1e-300};
    a = apply(tiny, 0.0, 1.0, rule);
    EXPECT_NEAR(a.result, 1e-300, 1e-314);
    EXPECT_EQ(a.resasc, 0.0);
    EXPECT_EQ(a.abserr, 0.0);
    Poly small{0, 0.0, 1e-290};
    a = apply(small, 0.0, 1.0, rule);
    EXPECT_EQ(a.abserr, 50 * u * a.resabs);
    EXPECT_GT(a.abserr, 0.0);
}

TEST(RuleApplier, ReturnsTheUsersIflagAndRejectsUnknownTriples) {
    Poly p;
    p.iflag_to_return = -3;
    EXPECT_EQ(apply(p, 0.0, 1.0, rules[0]).iflag, -3);
    Poly q;
    const Rule bogus{10, 21, 4, rules[1].xgk, rules[1].wgk, rules[1].wg};
    const Applied a = apply(q, 0.0, 1.0, bogus);
    EXPECT_EQ(q.calls, 0);
    EXPECT_EQ(a.iflag, 0);
    EXPECT_EQ(a.result, 0.0);
}

// The ordering list: iord holds subinterval numbers by position (1-based).
struct Order {
    std::vector<double> e;      // e[i-1]: error of subinterval i
    std::vector<int64_t> iord;  // positions 1..
    int64_t maxerr, nrmax;
    double errmax = 0;
    void run(int64_t maxsub, int64_t nsub) {
        d01ajxn_(maxsub, nsub, &maxerr, &errmax, e.data(), iord.data(), &nrmax);
    }
};

TEST(OrderingList, PlacesTheBisectedHalvesByError) {
    struct Case {
        const char *name;
        Order before;
        int64_t maxsub, nsub;
        std::vector<int64_t> iord;
        int64_t maxerr, nrmax;
    };
    // Subinterval 1 (position 1) bisected into errors 1.0 and 0.9 (the new
    // subinterval 6); the others have 4, 3, 2, 0.5.
    const Order six{{1.0, 4, 3, 2, 0.5, 0.9}, {1, 2, 3, 4, 5, 0}, 1, 1};
    const Case cases[] = {
        {"two subintervals", {{1.0, 3.0}, {0, 0}, 1, 1}, 10, 2, {1, 2}, 1, 1},
        // Subinterval 1 keeps error 5, the new 3 has 4; 2 (error 6) leads.
        {"both halves inserted", {{5, 6, 4}, {1, 2, 0}, 1, 1}, 10, 3, {2, 1, 3}, 2, 1},
        // maxerr (error 5) meets an equal error: it stops above it.
        {"tie with maxerr", {{5, 5, 1}, {1, 2, 0}, 1, 1}, 10, 3, {1, 2, 3}, 1, 1},
        // The new subinterval 4 (error 2) goes above an equal error.
        {"tie with the newcomer", {{3, 2, 1, 2}, {1, 2, 3, 0}, 1, 1}, 10, 4, {1, 4, 2, 3}, 1, 1},
        // Bisecting subinterval 2 at position nrmax = 2 raised its error to 5.
        {"moves up", {{1, 5, 0.5, 0.2}, {1, 2, 3, 0}, 2, 2}, 100, 4, {2, 1, 3, 4}, 2, 1},
        {"equal error above stops it", {{5, 5, 0.5, 0.2}, {1, 2, 3, 0}, 2, 2}, 100, 4, {1, 2, 3, 4}, 2, 2},
        // With room for many more bisections the whole list is ordered.
        {"whole list", six, 100, 6, {2, 3, 4, 1, 6, 5}, 2, 1},
        // At the last bisection of maxsub = 6, jbnd = 6 + 3 - 6 = 3: only
        // positions 1 and 2 are kept, and the halves take positions 2 and 3.
        {"last bisection", six, 6, 6, {2, 1, 6, 4, 5, 0}, 2, 1},
        // jbnd = nsub as long as nsub <= maxsub/2 + 2 (here 12/2 + 2 = 8 >= 6).
        {"jbnd is nsub", six, 12, 6, {2, 3, 4, 1, 6, 5}, 2, 1},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        Order o = c.before;
        o.run(c.maxsub, c.nsub);
        EXPECT_EQ(o.iord, c.iord);
        EXPECT_EQ(o.maxerr, c.maxerr);
        EXPECT_EQ(o.nrmax, c.nrmax);
        EXPECT_EQ(o.errmax, o.e[size_t(c.maxerr - 1)]);
    }
}

// The epsilon step on a table of 52 entries, numbered from 1 here as well.
struct Table {
    double e[52] = {};
    double res3la[3] = {};
    int64_t n = 0, nres = 0;
    double result = 0, abserr = 0;
    double &operator()(int i) { return e[i - 1]; }
    void step() { d01ajyn_(&n, e, &result, &abserr, res3la, &nres); }
};

TEST(EpsilonStep, FewerThanThreeEntriesGiveTheLastOne) {
    Table t;
    t(1) = 2.5;
    t.n = 1;
    t.step();
    EXPECT_EQ(t.result, 2.5);
    EXPECT_EQ(t.abserr, omega);
    EXPECT_EQ(t.nres, 1);
    EXPECT_EQ(t.res3la[0], 2.5);
}

TEST(EpsilonStep, GeometricPartialSumsExtrapolateToTheLimit) {
    // 1/2, 3/4, 7/8 -> 1 (Aitken's step), exactly in binary.
    Table t;
    t(1) = 0.5;
    t(2) = 0.75;
    t(3) = 0.875;
    t.n = 3;
    t.step();
    EXPECT_EQ(t.result, 1.0);
    EXPECT_EQ(t.abserr, omega);  // fewer than four results so far
    EXPECT_EQ(t.n, 3);
    // The table after the shift: the new element first, the last sum last.
    EXPECT_EQ(t(1), 1.0);
    EXPECT_EQ(t(2), 0.75);
    EXPECT_EQ(t(3), 0.875);
    EXPECT_EQ(t.res3la[0], 1.0);
}

TEST(EpsilonStep, ConvergedTableReturnsAtOnce) {
    Table t;
    t(1) = t(2) = t(3) = 3.0;
    t.n = 3;
    t.res3la[0] = 7.0;
    t.nres = 0;
    t.step();
    EXPECT_EQ(t.result, 3.0);
    EXPECT_EQ(t.abserr, 0x1p-54 * 3.0);  // the floor (u/2)|result|
    EXPECT_EQ(t.nres, 1);
    EXPECT_EQ(t.res3la[0], 7.0);  // not updated
    EXPECT_EQ(t.n, 3);
}

TEST(EpsilonStep, ErrorFromTheLastThreeResultsOnceThereAreFour) {
    Table t;
    const double results[] = {1.0, 2.0, 4.0, 8.0};
    for (double r : results) {
        t(1) = r;
        t.n = 1;
        t.step();
    }
    EXPECT_EQ(t.result, 8.0);
    EXPECT_EQ(t.abserr, 7.0 + 6.0 + 4.0);
    EXPECT_EQ(t.res3la[0], 2.0);
    EXPECT_EQ(t.res3la[1], 4.0);
    EXPECT_EQ(t.res3la[2], 8.0);
    EXPECT_EQ(t.nres, 4);
}

TEST(EpsilonStep, DifferencesAtROnlyTheFirstIsInverted) {
    // Five entries chosen so that the second pass of the loop meets
    // |e1 - e3| = R (inverted: the first term is dropped only above R) and
    // |e2 - e1| = R (not inverted: the second term is dropped at R).  The
    // first pass turns E(5) into 2R exactly (its second difference 2R is
    // not inverted, its third 2^500 is, exactly).
    Table t;
    const double d = 0x1p500;
    t(1) = R / 2;
    t(2) = R;
    t(3) = 2 * R;
    t(4) = 2 * R + d;
    t(5) = t(4) + 2 * R;
    t.n = 5;
    t.step();
    // Second pass: s = -1/R + 0 - 2/R, result R + 1/s = 2R/3; had the first
    // term been dropped at R too it would be R/2, had the second been kept
    // it would be R/2 as well.
    EXPECT_NEAR(t.result, 2 * R / 3, 1e-15 * R);
    EXPECT_EQ(t.n, 5);
}

TEST(EpsilonStep, EqualErrorsLetTheLaterElementWin) {
    // -4, -3, -4, -1, 1: the first pass gives 1/s = 5.999999999999999, so
    // res = 4.999999999999999 with error 2 + |res - 1| + 3; the second pass
    // gives exactly 5 with error 8 - ulp + |5 - res| + 1, the same double.
    // Ties update, so the second, 5, is returned.
    Table t;
    const double e[] = {-4, -3, -4, -1, 1};
    for (int i = 1; i <= 5; ++i) t(i) = e[i - 1];
    t.n = 5;
    t.step();
    EXPECT_EQ(t.result, 5.0);
}

TEST(EpsilonStep, IrregularTableIsCut) {
    // 0, R, 2R: both differences equal R and are not inverted, so s = 0 and
    // the table is cut to n = 1 at the first pass.
    Table t;
    t(1) = 0.0;
    t(2) = R;
    t(3) = 2 * R;
    t.n = 3;
    t.step();
    EXPECT_EQ(t.n, 1);
    EXPECT_EQ(t.result, 2 * R);  // the last entry, nothing better was found
    EXPECT_EQ(t(1), 2 * R);
}

TEST(EpsilonStep, FullTableOf50DropsItsOldestEntry) {
    // 50 irregular but smooth-free values that never trip the cut tests.
    Table t;
    double before[53] = {};
    for (int i = 1; i <= 50; ++i) before[i] = t(i) = 1.0 + 0.5 * std::sin(1.7 * i) + 0.01 * i;
    t.n = 50;
    t.step();
    ASSERT_EQ(t.n, 49);
    // After the shift and the move, the last entry is the newest sum and the
    // even positions hold the untouched odd entries E(3), E(5), ..., E(49).
    EXPECT_EQ(t(49), before[50]);
    for (int m = 1; m <= 24; ++m) EXPECT_EQ(t(2 * m), before[2 * m + 1]) << m;
}

}  // namespace
