// d01rjc and d01rkc through the C interface: every exit with its message,
// the user stop, the subdivision returned in rinfo/iinfo, exact integrals,
// and bad input.
#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

#include "quad/quad_cases.hpp"

using namespace quad_test;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
const double nan_value = std::nan("");

std::string message(const char *code, const std::string &text) {
    return std::string(code) + ":\n  " + text;
}

// The checks every finished run must pass: one call of f per subinterval
// and bisection with 21 points each, the subintervals tiling the interval
// in increasing order, the tail of rinfo zeroed, iinfo as documented.
void expect_valid_subdivision(const QuadRun &r, double a, double b, int64_t maxsub,
                              int64_t npts = 21) {
    const int64_t n = r.nsub();
    ASSERT_GE(n, 1);
    ASSERT_LE(n, maxsub);
    EXPECT_EQ(r.calls, 2 * n - 1);
    EXPECT_EQ(r.points, npts * (2 * n - 1));
    const std::vector<double> lo = r.block(0), hi = r.block(1), e = r.block(2), c = r.block(3);
    // a_i < b_i running from a to b, or a_i > b_i when b < a; ordered by a_i.
    const double first = std::min(a, b), last = std::max(a, b);
    for (int64_t i = 0; i < n; ++i) {
        const double left = std::min(lo[i], hi[i]), right = std::max(lo[i], hi[i]);
        EXPECT_LT(left, right) << i;
        EXPECT_EQ(lo[i] < hi[i], a < b) << i;
        if (i == 0) {
            EXPECT_EQ(left, first);
        } else {
            EXPECT_EQ(left, std::max(lo[i - 1], hi[i - 1])) << i;
            EXPECT_LT(lo[i - 1], lo[i]) << i;
        }
        if (i + 1 == n) {
            EXPECT_EQ(right, last);
        }
        EXPECT_GE(e[i], 0.0) << i;
    }
    for (size_t k = size_t(4 * n); k < r.rinfo.size(); ++k) EXPECT_EQ(r.rinfo[k], 0.0) << k;
    EXPECT_EQ(r.iinfo[1], 0);
    EXPECT_TRUE(r.iinfo[2] == 0 || r.iinfo[2] == 1);
    EXPECT_EQ(r.iinfo[3], 0);
    for (size_t k = 4; k < r.iinfo.size(); ++k) EXPECT_EQ(r.iinfo[k], 0) << k;
    if (r.iinfo[2] == 0) {
        // The result is the sum of the contributions (summed in another
        // order, so to rounding).
        double sum = 0, size = 0;
        for (double x : c) sum += x, size += std::fabs(x);
        EXPECT_NEAR(sum, r.result, 4 * n * 0x1p-53 * size);
    }
}

TEST(D01rj, SubdivisionIsReturnedInOrderForEveryCase) {
    for (const Reference &ref : reference_table()) {
        if (ref.a == ref.b) continue;
        SCOPED_TRACE(ref.label);
        const QuadRun r = run_d01rj(Integrand{ref.name, ref.p}, ref.a, ref.b, ref.epsabs,
                                    ref.epsrel, ref.maxsub);
        expect_valid_subdivision(r, ref.a, ref.b, ref.maxsub);
    }
}

TEST(D01rj, ExactIntegralsLieWithinAbserr) {
    // Every successful run of the battery, and the integrable ones again at
    // a tighter tolerance.  abserr does not cover the rounding of the
    // returned sum itself: two units in its last place are allowed.
    int checked = 0;
    for (const Reference &ref : reference_table()) {
        if (ref.divergent() || ref.a == ref.b) continue;
        for (double epsrel : {ref.epsrel, 1e-13}) {
            SCOPED_TRACE(ref.label + " epsrel " + std::to_string(epsrel));
            const QuadRun r = run_d01rj(Integrand{ref.name, ref.p}, ref.a, ref.b, ref.epsabs,
                                        epsrel, std::max<int64_t>(ref.maxsub, 200));
            if (r.fail.code != NE_NOERROR) continue;
            const double exact = ref.exact_value();
            const double slack = 2 * std::nextafter(std::fabs(r.result), inf) - 2 * std::fabs(r.result);
            EXPECT_LE(std::fabs(r.result - exact), r.abserr + slack)
                << r.result << " vs " << exact << ", abserr " << r.abserr;
            EXPECT_LE(r.abserr, std::fmax(ref.epsabs, epsrel * std::fabs(r.result)) * (1 + 1e-15));
            ++checked;
        }
    }
    EXPECT_GE(checked, 60);
}

