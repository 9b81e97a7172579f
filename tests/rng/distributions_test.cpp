// The variate routines, g05sa and g05sk among them: goodness of fit against
// Boost.Math's distribution functions (closed forms where it has none) and
// means of large samples; inversion as the documented transform of g05sa's
// uniforms; rejection streams that split over calls and meet the trial cap
// on a degenerate stream; and every exit, with x and the state untouched.
#define BOOST_MATH_DOMAIN_ERROR_POLICY ignore_error
#define BOOST_MATH_OVERFLOW_ERROR_POLICY ignore_error
#include <boost/math/distributions.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "routine_index.hpp"  // every routine's exits
#include "rng/rng_support.hpp"
#include "specfun/inverse_normal.hpp"

namespace {

using namespace kor::rng_test;
using kor::test::exit_reals;
using Call = std::function<void(int64_t n, int64_t *state, double *x, KorError *fail)>;
using Cdf = std::function<double(double)>;
namespace bm = boost::math;
constexpr double pi = 3.14159265358979323846;

State basic_state(int64_t seed) { return init(Kor_Basic, 0, {seed}); }

// Twelve seeds: each generator reads as many as it uses (ACORN's initial
// values among them, which would otherwise start at zero).
State any_state(Kor_BaseGenerator genid, int64_t seed) {
    return init(genid, 0, {seed, 7919, 104729, 1299709, 15485863, 179424673, 2038074743, 22801763489,
                           252097800623, 2760727302517, 29996224275833, 323780508946331});
}
const Kor_BaseGenerator generators[] = {Kor_Basic,          Kor_WichmannHill_I, Kor_MersenneTwister,
                                        Kor_WichmannHill_II, Kor_ACORN,         Kor_MRG32k3a};

// A basic state whose first value is X = 2x mod 2^60 (in four 15-bit
// digits): seed s starts at 4s + 2 and multiplies by 13^13 twice before the
// first value, so s = (X 13^-26 - 2)/4.  X = 2 gives u = 1 - 2^-59, which
// rounds to 1.0, and X = 2^60 - 2 gives 0.0.
State ends(double end) {
    const uint64_t a = 302875106592253u, mask = (uint64_t(1) << 60) - 1;
    uint64_t inverse = a;  // Newton's iteration doubles the correct bits
    for (int i = 0; i < 6; ++i) inverse *= 2 - a * inverse;
    const uint64_t x = end == 0.0 ? mask - 1 : 2;
    State state = basic_state(int64_t((((x * inverse * inverse) & mask) - 2) / 4));
    State probe = state;
    EXPECT_EQ(draw(probe, 1)[0], end);
    return state;
}

// ---------------------------------------------------------------------------
// Every routine, with a transform of the uniform for the inversion methods.

struct Routine {
    const char *name;
    const kor::frame::RoutineInfo &info;
    Call call;
    std::function<double(double)> transform;  // empty for rejection methods
};

// A row: name, routine, the call (n, s, x and f in scope), the transform.
#define KOR_ROUTINE(name, code, call, ...) \
    {name, kor::code::info, [](int64_t n, int64_t *s, double *x, KorError *f) { call; }, __VA_ARGS__}

const std::vector<Routine> &routines() {
    static const double dirichlet_a[3] = {0.3, 1.0, 2.5}, mix_a[3] = {1.0, 5.0, 0.2}, mix_w[4] = {0.25, 0.0, 0.75, 1.0};
    static const std::vector<Routine> all = {
        KOR_ROUTINE("uniform (0, 1)", g05sa, g05sac(n, s, x, f), [](double u) { return u; }),
        KOR_ROUTINE("normal", g05sk, g05skc(n, 3.0, 4.0, s, x, f), [](double u) { return 3.0 + 2.0 * kor::specfun::inverse_normal(u); }),
        KOR_ROUTINE("cauchy", g05sc, g05scc(n, -1.0, 0.5, s, x, f), [](double u) { return -1.0 + 0.5 * std::tan(pi * (u - 0.5)); }),
        KOR_ROUTINE("exponential", g05sf, g05sfc(n, 3.0, s, x, f), [](double u) { return -3.0 * std::log(u); }),
        // Component 1 for u <= 0.25 (v = u/0.25), component 3 above
        // (v = (u - 0.25)/0.75); component 2 has no weight.
        KOR_ROUTINE("exponential mixture", g05sg, g05sgc(n, 3, mix_a, mix_w, s, x, f),
                    [](double u) { return u <= 0.25 ? -std::log(u / 0.25) : -0.2 * std::log((u - 0.25) / 0.75); }),
        KOR_ROUTINE("mixture of one", g05sg, g05sgc(n, 1, &mix_a[1], &mix_w[3], s, x, f), [](double u) { return -5.0 * std::log(u); }),
        KOR_ROUTINE("logistic", g05sl, g05slc(n, 2.0, 1.5, s, x, f), [](double u) { return 2.0 + 1.5 * std::log(u / (1.0 - u)); }),
        KOR_ROUTINE("lognormal", g05sm, g05smc(n, -0.5, 2.0, s, x, f),
                    [](double u) { return std::exp(-0.5 + std::sqrt(2.0) * kor::specfun::inverse_normal(u)); }),
        KOR_ROUTINE("triangular", g05sp, g05spc(n, 1.0, 2.0, 5.0, s, x, f),
                    [](double u) { return u <= 0.25 ? 1.0 + std::sqrt(u * 4.0) : 5.0 - std::sqrt((1.0 - u) * 12.0); }),
        KOR_ROUTINE("uniform (a, b)", g05sq, g05sqc(n, -3.0, 4.0, s, x, f), [](double u) { return -3.0 + 7.0 * u; }),
        KOR_ROUTINE("weibull", g05ss, g05ssc(n, 2.5, 0.5, s, x, f), [](double u) { return 0.5 * std::pow(-std::log(u), 1.0 / 2.5); }),
        KOR_ROUTINE("beta BB", g05sb, g05sbc(n, 2.0, 3.0, s, x, f), {}),
        KOR_ROUTINE("beta BC", g05sb, g05sbc(n, 0.4, 3.0, s, x, f), {}),
        KOR_ROUTINE("chi-squared", g05sd, g05sdc(n, 3, s, x, f), {}),
        // n values of x hold n/3 rows; callers use multiples of 3.
        KOR_ROUTINE("dirichlet", g05se, g05sec(Kor_RowMajor, n < 0 ? n : n / 3, 3, dirichlet_a, s, x, 3, f), {}),
        KOR_ROUTINE("F", g05sh, g05shc(n, 1, 5, s, x, f), {}),
        KOR_ROUTINE("gamma", g05sj, g05sjc(n, 2.5, 1.0, s, x, f), {}),
        KOR_ROUTINE("gamma boosted", g05sj, g05sjc(n, 0.5, 1.0, s, x, f), {}),
        KOR_ROUTINE("t", g05sn, g05snc(n, 3, s, x, f), {}),
        KOR_ROUTINE("von Mises", g05sr, g05src(n, 2.0, s, x, f), {}),
    };
    return all;
}

// On every generator: an inversion method's variates are its documented
// transform of the uniforms g05sa gives from a copy of the state, one per
// variate; a rejection method's stream split over two calls is the stream
// of one call, so its state advances by exactly the uniforms used.
TEST(EveryRoutine, StreamsOnEveryGenerator) {
    for (Kor_BaseGenerator genid : generators) {
        for (const Routine &r : routines()) {
            SCOPED_TRACE(std::string(r.name) + ", generator " + std::to_string(genid));
            State state = any_state(genid, 2718), copy = state;
            Reals x(900), y(900);
            KorError fail = KOR_ERROR_INIT;
            r.call(900, state.data(), x.data(), &fail);
            kor::test::expect_success(fail);
            if (r.transform) {
                y = draw(copy, 900);
                for (size_t i = 0; i < x.size(); ++i)
                    ASSERT_NEAR(x[i], r.transform(y[i]), 1e-12 * (1.0 + std::fabs(x[i]))) << "u = " << y[i];
            } else {
                r.call(300, copy.data(), y.data(), &fail);
                r.call(600, copy.data(), y.data() + 300, &fail);
                EXPECT_EQ(x, y);
            }
            EXPECT_EQ(state, copy);
        }
    }
}

// The base generators may return exactly 0 or 1; every method meets them as
// it meets any uniform, with finite results.
TEST(EveryRoutine, EndsOfTheUniformRangeGiveFiniteVariates) {
    for (double end : {0.0, 1.0}) {
        for (const Routine &r : routines()) {
            State state = ends(end);
            Reals x(30, NAN);
            KorError fail = KOR_ERROR_INIT;
            r.call(30, state.data(), x.data(), &fail);
            kor::test::expect_success(fail);
            for (double v : x) EXPECT_TRUE(std::isfinite(v)) << r.name << " at u = " << end;
        }
    }
    // The documented values: exponential +0 at u = 1 and a·ln(1/DBL_MIN) at
    // u = 0; logistic a ∓ b·ln(1/DBL_MIN).
    const double tail = -std::log(DBL_MIN);
    double x[2];
    KorError fail = KOR_ERROR_INIT;
    for (const auto &[end, a, b] : {std::tuple{1.0, 0.0, 1.0 + 0.5 * tail}, {0.0, 2.0 * tail, 1.0 - 0.5 * tail}}) {
        State s = ends(end), t = s;
        g05sfc(1, 2.0, s.data(), x, &fail);
        g05slc(1, 1.0, 0.5, t.data(), x + 1, &fail);
        EXPECT_EQ(x[0], a);
        EXPECT_FALSE(std::signbit(x[0]));
        EXPECT_NEAR(x[1], b, 1e-12);
    }
}

// The state is checked before anything else; a bad n comes next; n = 0
// draws nothing, and then x may be null (g05se's x is counted by a formula,
// not by n, so it must always be an array).
TEST(EveryRoutine, StateAndCountExitsAndNoVariates) {
    for (const Routine &r : routines()) {
        SCOPED_TRACE(r.name);
        State state = basic_state(5);
        const State good = state;
        state[1] = 1235;
        const State damaged = state;
        Reals x(6, -7.5);
        KorError fail = KOR_ERROR_INIT;
        r.call(-3, state.data(), x.data(), &fail);
        exit_named(r.info, "state_corrupt", fail);
        EXPECT_EQ(state, damaged);
        state = good;
        r.call(-3, state.data(), x.data(), &fail);
        EXPECT_EQ(exit_named(r.info, "n_invalid", fail), std::vector<std::string>{"-3"});
        r.call(0, state.data(), &r.info == &kor::g05se::info ? x.data() : nullptr, &fail);
        kor::test::expect_success(fail);
        EXPECT_EQ(state, good);
        EXPECT_EQ(x, Reals(6, -7.5));
    }
}

// A stream that never yields an acceptable trial: on the basic generator's
// values 13^13 has order 2^57, so a leap-frog of stride 2^57 leaves stream 1
// repeating its first value, here 1.0.  Every rejection trial fails at
// u = 1 (no squeeze, logit or acceptance test holds there), and the routine
// ends with the cap instead of drawing for ever.
TEST(EveryRoutine, ADegenerateStreamMeetsTheTrialCap) {
    State constant = ends(1.0);
    leapfrog(constant, int64_t(1) << 57, 1);
    State probe = constant;
    EXPECT_EQ(draw(probe, 3000), Reals(3000, 1.0));
    for (const Routine &r : routines()) {
        if (r.transform) continue;
        State state = constant;
        Reals x(3, -7.5);
        KorError fail = KOR_ERROR_INIT;
        r.call(3, state.data(), x.data(), &fail);
        EXPECT_EQ(exit_named(r.info, "no_acceptable_trial", fail), std::vector<std::string>{"1000"}) << r.name;
        EXPECT_EQ(x, Reals(3, -7.5)) << r.name;
    }
}

// ---------------------------------------------------------------------------
// Goodness of fit

struct Fit {
    std::string name;
    Call call;
    Cdf cdf;
};

template <class Distribution>
Cdf cdf_of(Distribution d) {
    return [d](double v) { return bm::cdf(d, v); };
}

std::string label(const char *name, std::initializer_list<double> parameters) {
    std::ostringstream out;
    out << name;
    for (double p : parameters) out << " " << p;
    return out.str();
}

// F(θ) = (θ + π)/(2π) + (1/π) Σ_j (I_j(κ)/I_0(κ)) sin(jθ)/j on [-π, π].
Cdf von_mises_cdf(double kappa) {
    Reals ratio;
    for (int j = 1; j < 300; ++j) {
        ratio.push_back(std::cyl_bessel_i(double(j), kappa) / std::cyl_bessel_i(0.0, kappa));
        if (ratio.back() < 1e-18) break;
    }
    return [ratio](double t) {
        double s = (t + pi) / (2.0 * pi);
        for (size_t j = 0; j < ratio.size(); ++j) s += ratio[j] * std::sin(double(j + 1) * t) / (pi * double(j + 1));
        return s;
    };
}

// A row: its name, the call (n, s, x and e in scope) and the distribution.
#define KOR_FIT(name, call, cdf) f.push_back({name, [=](int64_t n, int64_t *s, double *x, KorError *e) { call; }, cdf})

std::vector<Fit> fits() {
    std::vector<Fit> f;
    // BB (both shapes above 1) and BC (either at most 1, in either order).
    const double beta[][2] = {{2.5, 3.5}, {1.5, 40}, {30, 1.2}, {1, 1}, {0.5, 0.5}, {0.3, 4}, {4, 0.3}, {0.05, 0.2}, {0.8, 1}};
    for (const auto &p : beta) KOR_FIT(label("beta", {p[0], p[1]}), g05sbc(n, p[0], p[1], s, x, e), cdf_of(bm::beta_distribution<>(p[0], p[1])));
    KOR_FIT("cauchy", g05scc(n, 1.0, 2.0, s, x, e), cdf_of(bm::cauchy_distribution<>(1.0, 2.0)));
    for (int64_t df : {1, 2, 3, 10, 75})
        KOR_FIT(label("chi-squared", {double(df)}), g05sdc(n, df, s, x, e), cdf_of(bm::chi_squared_distribution<>(double(df))));
    // Each Dirichlet component is beta(a_j, sum - a_j).
    static const double alpha[3] = {0.4, 1.5, 3.0};
    for (size_t j = 0; j < 3; ++j)
        KOR_FIT(label("dirichlet component", {double(j)}), Reals rows(size_t(3 * n));
                g05sec(Kor_RowMajor, n, 3, alpha, s, rows.data(), 3, e);
                for (int64_t i = 0; i < n; ++i) x[i] = rows[3 * size_t(i) + j], cdf_of(bm::beta_distribution<>(alpha[j], 4.9 - alpha[j])));
    KOR_FIT("exponential", g05sfc(n, 2.0, s, x, e), cdf_of(bm::exponential_distribution<>(0.5)));
    static const double mix_a[4] = {1.0, 5.0, 0.2, 9.0}, mix_w[4] = {0.5, 0.3, 0.2, 0.0};
    KOR_FIT("exponential mixture", g05sgc(n, 4, mix_a, mix_w, s, x, e),
            [](double v) { return 0.5 * -std::expm1(-v) + 0.3 * -std::expm1(-v / 5.0) + 0.2 * -std::expm1(-v / 0.2); });
    for (const auto &d : {std::pair<int64_t, int64_t>{1, 1}, {3, 7}, {10, 2}, {40, 60}})
        KOR_FIT(label("F", {double(d.first), double(d.second)}), g05shc(n, d.first, d.second, s, x, e),
                cdf_of(bm::fisher_f_distribution<>(double(d.first), double(d.second))));
    const double gamma[][2] = {{0.02, 1}, {0.3, 2}, {0.999, 1}, {1, 1e-3}, {2.5, 3}, {50, 1}};
    for (const auto &p : gamma) KOR_FIT(label("gamma", {p[0], p[1]}), g05sjc(n, p[0], p[1], s, x, e), cdf_of(bm::gamma_distribution<>(p[0], p[1])));
    KOR_FIT("logistic", g05slc(n, 1.5, 0.7, s, x, e), cdf_of(bm::logistic_distribution<>(1.5, 0.7)));
    KOR_FIT("lognormal", g05smc(n, 0.3, 0.5, s, x, e), cdf_of(bm::lognormal_distribution<>(0.3, std::sqrt(0.5))));
    KOR_FIT("normal", g05skc(n, -1.0, 0.25, s, x, e), cdf_of(bm::normal_distribution<>(-1.0, 0.5)));
    for (int64_t df : {1, 2, 5, 30})
        KOR_FIT(label("t", {double(df)}), g05snc(n, df, s, x, e), cdf_of(bm::students_t_distribution<>(double(df))));
    // The widest triangle's distribution function is taken on the variable
    // scaled by 1e-300, so that its width 2.5e300 stays finite.
    const double triangle[][3] = {{-1, 0.5, 3}, {0, 0, 1}, {0, 1, 1}, {-1e300, 1e300, 1.5e300}};
    for (const auto &p : triangle) {
        const double c = p[2] > 1e100 ? 1e-300 : 1.0;
        KOR_FIT(label("triangular", {p[0], p[1], p[2]}), g05spc(n, p[0], p[1], p[2], s, x, e),
                ([c, d = bm::triangular_distribution<>(p[0] * c, p[1] * c, p[2] * c)](double v) { return bm::cdf(d, v * c); }));
    }
    KOR_FIT("uniform", g05sqc(n, -2.0, 5.0, s, x, e), cdf_of(bm::uniform_distribution<>(-2.0, 5.0)));
    // Ends far apart: the width overflows, the variates must not.
    KOR_FIT("uniform, widest", g05sqc(n, -DBL_MAX, DBL_MAX, s, x, e), [](double v) { return 0.5 + 0.5 * (v / DBL_MAX); });
    for (double kappa : {0.001, 0.7, 5.0, 50.0})
        KOR_FIT(label("von Mises", {kappa}), g05src(n, kappa, s, x, e), von_mises_cdf(kappa));
    // For large κ the von Mises distribution is normal with variance 1/κ to
    // O(1/κ); the published formulas lose every digit there.
    for (double kappa : {1e8, 1e12, 1e100, 1e300})
        KOR_FIT(label("von Mises", {kappa}), g05src(n, kappa, s, x, e),
                [kappa](double v) { return bm::cdf(bm::normal_distribution<>(), v * std::sqrt(kappa)); });
    const double weibull[][2] = {{0.7, 2}, {3, 1}, {0.05, 1e-10}};
    for (const auto &p : weibull) KOR_FIT(label("weibull", {p[0], p[1]}), g05ssc(n, p[0], p[1], s, x, e), cdf_of(bm::weibull_distribution<>(p[0], p[1])));
    return f;
}

TEST(DistributionFit, EveryRoutineAndMethod) {
    constexpr int64_t n = 20000;
    const double critical = std::sqrt(-0.5 * std::log(1e-4 / 2.0)) / std::sqrt(double(n));
    int64_t seed = 11;
    for (const Fit &fit : fits()) {
        SCOPED_TRACE(fit.name);
        State state = basic_state(seed++);
        Reals x(static_cast<size_t>(n));
        KorError fail = KOR_ERROR_INIT;
        fit.call(n, state.data(), x.data(), &fail);
        kor::test::expect_success(fail);
        std::sort(x.begin(), x.end());
        double d = 0.0;
        for (size_t i = 0; i < x.size(); ++i) {
            const double f = fit.cdf(x[i]);
            ASSERT_TRUE(f >= 0.0 && f <= 1.0) << "F(" << x[i] << ") = " << f;
            d = std::max({d, f - double(i) / double(n), double(i + 1) / double(n) - f});
        }
        EXPECT_LT(d, critical);
    }
}

// A bias far below what the fits resolve (a shape off by 1%, a squeeze a
// little too wide) shows in the mean of 10^6 variates: each must lie within
// 5 standard errors of the exact mean (of cos θ for von Mises).
TEST(DistributionFit, MeansOfAMillionVariates) {
    const double i0 = std::cyl_bessel_i(0.0, 5.0), r1 = std::cyl_bessel_i(1.0, 5.0) / i0, r2 = std::cyl_bessel_i(2.0, 5.0) / i0;
    const struct {
        const char *name;
        Call call;
        double mean, variance;
    } cases[] = {
        {"gamma 1", [](int64_t n, int64_t *s, double *x, KorError *e) { g05sjc(n, 1.0, 1.0, s, x, e); }, 1.0, 1.0},
        {"gamma 0.5", [](int64_t n, int64_t *s, double *x, KorError *e) { g05sjc(n, 0.5, 1.0, s, x, e); }, 0.5, 0.5},
        {"beta BB", [](int64_t n, int64_t *s, double *x, KorError *e) { g05sbc(n, 2.0, 3.0, s, x, e); }, 0.4, 0.04},
        {"beta BC", [](int64_t n, int64_t *s, double *x, KorError *e) { g05sbc(n, 0.4, 3.0, s, x, e); }, 0.4 / 3.4, 1.2 / (3.4 * 3.4 * 4.4)},
        {"von Mises", [](int64_t n, int64_t *s, double *x, KorError *e) {
             g05src(n, 5.0, s, x, e);
             for (int64_t i = 0; i < n; ++i) x[i] = std::cos(x[i]);
         }, r1, 0.5 + 0.5 * r2 - r1 * r1},
    };
    constexpr int64_t n = 1000000;
    for (const auto &c : cases) {
        State state = basic_state(99);
        Reals x(static_cast<size_t>(n));
        KorError fail = KOR_ERROR_INIT;
        c.call(n, state.data(), x.data(), &fail);
        double sum = 0.0;
        for (double v : x) sum += v;
        EXPECT_NEAR(sum / double(n), c.mean, 5.0 * std::sqrt(c.variance / double(n))) << c.name;
    }
}

// ---------------------------------------------------------------------------
// Argument exits: which exit, with which values; x and the state untouched.

struct ExitCase {
    const char *name;
    std::function<Reals(int64_t *state, double *x, KorError *fail)> call;
    Reals values;
};

// A row: the call, then the exit's values read back as reals.
#define KOR_EXIT(routine, exit, ...)                                           \
    #routine " " #exit, [](int64_t *s, double *x, KorError *f) {               \
        __VA_ARGS__;                                                           \
        return exit_reals<kor::routine::Exit::exit>(kor::routine::info, *f);   \
    }

