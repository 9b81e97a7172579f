// d01rjc and d01rkc: honest outputs, every outcome with its values and the
// results kept after each warning, the user's stop, and bad input.
#include <tuple>

#include "d01rj_def.hpp"
#include "d01rk_def.hpp"
#include "quad/quad_support.hpp"
#include "support/exits.hpp"

using namespace quad_test;
using kor::test::exit_reals;
using kor::test::exit_values;
namespace rj = kor::d01rj;
namespace rk = kor::d01rk;

namespace {

using V = std::vector<std::string>;

// Every case with each rule, and d01rj's again at a tighter tolerance: on
// success the tolerance is met and the exact integral lies within abserr.
TEST(Quad, HonestOnEveryReferenceCase) {
    for (const Reference &ref : references())
        for (int run_no = 0; run_no < 8 && ref.a != ref.b; ++run_no) {
            const int key = run_no % 7;  // run 7: d01rj at epsrel 1e-13
            const double epsrel = run_no == 7 ? 1e-13 : ref.epsrel;
            SCOPED_TRACE(ref.label + " key " + std::to_string(key) + " epsrel " + std::to_string(epsrel));
            const QuadRun r = run(Integrand{ref.name, ref.p}, key, ref.a, ref.b, ref.epsabs, epsrel, run_no == 7 ? 500 : ref.maxsub);
            const bool met = r.fail.code == NE_NOERROR;
            expect_honest(r, key, ref.a, ref.b, met ? ref.exact : NAN);
            EXPECT_TRUE(!met || r.abserr <= std::fmax(ref.epsabs, epsrel * std::fabs(r.result)) * (1 + 1e-15));
        }
}

// A run over [0, 1] that returns usable values, honest if exact is not NaN.
KorError usable(int key, const char *name, double p, double epsabs, double epsrel, int64_t maxsub, double exact) {
    const QuadRun r = run(Integrand{name, p}, key, 0, 1, epsabs, epsrel, maxsub);
    expect_honest(r, key, 0, 1, exact);
    return r.fail;
}

// A bad subinterval at the bisection limit around the singularity at 1/3.
void expect_around_a_third(const std::vector<double> &v) {
    EXPECT_TRUE(v.size() == 2 && v[0] < 1.0 / 3 && 1.0 / 3 < v[1] && v[1] - v[0] < 1e-13);
}

TEST(Quad, EveryOutcomeWithItsValues) {
    // Refused before f is called: result and abserr 0, the arrays untouched;
    // d01rk checks its key first.
    for (const auto &[key, maxsub] : {std::pair{0, -5}, {2, 0}, {-1, 0}, {7, 1}}) {
        const QuadRun r = run(Integrand{"exp", 1}, key, 0, 1, 0, 1e-10, maxsub);
        const V v = key == 0 ? exit_values<rj::Exit::maxsub_too_small>(rj::info, r.fail)
                    : key == 2 ? exit_values<rk::Exit::maxsub_too_small>(rk::info, r.fail)
                               : exit_values<rk::Exit::key_invalid>(rk::info, r.fail);
        EXPECT_EQ(v, V{std::to_string(key == 0 || key == 2 ? maxsub : key)});
        EXPECT_TRUE(r.calls == 0 && r.result == 0 && r.abserr == 0 && r.rinfo[0] == -7 && r.iinfo[0] == -7);
    }
    const double e1 = std::expm1(1.0), interior = 2 * (std::sqrt(1.0 / 3) + std::sqrt(2.0 / 3));
    EXPECT_EQ(exit_values<rj::Exit::max_subdivisions>(rj::info, usable(0, "xlog", -0.5, 0, 1e-10, 3, 4.0)), V{"3"});
    EXPECT_EQ(exit_values<rk::Exit::max_subdivisions>(rk::info, usable(2, "xlog", -0.5, 0, 1e-10, 5, 4.0)), V{"5"});
    EXPECT_EQ(exit_values<rj::Exit::roundoff>(rj::info, usable(0, "exp", 1, 1e-300, 0, 50, e1)), (V{"1.0e-300", "0.0e+00"}));
    EXPECT_EQ(exit_values<rk::Exit::roundoff>(rk::info, usable(1, "exp", 1, 1e-300, 0, 50, e1)), (V{"1.0e-300", "0.0e+00"}));
    // |x − 1/3|^-1 is not integrable, |x − 1/3|^-0.5 is.
    expect_around_a_third(exit_reals<rj::Exit::bad_subinterval>(rj::info, usable(0, "interior", -1, 0, 1e-10, 200, NAN)));
    expect_around_a_third(exit_reals<rk::Exit::bad_subinterval>(rk::info, usable(2, "interior", -0.5, 0, 1e-10, 200, interior)));
    EXPECT_EQ(exit_values<rj::Exit::roundoff_extrapolation>(rj::info, usable(0, "pow", -0.9, 1e-300, 0, 200, 1 / (1 - 0.9))), V{});
    // x^-0.9999 converges slowly; x^-1.5 diverges.
    EXPECT_EQ(exit_values<rj::Exit::no_convergence>(rj::info, usable(0, "pow", -0.9999, 0, 1e-10, 200, 1 / (1 - 0.9999))), V{});
    EXPECT_EQ(exit_values<rj::Exit::no_convergence>(rj::info, usable(0, "pow", -1.5, 0, 1e-10, 200, NAN)), V{});
    // Neither tolerance is checked: a NaN one is never met.
    for (int key : {0, 2})
        for (bool abs : {true, false}) {
            const KorError fail = usable(key, "exp", 1, abs ? NAN : 0, abs ? 1e-10 : NAN, 40, e1);
            const V v = key ? exit_values<rk::Exit::roundoff>(rk::info, fail) : exit_values<rj::Exit::roundoff>(rj::info, fail);
            EXPECT_EQ(v, abs ? (V{"NaN", "1.0e-10"}) : (V{"0.0e+00", "NaN"}));
        }
    // a = b: success at once, without calling f.
    for (int key : {0, 1, 6}) {
        const QuadRun r = run(Integrand{"exp", 1}, key, 0.5, 0.5, 0, 1e-10, 10);
        kor::test::expect_success(r.fail);
        EXPECT_TRUE(r.calls == 0 && r.result == 0 && r.abserr == 0);
        EXPECT_TRUE(r.rinfo == std::vector<double>(40, 0.0) && r.iinfo == std::vector<int64_t>(10, 0));
    }
}

// A negative iflag ends the run at once, result and abserr 0, the arrays the
// working state (blocks of stride maxsub) and zero elsewhere, whatever they
// held; late stops come after the ordering list stops being written in full.
TEST(Quad, UserStopEndsTheRunAtOnce) {
    for (int key : {0, 6})
        for (int64_t stop : {1, 3, 8, 15}) {
            SCOPED_TRACE("key " + std::to_string(key) + " stop " + std::to_string(stop));
            Integrand f{"xlog", -0.5, 0, 0, stop};
            const QuadRun r = run(f, key, 0, 1, 0, 1e-14, 9), z = run(f, key, 0, 1, 0, 1e-14, 9, 0.0);
            if (key) exit_values<rk::Exit::user_stop>(rk::info, r.fail);
            else exit_values<rj::Exit::user_stop>(rj::info, r.fail);
            EXPECT_TRUE(r.calls == stop && r.result == 0 && r.abserr == 0);
            EXPECT_TRUE(r.rinfo == z.rinfo && r.iinfo == z.iinfo);
            if (stop != 3) continue;  // [0, 1] is stored as subinterval 1, its error and contribution nonzero
            EXPECT_EQ(std::count(r.rinfo.begin(), r.rinfo.end(), 0.0), 33);
            EXPECT_TRUE(r.rinfo[9] == 1 && r.iinfo[0] == 1 && std::count(r.iinfo.begin(), r.iinfo.end(), 0) == 8);
        }
}

// NaN or infinite limits or values: a bounded run, its calls matching its
// subdivision, ending in success or a warning, nothing written past the arrays.
TEST(Quad, BadInputEndsWithAStatedOutcome) {
    const double inf = INFINITY, nan = NAN;
    for (const auto &[a, b, name, p] : {std::tuple{nan, 1.0, "exp", 1.0}, {0.0, nan, "exp", 1.0}, {0.0, inf, "exp", 1.0},
                                        {-1e308, 1e308, "exp", 1.0}, {0.0, 1.0, "none", 1.0}, {0.0, 1.0, "pole", 0.5}})
        for (int key : {0, 3}) {
            SCOPED_TRACE(std::string(name) + " key " + std::to_string(key));
            const QuadRun r = run(Integrand{name, p}, key, a, b, 0, 1e-10, 30);
            EXPECT_TRUE(r.nsub() >= 1 && r.nsub() <= 30 && r.calls == 2 * r.nsub() - 1);
            EXPECT_TRUE(r.fail.errnum >= 0 && r.fail.errnum <= 5 && r.fail.code != NE_BAD_PARAM) << r.fail.message;
        }
}

}  // namespace
