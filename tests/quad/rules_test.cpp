// The building blocks: the Gauss–Kronrod rules through the applier d01rkzn_,
// the ordering list d01ajxn_ and the epsilon step d01ajyn_.
#include <cmath>
#include <vector>

#include "d01rj_def.hpp"
#include "quad/adaptive.hpp"
#include "quad/quad_support.hpp"

namespace {

using kor::quad_gk_consts::Rule;
using kor::quad_gk_consts::rules;
constexpr double u = 0x1p-53, omega = 4.494232837155789e307;

struct Applied { double result, abserr, resabs, resasc; int64_t iflag, calls; };

// d01rkzn_ on f, reached through the frame's adapter chain as the engine does.
Applied apply(quad_test::Integrand f, double alpha, double beta, const Rule &rule) {
    CallbackContext ctx;
    Kor_Comm comm{&f, nullptr, nullptr};
    kor::quad::Integrand fn(&ctx, reinterpret_cast<KorUserFn>(quad_test::c_integrand), d01rjc_f_helper, &comm,
                            nullptr, d01rjf_print_fh_);
    Applied a{};
    a.iflag = d01rkzn_(fn, alpha, beta, rule.nn, rule.npts, rule.ngw, &a.result, &a.abserr, &a.resabs, &a.resasc);
    a.calls = f.calls;
    return a;
}

// The published nodes and weights, checked by what defines them: the n-point
// Gauss rule (n = nn) is exact to degree 2n − 1 and its Kronrod extension to
// 3n + 1.  Nodes in (0, 1), decreasing to 0.
TEST(RuleApplier, IsExactToTheKronrodAndGaussDegrees) {
    for (const Rule &rule : rules) {
        const int n = int(rule.nn);
        EXPECT_TRUE(rule.npts == 2 * n + 1 && rule.ngw == (n + 1) / 2 && rule.xgk[n] == 0.0 && rule.xgk[0] < 1);
        for (int k = 0; k < n; ++k) EXPECT_GT(rule.xgk[k], rule.xgk[k + 1]) << k;
        for (int d = 0; d <= 3 * n + 1; ++d) {
            SCOPED_TRACE(std::to_string(rule.npts) + " points, degree " + std::to_string(d));
            const Applied a = apply({"pow", double(d)}, 0.25, 1.5, rule);
            EXPECT_EQ(a.calls, 1);
            const double exact = (std::pow(1.5, d + 1) - std::pow(0.25, d + 1)) / (d + 1);
            EXPECT_NEAR(a.result, exact, 8e-15 * exact);
            EXPECT_EQ(a.resabs, a.result);  // f ≥ 0
            // The Gauss rule too: |K − G| is rounding, the floor 50u·∫|f| decides.
            if (d < 2 * n) { EXPECT_EQ(a.abserr, 50 * u * a.resabs); }
        }
    }
}

TEST(RuleApplier, FloorAndIflag) {
    // f = 1 has resasc = 0 (f less its mean) and |K − G| at rounding: the
    // error is the floor 50u·∫|f|, applied only above λ/(50u) = 4.0e-294.
    for (double width : {2.0, 1e-290, 1e-300}) {
        const Applied a = apply({"pow", 0.0}, 0, width, rules[1]);
        EXPECT_TRUE(a.resasc == 0 && a.abserr == (width > 1e-294 ? 50 * u * a.resabs : 0.0)) << width;
    }
    // f's iflag comes back; a triple naming no rule calls nothing.
    EXPECT_EQ(apply({"pow", 0.0, 0, 0, 1}, 0, 1, rules[0]).iflag, -1);
    const Applied a = apply({"pow", 0.0}, 0, 1, {10, 21, 4, rules[1].xgk, rules[1].wgk, rules[1].wg});
    EXPECT_TRUE(a.calls == 0 && a.iflag == 0 && a.result == 0 && a.abserr == 0 && a.resabs == 0 && a.resasc == 0);
}

// The ordering list after subinterval 1 (of error 1, at position 1) was
// halved into errors 1.0 and 0.9 (the new subinterval 6), the others having
// 4, 3, 2 and 0.5: in full while many bisections are left; at the last
// bisection of maxsub = 6 only positions 1 to jbnd − 1 = 2 are kept.
TEST(OrderingList, PlacesTheHalvesByError) {
    const std::vector<double> e = {1.0, 4, 3, 2, 0.5, 0.9};
    for (int64_t maxsub : {12, 6}) {
        std::vector<int64_t> iord = {1, 2, 3, 4, 5, 0}, full = {2, 3, 4, 1, 6, 5}, last = {2, 1, 6, 4, 5, 0};
        int64_t maxerr = 1, nrmax = 1;
        double errmax = 0;
        d01ajxn_(maxsub, 6, &maxerr, &errmax, e.data(), iord.data(), &nrmax);
        EXPECT_EQ(iord, maxsub == 12 ? full : last);
        EXPECT_TRUE(maxerr == 2 && nrmax == 1 && errmax == 4.0);
    }
}

// The table as the core keeps it: each partial sum appended, then a step.
struct Table {
    double e[52] = {}, res3la[3] = {}, result = 0, abserr = 0;
    int64_t n = 0, nres = 0;
    void push(double s) { e[n++] = s, d01ajyn_(&n, e, &result, &abserr, res3la, &nres); }
};

TEST(EpsilonAlgorithm, AcceleratesSequencesToTheirLimits) {
    // 1/2, 3/4, 7/8 -> 1 (Aitken's step, exact in binary); no error
    // estimate until four results are known.
    Table g;
    for (double s : {0.5, 0.75, 0.875}) g.push(s);
    EXPECT_TRUE(g.result == 1.0 && g.abserr == omega);
    // Partial sums of log 2 = 1 − 1/2 + 1/3 − ... and of pi/4 = 1 − 1/3 +
    // 1/5 − ...: the estimate covers the error, and 20 terms give the limit.
    for (double step : {1.0, 2.0}) {
        Table t;
        const double limit = step == 1 ? std::log(2.0) : std::atan(1.0);
        double s = 0;
        for (int k = 0; k < 20; ++k) {
            t.push(s += (k % 2 ? -1 : 1) / (1 + step * k));
            if (t.abserr < omega) { EXPECT_LE(std::fabs(t.result - limit), t.abserr) << k; }
        }
        EXPECT_LT(std::fabs(t.result - limit), 1e-14);
    }
}

}  // namespace