const double two[2] = {1.0, 2.0}, w2[2] = {0.5, 0.5};

void expect_exits(const std::vector<ExitCase> &cases) {
    for (const ExitCase &c : cases) {
        SCOPED_TRACE(c.name);
        State state = basic_state(77);
        const State before = state;
        Reals x(8, -7.5);
        KorError fail = KOR_ERROR_INIT;
        const Reals values = c.call(state.data(), x.data(), &fail);
        ASSERT_EQ(values.size(), c.values.size());
        for (size_t i = 0; i < values.size(); ++i)
            EXPECT_TRUE(values[i] == c.values[i] || (std::isnan(values[i]) && std::isnan(c.values[i])))
                << values[i] << " for " << c.values[i];
        EXPECT_EQ(state, before);
        EXPECT_EQ(x, Reals(8, -7.5));
    }
}

TEST(DistributionExits, EveryParameterExit) {
    static const double a3[3] = {1.0, -2.0, 3.0}, ok3[3] = {1.0, 2.0, 3.0}, zero[2] = {0.0, 1.0};
    static const double w3[3] = {0.5, -0.25, 0.75}, short_w[2] = {0.5, 0.49};
    expect_exits({
        {KOR_EXIT(g05sk, var_negative, g05skc(2, 0.0, -0.5, s, x, f)), {-0.5}},
        {KOR_EXIT(g05sb, a_not_positive, g05sbc(2, 0.0, 1.0, s, x, f)), {0.0}},
        {KOR_EXIT(g05sb, b_not_positive, g05sbc(2, 1.0, -0.5, s, x, f)), {-0.5}},
        {KOR_EXIT(g05sc, semiqr_negative, g05scc(2, 0.0, -1.0, s, x, f)), {-1.0}},
        {KOR_EXIT(g05sd, df_invalid, g05sdc(2, 0, s, x, f)), {0}},
        {KOR_EXIT(g05se, order_invalid, g05sec(Kor_OrderType(7), 1, 2, two, s, x, 2, f)), {}},
        {KOR_EXIT(g05se, m_invalid, g05sec(Kor_RowMajor, 1, 0, two, s, x, 2, f)), {0}},
        {KOR_EXIT(g05se, a_not_positive, g05sec(Kor_ColMajor, 1, 2, zero, s, x, 2, f)), {}},
        {KOR_EXIT(g05se, pdx_below_n, g05sec(Kor_ColMajor, 3, 2, two, s, x, 2, f)), {2, 3}},
        {KOR_EXIT(g05se, pdx_below_m, g05sec(Kor_RowMajor, 3, 2, two, s, x, 1, f)), {1, 2}},
        {KOR_EXIT(g05sf, a_not_positive, g05sfc(2, 0.0, s, x, f)), {0.0}},
        {KOR_EXIT(g05sg, nmix_invalid, g05sgc(2, 0, two, w2, s, x, f)), {0}},
        {KOR_EXIT(g05sg, a_not_positive, g05sgc(2, 3, a3, w3, s, x, f)), {1, -2.0}},  // the 0-based index
        {KOR_EXIT(g05sg, wgt_negative, g05sgc(2, 3, ok3, w3, s, x, f)), {1, -0.25}},
        {KOR_EXIT(g05sg, wgt_sum, g05sgc(2, 2, two, short_w, s, x, f)), {0.99}},
        {KOR_EXIT(g05sh, df1_invalid, g05shc(2, 0, 1, s, x, f)), {0}},
        {KOR_EXIT(g05sh, df2_invalid, g05shc(2, 1, -4, s, x, f)), {-4}},
        {KOR_EXIT(g05sj, a_not_positive, g05sjc(2, -1.0, 1.0, s, x, f)), {-1.0}},
        {KOR_EXIT(g05sj, b_not_positive, g05sjc(2, 1.0, 0.0, s, x, f)), {0.0}},
        {KOR_EXIT(g05sl, b_negative, g05slc(2, 0.0, -1e-300, s, x, f)), {-1e-300}},
        {KOR_EXIT(g05sm, xmu_too_large, g05smc(2, 710.0, 1.0, s, x, f)), {710.0}},
        {KOR_EXIT(g05sm, var_negative, g05smc(2, 0.0, -2.0, s, x, f)), {-2.0}},
        {KOR_EXIT(g05sn, df_invalid, g05snc(2, 0, s, x, f)), {0}},
        {KOR_EXIT(g05sp, xmed_below_xmin, g05spc(2, 1.0, 0.5, 2.0, s, x, f)), {0.5, 1.0}},
        {KOR_EXIT(g05sp, xmax_below_xmed, g05spc(2, 0.0, 1.5, 1.0, s, x, f)), {1.0, 1.5}},
        {KOR_EXIT(g05sq, a_above_b, g05sqc(2, 1.0, 0.25, s, x, f)), {1.0, 0.25}},
        {KOR_EXIT(g05sr, vk_invalid, g05src(2, 0.0, s, x, f)), {0.0}},
        {KOR_EXIT(g05sr, vk_invalid, g05src(2, 2e300, s, x, f)), {2e300}},
        {KOR_EXIT(g05sr, vk_invalid, g05src(2, INFINITY, s, x, f)), {INFINITY}},
        {KOR_EXIT(g05ss, a_not_positive, g05ssc(2, 0.0, 1.0, s, x, f)), {0.0}},
        {KOR_EXIT(g05ss, b_not_positive, g05ssc(2, 1.0, -3.0, s, x, f)), {-3.0}},
    });
}

