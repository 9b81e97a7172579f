// d01rj and d01rk against QUADPACK's dqagse (tests/data/quad/reference.tsv,
// through SciPy) and GSL's gsl_integration_qags and gsl_integration_qag.
#include <gsl/gsl_errno.h>
#include <gsl/gsl_integration.h>

#include <cfloat>
#include <map>

#include "quad/adaptive.hpp"
#include "quad/quad_support.hpp"

using namespace quad_test;

namespace {

// QUADPACK's constants: epmach = 2^-52 (the library's u = 2^-53), oflow the
// largest double, no overflow guard in the table, bisection limit 1 + 100·epmach.
struct Quadpack {
    static constexpr double omega = DBL_MAX, root_omega = HUGE_VAL;
    static constexpr double roundoff_first = 100 * 0x1p-52, sign_factor = 1 - 50 * 0x1p-52;
    static constexpr double rule_floor = 50 * 0x1p-52, rule_floor_threshold = DBL_MIN / (50 * 0x1p-52);
    static constexpr double table_tolerance = 0x1p-52, table_floor = 5 * 0x1p-52;
    static constexpr double halving_factor = 1 + 100 * 0x1p-52, halving_tiny = 1000 * DBL_MIN;
    static constexpr bool scale_before_difference = false;
};

bool close(double x, double y, double tol) { return x == y || std::fabs(x - y) <= tol * std::fabs(y); }

// rinfo's subdivision (nsub = n) is QUADPACK's, errors within [low, high] times
// its own.  SciPy gives [b, a]'s for b < a: ours run from a_i down to b_i.
void expect_subdivision(const Reference &ref, const std::vector<double> &rinfo, size_t n, double low, double high) {
    ASSERT_EQ(n, ref.lower.size());
    const bool rev = ref.b < ref.a;
    for (size_t i = 0; i < n; ++i) {
        const double e = rinfo[2 * n + i], c = rinfo[3 * n + i];
        EXPECT_TRUE(rinfo[rev ? n + i : i] == ref.lower[i] && rinfo[rev ? i : n + i] == ref.upper[i]) << i;
        EXPECT_TRUE(e >= low * ref.error[i] && e <= high * ref.error[i]) << i << ": " << e << " vs " << ref.error[i];
        EXPECT_TRUE(close(rev ? -c : c, ref.contribution[i], 1e-12)) << i << ": " << c << " vs " << ref.contribution[i];
    }
}

struct GslRun { int status; int64_t size; double result, abserr; };

// qags for key 0, else qag with d01rk's key.
GslRun run_gsl(const Reference &ref, int key) {
    gsl_set_error_handler_off();
    Integrand g{ref.name, ref.p};
    gsl_function F{[](double x, void *f) { double y; (*static_cast<Integrand *>(f))(&x, 1, &y, 0); return y; }, &g};
    gsl_integration_workspace *w = gsl_integration_workspace_alloc(size_t(ref.maxsub));
    GslRun out{};
    out.status = key == 0 ? gsl_integration_qags(&F, ref.a, ref.b, ref.epsabs, ref.epsrel, w->limit, w, &out.result, &out.abserr)
                          : gsl_integration_qag(&F, ref.a, ref.b, ref.epsabs, ref.epsrel, w->limit, key, w, &out.result, &out.abserr);
    out.size = int64_t(w->size);
    gsl_integration_workspace_free(w);
    return out;
}

// GSL's status for each final code (round-off in the rule and in the table alike).
const int gsl_status[] = {GSL_SUCCESS, GSL_EMAXITER, GSL_EROUND, GSL_ESING, GSL_EROUND, GSL_EDIVERGE};

// Where the library's constants decide (found by swapping QUADPACK's for the
// library's one at a time), d01rj's number of subintervals (-1: QUADPACK's).
// cos k=1000: the rule's floor 50u·∫|f| (QUADPACK 100u) in 128 errors; step:
// the table's tolerance u (2^-52), one bisection more; xlog tight: the floor;
// interior p=-1: the bisection limit 500·2^-52 (100·2^-52), two bisections
// sooner; a=b: d01rj returns at once; eps zero: dqagse refuses it.
const std::map<std::string, int64_t> decided = {{"cos k=1000", -1}, {"step", 10}, {"xlog p=-0.5 tight", 24},
                                                {"interior p=-1", 46}, {"a=b", 0}, {"eps zero", 1}};

// The core under QUADPACK's constants is dqagse to rounding: code, calls,
// subintervals.  So is d01rj, its errors QUADPACK's or half (the floor), give
// or take 1e-4 (it takes |K − G| of the scaled sums); and GSL's qags, except
// where a limit ends the run (GSL stops one subinterval sooner, or succeeds
// with a limit of 1) and for the pole at pi/4 (GSL reports its limit).
TEST(Oracles, D01rjIsDqagseAndQags) {
    for (const Reference &ref : references()) {
        SCOPED_TRACE(ref.label);
        const auto d = decided.find(ref.label);
        if (ref.ier != 6 && ref.a != ref.b) {
            Integrand f{ref.name, ref.p};
            std::vector<double> rinfo(size_t(4 * ref.maxsub));
            std::vector<int64_t> iinfo(size_t(std::max<int64_t>(4, ref.maxsub)));
            double result, abserr;
            kor::quad::Outcome out;
            kor::quad::extrapolating_core<Quadpack>(f, ref.a, ref.b, ref.epsabs, ref.epsrel, ref.maxsub,
                                                    result, abserr, rinfo.data(), iinfo.data(), out);
            kor::quad::finish_subdivision(rinfo.data(), iinfo.data(), ref.maxsub, out);
            EXPECT_TRUE(out.ier == ref.ier && f.points == ref.neval && 21 * out.calls == ref.neval) << out.ier << ", " << out.calls;
            EXPECT_TRUE(close(result, ref.result, 1e-15)) << result << " vs " << ref.result;
            EXPECT_TRUE(close(abserr, ref.abserr, 1e-15)) << abserr << " vs " << ref.abserr;
            expect_subdivision(ref, rinfo, size_t(out.nsub), 1 - 1e-12, 1 + 1e-12);
        }
        const QuadRun r = run(Integrand{ref.name, ref.p}, 0, ref.a, ref.b, ref.epsabs, ref.epsrel, ref.maxsub);
        EXPECT_EQ(r.fail.errnum, ref.ier == 6 ? 2 : ref.ier) << r.fail.message;
        const bool decides = d != decided.end();
        if (decides) { EXPECT_EQ(r.nsub(), d->second < 0 ? ref.last : d->second); }
        // To 1e-12 of max(|result|, abserr), or where the constants decide
        // within the error estimates (abserr below QUADPACK's).
        const auto agree = [&](double result, double abserr, bool below) {
            const double scale = std::fmax(std::fabs(result), abserr);
            EXPECT_LE(std::fabs(r.result - result), decides ? r.abserr + abserr : 1e-12 * scale) << r.result << " vs " << result;
            EXPECT_TRUE(decides ? !below || r.abserr <= abserr : std::fabs(r.abserr - abserr) <= 1e-12 * scale) << r.abserr << " vs " << abserr;
        };
        if (ref.ier != 6) agree(ref.result, ref.abserr, true);
        if (!decides) {
            EXPECT_EQ(r.points, ref.neval);
            expect_subdivision(ref, r.rinfo, size_t(r.nsub()), 0.5 * (1 - 1e-4), 1 + 1e-4);
        }
        if (ref.ier == 1 || ref.ier == 6 || ref.a == ref.b || ref.label == "pole off-grid") continue;
        const GslRun g = run_gsl(ref, 0);
        EXPECT_EQ(gsl_status[r.fail.errnum], g.status);
        if (!decides) { EXPECT_EQ(r.nsub(), g.size); }
        agree(g.result, g.abserr, false);
    }
}

// d01rk is GSL's qag (QUADPACK's dqage, the same keys) to 1e-12, except where
// its constants decide: the bisection limit around interior singularities and
// poles (where GSL's 51 and 61 points meet the pole at pi/4); the floor for
// "xlog p=-0.5 tight" and in abserr.  With a limit of 1 GSL may succeed.
TEST(Oracles, D01rkIsQag) {
    for (const Reference &ref : references()) {
        if (ref.ier == 6 || ref.a == ref.b) continue;
        for (int key = 1; key <= 6; ++key) {
            SCOPED_TRACE(ref.label + " key " + std::to_string(key));
            const QuadRun r = run(Integrand{ref.name, ref.p}, key, ref.a, ref.b, ref.epsabs, ref.epsrel, ref.maxsub);
            if (ref.name == "pole" || ref.name == "interior" || ref.label == "xlog p=-0.5 tight") {
                EXPECT_EQ(r.fail.errnum, ref.name == "xlog" ? 2 : 3) << r.fail.message;
                continue;
            }
            const GslRun g = run_gsl(ref, key);
            const double scale = std::fmax(std::fabs(g.result), g.abserr);
            EXPECT_EQ(gsl_status[r.fail.errnum], ref.maxsub == 1 ? GSL_EMAXITER : g.status);
            EXPECT_EQ(r.nsub(), g.size);
            EXPECT_LE(std::fabs(r.result - g.result), 1e-12 * scale) << r.result << " vs " << g.result;
            const bool floors = ref.label == "cos k=1000" || ref.label == "poly maxsub=1";
            EXPECT_TRUE(floors ? r.abserr <= g.abserr && r.abserr >= 0.4 * g.abserr
                               : std::fabs(r.abserr - g.abserr) <= 1e-12 * scale) << r.abserr << " vs " << g.abserr;
        }
    }
}

}  // namespace