TEST(D01rj, EqualLimitsReturnZeroWithoutCallingF) {
    const QuadRun r = run_d01rj(Integrand{"exp", 1.0}, 0.5, 0.5, 0.0, 1e-10, 10);
    EXPECT_EQ(r.fail.code, NE_NOERROR);
    EXPECT_EQ(r.result, 0.0);
    EXPECT_EQ(r.abserr, 0.0);
    EXPECT_EQ(r.calls, 0);
    for (double x : r.rinfo) EXPECT_EQ(x, 0.0);
    for (int64_t k : r.iinfo) EXPECT_EQ(k, 0);
}

TEST(D01rj, ReversedLimitsNegateTheIntegral) {
    for (const char *name : {"xlog", "peak", "cossin"}) {
        SCOPED_TRACE(name);
        const double p = 3.0, b = std::string(name) == "cossin" ? pi : 1.0;
        const QuadRun fwd = run_d01rj(Integrand{name, p}, 0.0, b, 0.0, 1e-10, 100);
        const QuadRun rev = run_d01rj(Integrand{name, p}, b, 0.0, 0.0, 1e-10, 100);
        EXPECT_EQ(rev.fail.code, fwd.fail.code);
        // The rule meets the same points, so the values are exactly negated.
        EXPECT_EQ(rev.result, -fwd.result);
        EXPECT_EQ(rev.abserr, fwd.abserr);
        ASSERT_EQ(rev.nsub(), fwd.nsub());
        // Subinterval i of [b, a] runs from b_i down to a_i.
        EXPECT_EQ(rev.block(0), fwd.block(1));
        EXPECT_EQ(rev.block(1), fwd.block(0));
        EXPECT_EQ(rev.block(2), fwd.block(2));
        for (int64_t i = 0; i < fwd.nsub(); ++i) EXPECT_EQ(rev.block(3)[i], -fwd.block(3)[i]);
    }
}

TEST(D01rj, LowDegreePolynomialTakesOneCall) {
    const QuadRun r = run_d01rj(Integrand{"poly", 3.0}, 0.0, 2.0, 0.0, 1e-10, 50);
    EXPECT_EQ(r.fail.code, NE_NOERROR);
    EXPECT_EQ(r.calls, 1);
    EXPECT_EQ(r.nsub(), 1);
    EXPECT_EQ(r.iinfo[2], 1);  // the first estimate
    EXPECT_NEAR(r.result, 12.0, 1e-14);
}

double zero_integrand(double) { return 0.0; }