// Every real argument that has a check refuses NaN.
TEST(DistributionExits, NaNFailsEveryRealCheck) {
    static const double nan_a[2] = {1.0, NAN}, nan_w[2] = {NAN, 1.0};
    expect_exits({
        {KOR_EXIT(g05sk, var_negative, g05skc(2, 0.0, NAN, s, x, f)), {NAN}},
        {KOR_EXIT(g05sb, a_not_positive, g05sbc(2, NAN, 1.0, s, x, f)), {NAN}},
        {KOR_EXIT(g05sb, b_not_positive, g05sbc(2, 1.0, NAN, s, x, f)), {NAN}},
        {KOR_EXIT(g05sc, semiqr_negative, g05scc(2, 0.0, NAN, s, x, f)), {NAN}},
        {KOR_EXIT(g05se, a_not_positive, g05sec(Kor_RowMajor, 1, 2, nan_a, s, x, 2, f)), {}},
        {KOR_EXIT(g05sf, a_not_positive, g05sfc(2, NAN, s, x, f)), {NAN}},
        {KOR_EXIT(g05sg, a_not_positive, g05sgc(2, 2, nan_a, w2, s, x, f)), {1, NAN}},
        {KOR_EXIT(g05sg, wgt_negative, g05sgc(2, 2, two, nan_w, s, x, f)), {0, NAN}},
        {KOR_EXIT(g05sj, a_not_positive, g05sjc(2, NAN, 1.0, s, x, f)), {NAN}},
        {KOR_EXIT(g05sj, b_not_positive, g05sjc(2, 1.0, NAN, s, x, f)), {NAN}},
        {KOR_EXIT(g05sl, b_negative, g05slc(2, 0.0, NAN, s, x, f)), {NAN}},
        {KOR_EXIT(g05sm, xmu_too_large, g05smc(2, NAN, 1.0, s, x, f)), {NAN}},
        {KOR_EXIT(g05sm, var_negative, g05smc(2, 0.0, NAN, s, x, f)), {NAN}},
        {KOR_EXIT(g05sp, xmed_below_xmin, g05spc(2, NAN, 0.5, 2.0, s, x, f)), {0.5, NAN}},
        {KOR_EXIT(g05sp, xmed_below_xmin, g05spc(2, 0.0, NAN, 2.0, s, x, f)), {NAN, 0.0}},
        {KOR_EXIT(g05sp, xmax_below_xmed, g05spc(2, 0.0, 0.5, NAN, s, x, f)), {NAN, 0.5}},
        {KOR_EXIT(g05sq, a_above_b, g05sqc(2, NAN, 1.0, s, x, f)), {NAN, 1.0}},
        {KOR_EXIT(g05sq, a_above_b, g05sqc(2, 0.0, NAN, s, x, f)), {0.0, NAN}},
        {KOR_EXIT(g05sr, vk_invalid, g05src(2, NAN, s, x, f)), {NAN}},
        {KOR_EXIT(g05ss, a_not_positive, g05ssc(2, NAN, 1.0, s, x, f)), {NAN}},
        {KOR_EXIT(g05ss, b_not_positive, g05ssc(2, 1.0, NAN, s, x, f)), {NAN}},
    });
}