TEST(D01rj, ZeroTolerancesSucceedOnlyWithZeroError) {
    // f = 0: abserr = 0 at once.
    struct Zero {
        static void f(const double *, int64_t nx, double fv[], int64_t *, Kor_Comm *comm) {
            ++*comm->iuser;
            for (int64_t i = 0; i < nx; ++i) fv[i] = zero_integrand(0.0);
        }
    };
    int64_t calls = 0;
    Kor_Comm comm{nullptr, &calls, nullptr};
    double result = 1, abserr = 1, rinfo[40];
    int64_t iinfo[10];
    KorError fail = KOR_ERROR_INIT;
    d01rjc(Zero::f, 0.0, 1.0, 0.0, 0.0, 10, &result, &abserr, rinfo, iinfo, &comm, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(result, 0.0);
    EXPECT_EQ(abserr, 0.0);
    EXPECT_EQ(calls, 1);
    // Anything else cannot meet a zero tolerance: a warning, with results.
    for (const char *name : {"exp", "xlog", "cos"}) {
        const QuadRun r = run_d01rj(Integrand{name, 0.5}, 0.0, 1.0, 0.0, 0.0, 100);
        EXPECT_NE(r.fail.code, NE_NOERROR) << name;
        EXPECT_GT(r.abserr, 0.0);
        EXPECT_TRUE(std::isfinite(r.result));
    }
}

TEST(D01rj, MaxsubOneReturnsTheFirstEstimateWithTheLimitWarning) {
    // The first estimate is returned with the limit warning even when it
    // meets the tolerance (the published algorithm sets the limit code
    // whenever maxsub = 1).
    const QuadRun r = run_d01rj(Integrand{"poly", 3.0}, 0.0, 2.0, 0.0, 1e-10, 1);
    EXPECT_EQ(r.fail.code, NE_QUAD_MAX_SUBDIV);
    EXPECT_EQ(r.calls, 1);
    EXPECT_NEAR(r.result, 12.0, 1e-14);
    EXPECT_EQ(r.nsub(), 1);
    EXPECT_EQ(r.iinfo[2], 1);
}

// -- exits

TEST(D01rj, EveryExitWithItsMessage) {
    struct Row {
        const char *label, *name;
        double p, a, b, epsabs, epsrel;
        int64_t maxsub;
        int code;
        int64_t errnum;
        std::string text;
    };
    const std::vector<Row> rows = {
        {"maxsub 0", "exp", 1, 0, 1, 0, 1e-10, 0, NE_INT, 11,
         message("NE_INT", "On entry, maxsub = 0.\n  Constraint: maxsub >= 1.")},
        {"maxsub -5", "exp", 1, 0, 1, 0, 1e-10, -5, NE_INT, 11,
         message("NE_INT", "On entry, maxsub = -5.\n  Constraint: maxsub >= 1.")},
        {"limit", "xlog", -0.5, 0, 1, 0, 1e-10, 3, NE_QUAD_MAX_SUBDIV, 1,
         message("NE_QUAD_MAX_SUBDIV",
                 "The maximum number of subdivisions (maxsub) has been reached:\n  maxsub = 3.")},
        {"round-off", "exp", 1, 0, 1, 1e-300, 0, 50, NE_QUAD_ROUNDOFF_TOL, 2,
         message("NE_QUAD_ROUNDOFF_TOL",
                 "Round-off error prevents the requested tolerance from being achieved:\n"
                 "  epsabs = 1.0e-300 and epsrel = 0.0e+00.")},
        {"extrapolation", "pow", -0.9, 0, 1, 1e-300, 0, 200, NE_QUAD_ROUNDOFF_EXTRAPL, 4,
         message("NE_QUAD_ROUNDOFF_EXTRAPL", "Round-off error is detected in the extrapolation table.")},
        {"divergent", "pow", -1.5, 0, 1, 0, 1e-10, 200, NE_QUAD_NO_CONV, 5,
         message("NE_QUAD_NO_CONV", "The integral is probably divergent or slowly convergent.")},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.label);
        const QuadRun r = run_d01rj(Integrand{row.name, row.p}, row.a, row.b, row.epsabs,
                                    row.epsrel, row.maxsub);
        EXPECT_EQ(r.fail.code, row.code);
        EXPECT_EQ(r.fail.errnum, row.errnum);
        EXPECT_EQ(std::string(r.fail.message), row.text);
        if (row.maxsub < 1) {
            // Checked before anything is evaluated; the outputs zero, the
            // arrays untouched.
            EXPECT_EQ(r.calls, 0);
            EXPECT_EQ(r.result, 0.0);
            EXPECT_EQ(r.abserr, 0.0);
            EXPECT_EQ(r.rinfo[0], -7.0);
            EXPECT_EQ(r.iinfo[0], -7);
        } else {
            // A warning: the best values found are returned.
            expect_valid_subdivision(r, row.a, row.b, row.maxsub);
            EXPECT_TRUE(std::isfinite(r.result) && r.abserr > 0);
        }
    }
}

TEST(D01rj, BadSubintervalNamesASubintervalAtTheHalvingLimit) {
    const QuadRun r = run_d01rj(Integrand{"interior", -1.0}, 0.0, 1.0, 0.0, 1e-10, 200);
    ASSERT_EQ(r.fail.code, NE_QUAD_BAD_SUBDIV);
    EXPECT_EQ(r.fail.errnum, 3);
    const std::string m = r.fail.message;
    const std::string head = "NE_QUAD_BAD_SUBDIV:\n  Extremely bad integrand behaviour occurs "
                             "around the sub-interval\n  (";
    ASSERT_EQ(m.substr(0, head.size()), head);
    double lo = 0, hi = 0;
    ASSERT_EQ(std::sscanf(m.c_str() + head.size(), "%lf,%lf", &lo, &hi), 2) << m;
    EXPECT_EQ(m.substr(m.size() - 2), ").");
    // It is a subinterval that was split last (both halves are in rinfo),
    // of relative width at the limit 500·2^-52, around the singularity 1/3.
    EXPECT_LT(lo, 1.0 / 3.0 + 1e-12);
    EXPECT_GT(hi, 1.0 / 3.0 - 1e-12);
    const double mid = 0.5 * (lo + hi);
    EXPECT_LE(std::fmax(std::fabs(lo), std::fabs(hi)), 1.000000000000111 * (std::fabs(mid) + 2.225073858507202e-305));
    const std::vector<double> a = r.block(0), b = r.block(1);
    EXPECT_NE(std::find(a.begin(), a.end(), lo), a.end());
    EXPECT_NE(std::find(a.begin(), a.end(), mid), a.end());
    EXPECT_NE(std::find(b.begin(), b.end(), hi), b.end());
    expect_valid_subdivision(r, 0.0, 1.0, 200);
}

TEST(D01rj, NullPointersAreReportedBeforeAnyWork) {
    double result = -7, abserr = -7, rinfo[40];
    int64_t iinfo[10];
    Integrand f{"exp", 1.0};
    Kor_Comm comm{&f, nullptr, nullptr};
    struct Row {
        const char *name;
        bool f, result, abserr, rinfo, iinfo;
    };
    for (const Row &row : {Row{"f", false, true, true, true, true},
                           Row{"result", true, false, true, true, true},
                           Row{"abserr", true, true, false, true, true},
                           Row{"rinfo", true, true, true, false, true},
                           Row{"iinfo", true, true, true, true, false},
                           Row{"f", false, false, false, false, false}}) {
        KorError fail = KOR_ERROR_INIT;
        d01rjc(row.f ? c_integrand : nullptr, 0.0, 1.0, 0.0, 1e-10, 10,
               row.result ? &result : nullptr, row.abserr ? &abserr : nullptr,
               row.rinfo ? rinfo : nullptr, row.iinfo ? iinfo : nullptr, &comm, &fail);
        EXPECT_EQ(fail.code, NE_BAD_PARAM);
        EXPECT_EQ(std::string(fail.message),
                  "NE_BAD_PARAM:\n  On entry, parameter " + std::string(row.name) +
                      " had an illegal value.");
        EXPECT_EQ(fail.errnum, 0);
    }
    EXPECT_EQ(f.calls, 0);
    EXPECT_EQ(result, -7.0);
}