// g05sg's element exits show the element's 0-based index in the C text and
// also its 1-based position in the Fortran lines: the one place where the
// values differ for a Fortran caller.
TEST(DistributionExits, FortranLinesCountElementsFromOne) {
    State state = basic_state(31);
    const int64_t n = 2, nmix = 3;
    const double a[3] = {1.0, 2.0, 0.0}, w[3] = {0.2, 0.3, 0.5};
    double x[2];
    int64_t ifail = -1;
    testing::internal::CaptureStdout();
    g05sgf_(&n, &nmix, a, w, state.data(), x, &ifail);
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(ifail, 3);
    EXPECT_NE(out.find("a[2] = 0.0e+00, that is a(3)"), std::string::npos) << out;
}

TEST(DistributionExits, BoundsAndWarnings) {
    // The weights may miss 1 by 10·nmix·2^-53: ten tenths sum to 1 - 2^-53;
    // with nmix = 3 a sum of 1 + 28·2^-53 is inside, 1 + 32·2^-53 outside.
    const double a10[10] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, w10[10] = {.1, .1, .1, .1, .1, .1, .1, .1, .1, .1};
    const double inside[3] = {0.5, 0.25, 0.25 + 28 * 0x1p-53}, over[3] = {0.5, 0.25, 0.25 + 31 * 0x1p-53};
    State state = basic_state(8);
    Reals x(2000);
    KorError fail = KOR_ERROR_INIT;
    g05sgc(4, 10, a10, w10, state.data(), x.data(), &fail);
    kor::test::expect_success(fail);
    g05sgc(4, 3, a10, inside, state.data(), x.data(), &fail);
    kor::test::expect_success(fail);
    g05sgc(4, 3, a10, over, state.data(), x.data(), &fail);
    EXPECT_EQ(exit_reals<kor::g05sg::Exit::wgt_sum>(kor::g05sg::info, fail), Reals{over[0] + over[1] + over[2]});
    // The largest concentration and mean of the underlying normal accepted.
    g05src(4, 1e300, state.data(), x.data(), &fail);
    kor::test::expect_success(fail);
    g05smc(4, std::log(DBL_MAX), 0.0, state.data(), x.data(), &fail);
    kor::test::expect_success(fail);
    EXPECT_TRUE(std::isfinite(x[0]));
    // Below shape 0.01 gamma warns and still returns variates: about
    // exp(-708·0.005)/Γ(1.005) ≈ 2.9% of them below DBL_MIN.
    State copy = state;
    g05sjc(2000, 0.005, 1.0, state.data(), x.data(), &fail);
    EXPECT_EQ(exit_reals<kor::g05sj::Exit::a_small>(kor::g05sj::info, fail), Reals{0.005});
    EXPECT_NE(state, copy);
    const auto small = std::count_if(x.begin(), x.end(), [](double v) { return v < DBL_MIN; });
    EXPECT_TRUE(small > 20 && small < 120) << small;
    for (double v : x) ASSERT_TRUE(v >= 0.0 && std::isfinite(v)) << v;
    g05sjc(10, 0.01, 1.0, state.data(), x.data(), &fail);
    kor::test::expect_success(fail);
}

// ---------------------------------------------------------------------------
// Degenerate parameters and extreme shapes

TEST(DistributionEdges, ZeroSpreadGivesConstantsWithoutDrawing) {
    const double one = 1.0;
    const std::pair<Call, double> cases[] = {
        {[](int64_t n, int64_t *s, double *x, KorError *f) { g05skc(n, -1.25, 0.0, s, x, f); }, -1.25},
        {[](int64_t n, int64_t *s, double *x, KorError *f) { g05slc(n, -2.5, 0.0, s, x, f); }, -2.5},
        {[](int64_t n, int64_t *s, double *x, KorError *f) { g05scc(n, 4.0, 0.0, s, x, f); }, 4.0},
        {[](int64_t n, int64_t *s, double *x, KorError *f) { g05smc(n, 1.0, 0.0, s, x, f); }, std::exp(1.0)},
        {[](int64_t n, int64_t *s, double *x, KorError *f) { g05spc(n, 3.0, 3.0, 3.0, s, x, f); }, 3.0},
        {[](int64_t n, int64_t *s, double *x, KorError *f) { g05sqc(n, -1.0, -1.0, s, x, f); }, -1.0},
        {[&](int64_t n, int64_t *s, double *x, KorError *f) { g05sec(Kor_ColMajor, n, 1, &one, s, x, n, f); }, 1.0},
    };
    for (const auto &[call, value] : cases) {
        State state = basic_state(4);
        const State before = state;
        Reals x(5);
        KorError fail = KOR_ERROR_INIT;
        call(5, state.data(), x.data(), &fail);
        kor::test::expect_success(fail);
        EXPECT_EQ(state, before) << value;
        EXPECT_EQ(x, Reals(5, value));
    }
}