TEST(D01rj, UserStopEndsTheRunAtOnce) {
    for (int64_t stop : {1, 2, 3, 8}) {
        SCOPED_TRACE(stop);
        Integrand f{"xlog", -0.5};
        f.stop_at = stop;
        const QuadRun r = run_d01rj(f, 0.0, 1.0, 0.0, 1e-10, 50);
        EXPECT_EQ(r.fail.code, NE_USER_STOP);
        EXPECT_EQ(std::string(r.fail.message), "NE_USER_STOP:\n  Exit from f with iflag < 0.");
        EXPECT_EQ(r.fail.errnum, -1);
        EXPECT_EQ(r.calls, stop);
        EXPECT_EQ(r.result, 0.0);
        EXPECT_EQ(r.abserr, 0.0);
    }
    // iflag reaches f as 0 on every call; a positive value set by f means
    // nothing.
    struct Checker {
        static void f(const double x[], int64_t nx, double fv[], int64_t *iflag, Kor_Comm *comm) {
            if (*iflag != 0) ++comm->iuser[1];
            ++comm->iuser[0];
            for (int64_t i = 0; i < nx; ++i) fv[i] = std::sqrt(x[i]);
            *iflag = 5;
        }
    };
    int64_t counts[2] = {0, 0};
    Kor_Comm comm{nullptr, counts, nullptr};
    double result, abserr, rinfo[200];
    int64_t iinfo[50];
    KorError fail = KOR_ERROR_INIT;
    d01rjc(Checker::f, 0.0, 1.0, 0.0, 1e-12, 50, &result, &abserr, rinfo, iinfo, &comm, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_GT(counts[0], 1);
    EXPECT_EQ(counts[1], 0);
    EXPECT_NEAR(result, 2.0 / 3.0, 1e-12);
}

TEST(D01rj, ArraysEndTheSameWhateverTheyHeldOnEntry) {
    // The arrays are zero on entry as far as the caller can tell: what a
    // run leaves in them, finished or stopped at any call, does not depend
    // on what they held.  maxsub = 9 puts the late stops past maxsub/2 + 2,
    // where the ordering list is no longer written in full.
    // Both singular integrands need more than 9 calls; the later stops may
    // come after the run has finished.
    for (const char *name : {"xlog", "pow"}) {
        for (int64_t stop : {-1, 1, 2, 3, 6, 9, 12, 15, 17}) {
            SCOPED_TRACE(std::string(name) + " stop " + std::to_string(stop));
            std::vector<std::vector<double>> r;
            std::vector<std::vector<int64_t>> i;
            std::vector<int> codes;
            for (double fill : {0.0, -7.0, nan_value}) {
                std::vector<double> rinfo(36, fill);
                std::vector<int64_t> iinfo(9, fill == 0.0 ? 0 : -7);
                Integrand f{name, std::string(name) == "pow" ? -0.9 : -0.5};
                f.stop_at = stop;
                Kor_Comm comm{&f, nullptr, nullptr};
                double result, abserr;
                KorError fail = KOR_ERROR_INIT;
                d01rjc(c_integrand, 0.0, 1.0, 0.0, 1e-13, 9, &result, &abserr, rinfo.data(),
                       iinfo.data(), &comm, &fail);
                codes.push_back(fail.code);
                r.push_back(rinfo);
                i.push_back(iinfo);
            }
            EXPECT_EQ(codes[1], codes[0]);
            EXPECT_EQ(codes[2], codes[0]);
            if (stop > 0 && stop <= 9) {
                EXPECT_EQ(codes[0], NE_USER_STOP);
            }
            EXPECT_EQ(r[1], r[0]);
            EXPECT_EQ(r[2], r[0]);
            EXPECT_EQ(i[1], i[0]);
            EXPECT_EQ(i[2], i[0]);
        }
    }
}

TEST(D01rj, LongNameIsTheSameRoutine) {
    Integrand f{"peak", 4.0}, g{"peak", 4.0};
    Kor_Comm cf{&f, nullptr, nullptr}, cg{&g, nullptr, nullptr};
    double r1, e1, r2, e2, ri1[400], ri2[400];
    int64_t ii1[100], ii2[100];
    KorError f1 = KOR_ERROR_INIT, f2 = KOR_ERROR_INIT;
    d01rjc(c_integrand, 0.0, 1.0, 0.0, 1e-10, 100, &r1, &e1, ri1, ii1, &cf, &f1);
    kor_quad_1d_fin_vec(c_integrand, 0.0, 1.0, 0.0, 1e-10, 100, &r2, &e2, ri2, ii2, &cg, &f2);
    EXPECT_EQ(r1, r2);
    EXPECT_EQ(e1, e2);
    EXPECT_EQ(f.calls, g.calls);
    EXPECT_EQ(f2.code, NE_NOERROR);
}

TEST(D01rj, ConcurrentCallsAgree) {
    const QuadRun ref = run_d01rj(Integrand{"cossin", 6.0}, 0.0, pi, 0.0, 1e-10, 200);
    std::vector<QuadRun> runs(4);
    std::vector<std::thread> threads;
    for (QuadRun &r : runs)
        threads.emplace_back([&r] { r = run_d01rj(Integrand{"cossin", 6.0}, 0.0, pi, 0.0, 1e-10, 200); });
    for (std::thread &t : threads) t.join();
    for (const QuadRun &r : runs) {
        EXPECT_EQ(r.result, ref.result);
        EXPECT_EQ(r.rinfo, ref.rinfo);
    }
}

// -- bad input: never a hang, never a write past the arrays

struct Guarded {
    // rinfo and iinfo with a guard zone after them, checked after the call.
    std::vector<double> r;
    std::vector<int64_t> i;
    int64_t maxsub;
    static constexpr int guard = 16;
    explicit Guarded(int64_t m)
        : r(size_t(4 * std::max<int64_t>(m, 0) + guard), -5.0),
          i(size_t(std::max<int64_t>(m, 4) + guard), -5), maxsub(m) {}
    bool intact() const {
        for (size_t k = r.size() - guard; k < r.size(); ++k)
            if (r[k] != -5.0) return false;
        for (size_t k = i.size() - guard; k < i.size(); ++k)
            if (i[k] != -5) return false;
        return true;
    }
};

struct Odd {
    double value;  // what f returns (NaN, inf) ...
    double at = nan_value;  // ... everywhere, or only for x above this
    int64_t calls = 0;
};

void odd_fn(const double x[], int64_t nx, double fv[], int64_t *, Kor_Comm *comm) {
    auto *o = static_cast<Odd *>(comm->data);
    ++o->calls;
    for (int64_t i = 0; i < nx; ++i)
        fv[i] = std::isnan(o->at) || x[i] > o->at ? o->value : std::exp(x[i]);
}

TEST(D01rj, BadInputEndsWithAStatedOutcome) {
    struct Row {
        const char *label;
        double a, b, epsabs, epsrel;
        Odd f;
        int64_t maxsub;
    };
    const std::vector<Row> rows = {
        {"NaN a", nan_value, 1, 0, 1e-10, {1.0}, 30},
        {"NaN b", 0, nan_value, 0, 1e-10, {1.0}, 30},
        {"infinite b", 0, inf, 0, 1e-10, {1.0}, 30},
        {"huge limits", -1e308, 1e308, 0, 1e-10, {1.0}, 30},
        {"NaN epsabs", 0, 1, nan_value, 1e-10, {nan_value, 2.0}, 30},
        {"NaN epsrel", 0, 1, 0, nan_value, {nan_value, 2.0}, 30},
        {"NaN integrand", 0, 1, 0, 1e-10, {nan_value}, 30},
        {"infinite integrand", 0, 1, 0, 1e-10, {inf}, 30},
        {"NaN on part", 0, 1, 0, 1e-10, {nan_value, 0.7}, 30},
        {"infinity on part", 0, 1, 0, 1e-10, {-inf, 0.2}, 30},
        {"huge maxsub, NaN", 0, 1, 0, 1e-10, {nan_value}, 5000},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.label);
        Guarded g(row.maxsub);
        Odd f = row.f;
        Kor_Comm comm{&f, nullptr, nullptr};
        double result = -7, abserr = -7;
        KorError fail = KOR_ERROR_INIT;
        d01rjc(odd_fn, row.a, row.b, row.epsabs, row.epsrel, row.maxsub, &result, &abserr,
               g.r.data(), g.i.data(), &comm, &fail);
        EXPECT_TRUE(g.intact());
        // Bounded: at most one call per subinterval and bisection.
        EXPECT_LE(f.calls, 2 * row.maxsub - 1);
        EXPECT_GE(g.i[0], 1);
        EXPECT_EQ(f.calls, 2 * g.i[0] - 1);
        // Never success with a NaN tolerance or value; a warning otherwise.
        if (std::isnan(row.epsabs) || std::isnan(row.epsrel) || std::isnan(result)) {
            EXPECT_NE(fail.code, NE_NOERROR) << result;
        }
        EXPECT_TRUE(fail.code == NE_NOERROR || fail.code == NE_QUAD_MAX_SUBDIV ||
                    fail.code == NE_QUAD_ROUNDOFF_TOL || fail.code == NE_QUAD_BAD_SUBDIV ||
                    fail.code == NE_QUAD_ROUNDOFF_EXTRAPL || fail.code == NE_QUAD_NO_CONV)
            << fail.message;
    }
    // A NaN tolerance is never met: the run goes to the limit.
    Guarded g(40);
    Odd f{0.0, inf};  // exp(x) everywhere
    Kor_Comm comm{&f, nullptr, nullptr};
    double result, abserr;
    KorError fail = KOR_ERROR_INIT;
    d01rjc(odd_fn, 0.0, 1.0, nan_value, 1e-10, 40, &result, &abserr, g.r.data(), g.i.data(), &comm, &fail);
    EXPECT_NE(fail.code, NE_NOERROR);
    EXPECT_NEAR(result, std::exp(1.0) - 1.0, 1e-13);
}

// -- d01rk

TEST(D01rk, KeySelectsTheRuleInIncreasingSize) {
    const int64_t points[] = {15, 21, 31, 41, 51, 61};
    for (int64_t key = 1; key <= 6; ++key) {
        SCOPED_TRACE(key);
        const QuadRun r = run_d01rk(Integrand{"cossin", 6.0}, 0.0, pi, key, 0.0, 1e-12, 200);
        EXPECT_EQ(r.fail.code, NE_NOERROR) << r.fail.message;
        expect_valid_subdivision(r, 0.0, pi, 200, points[key - 1]);
        EXPECT_EQ(r.iinfo[2], r.nsub() == 1 ? 1 : 0);
        // pi J0(64), exact to 25 digits.
        EXPECT_NEAR(r.result, 2.908801021737258453660904e-1, r.abserr + 1e-16);
    }
}

TEST(D01rk, EveryExitWithItsMessage) {
    for (int64_t key : {0, 7, -1}) {
        const QuadRun r = run_d01rk(Integrand{"exp", 1.0}, 0.0, 1.0, key, 0.0, 1e-10, 0);
        EXPECT_EQ(r.fail.code, NE_INT);
        EXPECT_EQ(r.fail.errnum, 12);
        EXPECT_EQ(std::string(r.fail.message),
                  message("NE_INT", "On entry, key = " + std::to_string(key) +
                                        ".\n  Constraint: key = 1, 2, 3, 4, 5 or 6."));
        EXPECT_EQ(r.calls, 0);
    }
    QuadRun r = run_d01rk(Integrand{"exp", 1.0}, 0.0, 1.0, 2, 0.0, 1e-10, 0);
    EXPECT_EQ(r.fail.code, NE_INT);
    EXPECT_EQ(r.fail.errnum, 11);
    EXPECT_EQ(std::string(r.fail.message),
              message("NE_INT", "On entry, maxsub = 0.\n  Constraint: maxsub >= 1."));
    r = run_d01rk(Integrand{"xlog", -0.5}, 0.0, 1.0, 2, 0.0, 1e-10, 5);
    EXPECT_EQ(std::string(r.fail.message),
              message("NE_QUAD_MAX_SUBDIV",
                      "The maximum number of subdivisions (maxsub) has been reached:\n  maxsub = 5."));
    EXPECT_EQ(r.fail.errnum, 1);
    expect_valid_subdivision(r, 0.0, 1.0, 5);
    r = run_d01rk(Integrand{"exp", 1.0}, 0.0, 1.0, 1, 1e-300, 0.0, 50);
    EXPECT_EQ(std::string(r.fail.message),
              message("NE_QUAD_ROUNDOFF_TOL",
                      "Round-off error prevents the requested tolerance from being achieved:\n"
                      "  epsabs = 1.0e-300 and epsrel = 0.0e+00."));
    EXPECT_EQ(r.fail.errnum, 2);
    r = run_d01rk(Integrand{"pole", 1.0 / 3.0}, 0.0, 1.0, 2, 0.0, 1e-10, 200);
    EXPECT_EQ(r.fail.code, NE_QUAD_BAD_SUBDIV);
    EXPECT_EQ(r.fail.errnum, 3);
    Integrand stop{"xlog", -0.5};
    stop.stop_at = 3;
    r = run_d01rk(stop, 0.0, 1.0, 6, 0.0, 1e-10, 50);
    EXPECT_EQ(std::string(r.fail.message), "NE_USER_STOP:\n  Exit from f with iflag < 0.");
    EXPECT_EQ(r.fail.errnum, -1);
    EXPECT_EQ(r.calls, 3);
    r = run_d01rk(Integrand{"exp", 1.0}, 2.0, 2.0, 4, 0.0, 1e-10, 5);
    EXPECT_EQ(r.fail.code, NE_NOERROR);
    EXPECT_EQ(r.calls, 0);
    EXPECT_EQ(r.result, 0.0);
}

TEST(D01rk, ExactIntegralsLieWithinAbserr) {
    int checked = 0;
    for (const Reference &ref : reference_table()) {
        if (ref.divergent() || ref.a == ref.b) continue;
        for (int64_t key = 1; key <= 6; ++key) {
            SCOPED_TRACE(ref.label + " key " + std::to_string(key));
            const QuadRun r = run_d01rk(Integrand{ref.name, ref.p}, ref.a, ref.b, key, ref.epsabs,
                                        ref.epsrel, 500);
            if (r.fail.code != NE_NOERROR) continue;
            const double slack = 2 * std::nextafter(std::fabs(r.result), inf) - 2 * std::fabs(r.result);
            EXPECT_LE(std::fabs(r.result - ref.exact_value()), r.abserr + slack);
            ++checked;
        }
    }
    EXPECT_GE(checked, 150);
}

}  // namespace