// Very small beta shapes put the mass at the ends: a variate is next to 0
// with probability b/(a + b) and next to 1 otherwise, and nothing
// overflows; tiny Dirichlet parameters (gammas that underflow) still give
// points of the simplex.
TEST(DistributionEdges, TinyShapes) {
    State state = basic_state(17);
    Reals x(20000);
    KorError fail = KOR_ERROR_INIT;
    g05sbc(20000, 1e-8, 3e-8, state.data(), x.data(), &fail);
    for (double v : x) ASSERT_TRUE(v < 1e-100 || (v > 1.0 - 1e-15 && v <= 1.0)) << v;
    // P(high) = a/(a + b) = 1/4: 5000 of 20000, sd 61.
    EXPECT_NEAR(double(std::count_if(x.begin(), x.end(), [](double v) { return v > 0.5; })), 5000.0, 300.0);
    const double a[4] = {1e-3, 1e-3, 1e-3, 1e-3};
    g05sec(Kor_RowMajor, 1000, 4, a, state.data(), x.data(), 4, &fail);
    kor::test::expect_success(fail);
    for (int i = 0; i < 1000; ++i) {
        for (int j = 0; j < 4; ++j) ASSERT_TRUE(x[size_t(4 * i + j)] >= 0.0 && x[size_t(4 * i + j)] <= 1.0);
        EXPECT_NEAR(x[size_t(4 * i)] + x[size_t(4 * i + 1)] + x[size_t(4 * i + 2)] + x[size_t(4 * i + 3)], 1.0, 1e-15);
    }
}

TEST(DistributionEdges, DirichletRowAndColumnMajorHoldTheSameVariates) {
    const double a[3] = {0.7, 2.0, 0.2};
    const size_t n = 50;  // rows, stored with two words of padding after each
    State s1 = basic_state(23), s2 = s1;
    Reals rows(5 * n, -7.5), columns(3 * (n + 2), -7.5);
    KorError fail = KOR_ERROR_INIT;
    g05sec(Kor_RowMajor, int64_t(n), 3, a, s1.data(), rows.data(), 5, &fail);
    g05sec(Kor_ColMajor, int64_t(n), 3, a, s2.data(), columns.data(), int64_t(n) + 2, &fail);
    kor::test::expect_success(fail);
    EXPECT_EQ(s1, s2);
    for (size_t i = 0; i < n; ++i) {
        for (size_t j = 0; j < 5; ++j) EXPECT_EQ(rows[5 * i + j], j < 3 ? columns[j * (n + 2) + i] : -7.5) << i << " " << j;
        EXPECT_NEAR(rows[5 * i] + rows[5 * i + 1] + rows[5 * i + 2], 1.0, 4e-16) << i;
    }
    for (size_t j = 0; j < 3; ++j) EXPECT_EQ(columns[j * (n + 2) + n] + columns[j * (n + 2) + n + 1], -15.0);  // padding
}

}  // namespace
