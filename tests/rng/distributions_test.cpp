// The g05s variate routines beyond the uniform and the normal.
//
// Sources of the expected answers:
// - goodness of fit: Kolmogorov–Smirnov distance of 20000 variates (fixed
//   seed, so deterministic) from the exact distribution function, computed
//   here independently: the regularised incomplete gamma and beta functions
//   by their series and continued fractions (checked below against closed
//   forms), the von Mises integral by Gauss–Legendre quadrature (checked
//   against I0), and closed forms for the rest.  The critical distance is
//   the asymptotic one at significance 1e-4: sqrt(ln(2/1e-4)/2)/sqrt(n).
// - inversion: the documented transform applied to the uniforms g05sa
//   returns from a copy of the state, which must end where the routine
//   left its own.
// - rejection: a stream split over two calls equals the stream of one call,
//   which holds only if the state advances by exactly the uniforms used.
// - exits: the texts of the definitions, with x and the state untouched.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "g05se_def.hpp"
#include "g05sg_def.hpp"
#include "kor.h"
#include "rng/rng_support.hpp"
#include "specfun/inverse_normal.hpp"

namespace {

using kor::rng_test::corrupt_message;
using kor::rng_test::State;
constexpr double pi = 3.14159265358979323846;

// An initialised state of the given generator, or an empty one when that
// generator cannot be initialised (not yet available).  Twelve seeds: the
// basic generator reads the first, the others as many as they use (ACORN's
// initial values among them, which would otherwise start at zero).
State make_state(Kor_BaseGenerator genid, int64_t seed) {
    const int64_t seeds[12] = {seed, 7919, 104729, 1299709, 15485863, 179424673,
                               2038074743, 22801763489, 252097800623, 2760727302517,
                               29996224275833, 323780508946331};
    KorError fail = KOR_ERROR_INIT;
    int64_t lstate = 0;
    g05kfc(genid, 0, seeds, 12, nullptr, &lstate, &fail);
    if (fail.code != NE_NOERROR || lstate <= 0) return {};
    State state(static_cast<size_t>(lstate));
    g05kfc(genid, 0, seeds, 12, state.data(), &lstate, &fail);
    if (fail.code != NE_NOERROR) return {};
    return state;
}

State basic_state(int64_t seed) {
    State state = make_state(Kor_Basic, seed);
    EXPECT_FALSE(state.empty());
    return state;
}

// The generators that initialise and give a plausible uniform stream (a
// generator still being written must not hang the rejection methods here),
// with their names for traces.
std::vector<std::pair<Kor_BaseGenerator, const char *>> generators() {
    const std::pair<Kor_BaseGenerator, const char *> all[] = {
        {Kor_Basic, "basic"},           {Kor_WichmannHill_I, "Wichmann-Hill I"},
        {Kor_MersenneTwister, "Mersenne Twister"}, {Kor_WichmannHill_II, "Wichmann-Hill II"},
        {Kor_ACORN, "ACORN"},           {Kor_MRG32k3a, "MRG32k3a"}};
    std::vector<std::pair<Kor_BaseGenerator, const char *>> found;
    for (const auto &g : all) {
        State state = make_state(g.first, 4242);
        if (state.empty()) continue;
        std::vector<double> u(1000);
        KorError fail = KOR_ERROR_INIT;
        g05sac(1000, state.data(), u.data(), &fail);
        const double mean = std::accumulate(u.begin(), u.end(), 0.0) / 1000.0;
        const bool inside = std::all_of(u.begin(), u.end(), [](double v) { return v >= 0.0 && v <= 1.0; });
        if (fail.code == NE_NOERROR && inside && std::fabs(mean - 0.5) < 0.05) found.push_back(g);
    }
    return found;
}

// ---------------------------------------------------------------------------
// Independent distribution functions

// Regularised lower incomplete gamma P(a, x): the power series for
// x < a + 1, else 1 - Q with Q by Legendre's continued fraction (modified
// Lentz), as in Numerical Recipes' gser/gcf.
double gamma_p(double a, double x) {
    if (x <= 0.0) return 0.0;
    if (std::isinf(x)) return 1.0;
    const double front = std::exp(-x + a * std::log(x) - std::lgamma(a));
    if (x < a + 1.0) {
        double term = 1.0 / a, sum = term;
        for (int k = 1; k < 100000; ++k) {
            term *= x / (a + k);
            sum += term;
            if (std::fabs(term) < std::fabs(sum) * 1e-17) break;
        }
        return sum * front;
    }
    const double tiny = 1e-300;
    double b = x + 1.0 - a, c = 1.0 / tiny, d = 1.0 / b, h = d;
    for (int i = 1; i < 100000; ++i) {
        const double an = -i * (i - a);
        b += 2.0;
        d = an * d + b;
        if (std::fabs(d) < tiny) d = tiny;
        c = b + an / c;
        if (std::fabs(c) < tiny) c = tiny;
        d = 1.0 / d;
        const double delta = d * c;
        h *= delta;
        if (std::fabs(delta - 1.0) < 1e-16) break;
    }
    return 1.0 - front * h;
}

// The continued fraction of I_x(a, b) (DLMF 8.17.22), modified Lentz.
double beta_fraction(double a, double b, double x) {
    const double tiny = 1e-300;
    double c = 1.0, d = 1.0 - (a + b) * x / (a + 1.0);
    if (std::fabs(d) < tiny) d = tiny;
    d = 1.0 / d;
    double h = d;
    for (int m = 1; m < 100000; ++m) {
        const double m2 = 2.0 * m;
        double an = m * (b - m) * x / ((a + m2 - 1.0) * (a + m2));
        d = 1.0 + an * d;
        if (std::fabs(d) < tiny) d = tiny;
        c = 1.0 + an / c;
        if (std::fabs(c) < tiny) c = tiny;
        d = 1.0 / d;
        h *= d * c;
        an = -(a + m) * (a + b + m) * x / ((a + m2) * (a + m2 + 1.0));
        d = 1.0 + an * d;
        if (std::fabs(d) < tiny) d = tiny;
        c = 1.0 + an / c;
        if (std::fabs(c) < tiny) c = tiny;
        d = 1.0 / d;
        const double delta = d * c;
        h *= delta;
        if (std::fabs(delta - 1.0) < 1e-16) break;
    }
    return h;
}

// Regularised incomplete beta I_x(a, b), with 1 - x given separately so
// that callers who know it exactly keep its accuracy.
double beta_i(double a, double b, double x, double one_minus_x) {
    if (x <= 0.0) return 0.0;
    if (one_minus_x <= 0.0) return 1.0;
    const double log_beta = std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b);
    if (x < (a + 1.0) / (a + b + 2.0))
        return std::exp(a * std::log(x) + b * std::log(one_minus_x) - log_beta) * beta_fraction(a, b, x) / a;
    return 1.0 - std::exp(a * std::log(x) + b * std::log(one_minus_x) - log_beta) *
                     beta_fraction(b, a, one_minus_x) / b;
}
double beta_i(double a, double b, double x) { return beta_i(a, b, x, 1.0 - x); }

double normal_cdf(double z) { return 0.5 * std::erfc(-z / std::sqrt(2.0)); }

double chi_sq_cdf(double df, double x) { return gamma_p(0.5 * df, 0.5 * x); }

double f_cdf(double d1, double d2, double x) {
    if (x <= 0.0) return 0.0;
    if (std::isinf(x)) return 1.0;
    return beta_i(0.5 * d1, 0.5 * d2, d1 * x / (d1 * x + d2), d2 / (d1 * x + d2));
}

double t_cdf(double df, double t) {
    if (std::isinf(t)) return t > 0 ? 1.0 : 0.0;
    const double tail = 0.5 * beta_i(0.5 * df, 0.5, df / (df + t * t), t * t / (df + t * t));
    return t > 0 ? 1.0 - tail : tail;
}

// The von Mises distribution function on [-π, π]: the density
// exp(κ(cos t - 1)) integrated panel by panel with 5-point Gauss–Legendre,
// the partial panel up to θ likewise, divided by the whole integral.
class VonMisesCdf {
public:
    explicit VonMisesCdf(double kappa, int panels = 20000)
        : kappa_(kappa), width_(2.0 * pi / panels), cumulative_(size_t(panels) + 1, 0.0) {
        for (int k = 0; k < panels; ++k)
            cumulative_[size_t(k) + 1] = cumulative_[size_t(k)] + integral(-pi + k * width_, -pi + (k + 1) * width_);
        total_ = cumulative_.back();
    }
    // ∫ exp(κ cos t) dt over [-π, π], for the check against 2π I0(κ).
    double total_scaled() const { return total_ * std::exp(kappa_); }
    double operator()(double theta) const {
        if (theta <= -pi) return 0.0;
        if (theta >= pi) return 1.0;
        const size_t k = std::min(cumulative_.size() - 2, size_t((theta + pi) / width_));
        return (cumulative_[k] + integral(-pi + double(k) * width_, theta)) / total_;
    }

private:
    double integral(double lo, double hi) const {
        static const double nodes[5] = {0.0, 0.5384693101056831, -0.5384693101056831, 0.9061798459386640,
                                        -0.9061798459386640};
        static const double weights[5] = {0.5688888888888889, 0.4786286704993665, 0.4786286704993665,
                                          0.2369268850561891, 0.2369268850561891};
        const double mid = 0.5 * (lo + hi), half = 0.5 * (hi - lo);
        double s = 0.0;
        for (int i = 0; i < 5; ++i) s += weights[i] * std::exp(kappa_ * (std::cos(mid + half * nodes[i]) - 1.0));
        return s * half;
    }
    double kappa_, width_, total_ = 0.0;
    std::vector<double> cumulative_;
};

// ---------------------------------------------------------------------------
// Kolmogorov–Smirnov

constexpr int64_t fit_n = 20000;

double ks_critical(size_t n) { return std::sqrt(-0.5 * std::log(1e-4 / 2.0)) / std::sqrt(double(n)); }

double ks_distance(std::vector<double> x, const std::function<double(double)> &cdf) {
    std::sort(x.begin(), x.end());
    const double n = double(x.size());
    double d = 0.0;
    for (size_t i = 0; i < x.size(); ++i) {
        const double f = cdf(x[i]);
        if (!(f >= 0.0 && f <= 1.0)) return 1.0;  // a broken oracle must not pass
        d = std::max({d, f - double(i) / n, double(i + 1) / n - f});
    }
    return d;
}

#define EXPECT_FITS(sample, cdf, label)                                                         \
    do {                                                                                        \
        const std::vector<double> &s_ = (sample);                                               \
        for (double v_ : s_) ASSERT_FALSE(std::isnan(v_)) << label;                             \
        const double d_ = ks_distance(s_, cdf);                                                 \
        EXPECT_LT(d_, ks_critical(s_.size())) << label << ": KS distance " << d_;               \
    } while (0)

// n variates from a routine's C interface with a fresh basic state.
template <class Call>
std::vector<double> draw(int64_t seed, Call call, int64_t n = fit_n) {
    State state = basic_state(seed);
    std::vector<double> x(static_cast<size_t>(n));
    KorError fail = KOR_ERROR_INIT;
    call(n, state.data(), x.data(), &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    return x;
}

// ---------------------------------------------------------------------------

TEST(DistributionOracle, IncompleteGammaAndBetaMatchClosedForms) {
    for (double x : {0.01, 0.3, 1.0, 2.5, 7.0, 30.0}) {
        EXPECT_NEAR(gamma_p(1.0, x), -std::expm1(-x), 1e-14) << x;
        EXPECT_NEAR(gamma_p(0.5, x), std::erf(std::sqrt(x)), 1e-14) << x;
        EXPECT_NEAR(gamma_p(3.0, x), 1.0 - std::exp(-x) * (1.0 + x + 0.5 * x * x), 1e-14) << x;
    }
    for (double x : {0.001, 0.1, 0.37, 0.5, 0.8, 0.999}) {
        EXPECT_NEAR(beta_i(2.7, 1.0, x), std::pow(x, 2.7), 1e-14) << x;
        EXPECT_NEAR(beta_i(1.0, 0.3, x), 1.0 - std::pow(1.0 - x, 0.3), 1e-14) << x;
        EXPECT_NEAR(beta_i(0.5, 0.5, x), 2.0 / pi * std::asin(std::sqrt(x)), 1e-14) << x;
        // I_x(2, 3) = P(at least 2 successes in 4 trials of probability x).
        const double y = 1.0 - x;
        EXPECT_NEAR(beta_i(2.0, 3.0, x), 6 * x * x * y * y + 4 * x * x * x * y + x * x * x * x, 1e-14) << x;
    }
    for (double a : {0.05, 0.7, 3.0, 40.0}) EXPECT_NEAR(beta_i(a, a, 0.5), 0.5, 1e-13) << a;
    // Student's t with 1 degree of freedom is Cauchy; with 2 it has a closed form.
    for (double t : {-30.0, -1.0, -0.2, 0.0, 0.4, 2.0, 15.0}) {
        EXPECT_NEAR(t_cdf(1.0, t), 0.5 + std::atan(t) / pi, 1e-14) << t;
        EXPECT_NEAR(t_cdf(2.0, t), 0.5 + t / (2.0 * std::sqrt(2.0 + t * t)), 1e-14) << t;
    }
    // F(2, 2) has distribution function x/(1 + x).
    for (double x : {0.1, 1.0, 4.0}) EXPECT_NEAR(f_cdf(2.0, 2.0, x), x / (1.0 + x), 1e-14) << x;
}

TEST(DistributionOracle, VonMisesIntegralMatchesBessel) {
    for (double kappa : {0.001, 0.7, 5.0, 50.0}) {
        const VonMisesCdf cdf(kappa);
        EXPECT_NEAR(cdf.total_scaled() / (2.0 * pi * std::cyl_bessel_i(0.0, kappa)), 1.0, 1e-12) << kappa;
        EXPECT_NEAR(cdf(0.0), 0.5, 1e-13);
        EXPECT_NEAR(cdf(-1.0) + cdf(1.0), 1.0, 1e-13);
    }
}

// ---------------------------------------------------------------------------
// Goodness of fit, every routine

TEST(DistributionFit, Beta) {
    // BB (both shapes above 1), BC (one or both at most 1, either order).
    const double shapes[][2] = {{2.5, 3.5}, {1.5, 40.0}, {30.0, 1.2}, {1.0, 1.0}, {0.5, 0.5},
                                {0.3, 4.0}, {4.0, 0.3}, {0.05, 0.2}, {0.8, 1.0}};
    int64_t seed = 11;
    for (const auto &s : shapes) {
        const double a = s[0], b = s[1];
        const auto x = draw(seed++, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05sbc(n, a, b, st, v, f); });
        for (double v : x) ASSERT_TRUE(v >= 0.0 && v <= 1.0) << v;
        EXPECT_FITS(x, [&](double v) { return beta_i(a, b, v); }, "beta " << a << " " << b);
    }
}

TEST(DistributionFit, Cauchy) {
    const auto x = draw(21, [](int64_t n, int64_t *st, double *v, KorError *f) { g05scc(n, 1.0, 2.0, st, v, f); });
    EXPECT_FITS(x, [](double v) { return 0.5 + std::atan((v - 1.0) / 2.0) / pi; }, "cauchy");
}

TEST(DistributionFit, ChiSquared) {
    int64_t seed = 31;
    for (int64_t df : {1, 2, 3, 10, 75}) {
        const auto x = draw(seed++, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05sdc(n, df, st, v, f); });
        EXPECT_FITS(x, [&](double v) { return chi_sq_cdf(double(df), v); }, "chi-squared " << df);
    }
}

TEST(DistributionFit, DirichletMarginalsAreBeta) {
    const double a[3] = {0.4, 1.5, 3.0};
    const double total = 4.9;
    State state = basic_state(41);
    std::vector<double> x(size_t(fit_n) * 3);
    KorError fail = KOR_ERROR_INIT;
    g05sec(Kor_RowMajor, fit_n, 3, a, state.data(), x.data(), 3, &fail);
    ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
    for (int64_t i = 0; i < fit_n; ++i) {
        const double *row = &x[size_t(i) * 3];
        EXPECT_NEAR(row[0] + row[1] + row[2], 1.0, 4e-16) << i;
        for (int j = 0; j < 3; ++j) ASSERT_TRUE(row[j] >= 0.0 && row[j] <= 1.0);
    }
    for (int j = 0; j < 3; ++j) {
        std::vector<double> component(static_cast<size_t>(fit_n));
        for (int64_t i = 0; i < fit_n; ++i) component[size_t(i)] = x[size_t(i) * 3 + size_t(j)];
        EXPECT_FITS(component, [&](double v) { return beta_i(a[j], total - a[j], v); }, "dirichlet component " << j);
    }
}

TEST(DistributionFit, Exponential) {
    const auto x = draw(51, [](int64_t n, int64_t *st, double *v, KorError *f) { g05sfc(n, 2.0, st, v, f); });
    EXPECT_FITS(x, [](double v) { return -std::expm1(-v / 2.0); }, "exponential");
}

TEST(DistributionFit, ExponentialMixture) {
    const double a[4] = {1.0, 5.0, 0.2, 9.0}, w[4] = {0.5, 0.3, 0.2, 0.0};
    const auto x = draw(61, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05sgc(n, 4, a, w, st, v, f); });
    EXPECT_FITS(x, [&](double v) {
        double s = 0;
        for (int j = 0; j < 4; ++j) s += w[j] * -std::expm1(-v / a[j]);
        return s;
    }, "exponential mixture");
}

TEST(DistributionFit, F) {
    const int64_t dfs[][2] = {{1, 1}, {3, 7}, {10, 2}, {40, 60}};
    int64_t seed = 71;
    for (const auto &d : dfs) {
        const auto x = draw(seed++, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05shc(n, d[0], d[1], st, v, f); });
        EXPECT_FITS(x, [&](double v) { return f_cdf(double(d[0]), double(d[1]), v); }, "F " << d[0] << " " << d[1]);
    }
}

TEST(DistributionFit, Gamma) {
    const double cases[][2] = {{0.02, 1.0}, {0.3, 2.0}, {0.999, 1.0}, {1.0, 0.5}, {2.5, 3.0}, {50.0, 1.0}};
    int64_t seed = 81;
    for (const auto &c : cases) {
        const double a = c[0], b = c[1];
        const auto x = draw(seed++, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05sjc(n, a, b, st, v, f); });
        for (double v : x) ASSERT_GE(v, 0.0);
        EXPECT_FITS(x, [&](double v) { return gamma_p(a, v / b); }, "gamma " << a << " " << b);
    }
}

TEST(DistributionFit, Logistic) {
    const auto x = draw(91, [](int64_t n, int64_t *st, double *v, KorError *f) { g05slc(n, 1.5, 0.7, st, v, f); });
    EXPECT_FITS(x, [](double v) { return 1.0 / (1.0 + std::exp(-(v - 1.5) / 0.7)); }, "logistic");
}

TEST(DistributionFit, Lognormal) {
    const auto x = draw(101, [](int64_t n, int64_t *st, double *v, KorError *f) { g05smc(n, 0.3, 0.5, st, v, f); });
    EXPECT_FITS(x, [](double v) { return v <= 0 ? 0.0 : normal_cdf((std::log(v) - 0.3) / std::sqrt(0.5)); }, "lognormal");
}

TEST(DistributionFit, StudentsT) {
    int64_t seed = 111;
    for (int64_t df : {1, 2, 5, 30}) {
        const auto x = draw(seed++, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05snc(n, df, st, v, f); });
        EXPECT_FITS(x, [&](double v) { return t_cdf(double(df), v); }, "t " << df);
    }
}

double triangular_cdf(double lo, double mode, double hi, double v) {
    if (v <= lo) return 0.0;
    if (v >= hi) return 1.0;
    if (v <= mode) return (v - lo) * (v - lo) / ((hi - lo) * (mode - lo));
    return 1.0 - (hi - v) * (hi - v) / ((hi - lo) * (hi - mode));
}

TEST(DistributionFit, Triangular) {
    const double cases[][3] = {{-1.0, 0.5, 3.0}, {0.0, 0.0, 1.0}, {0.0, 1.0, 1.0}, {-1e300, 1e300, 1.5e300}};
    int64_t seed = 121;
    for (const auto &c : cases) {
        const auto x = draw(seed++, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05spc(n, c[0], c[1], c[2], st, v, f); });
        for (double v : x) ASSERT_TRUE(v >= c[0] && v <= c[2]) << v;
        // The distribution function scaled so the width 2.5e300 stays finite.
        const double s = c[2] > 1e100 ? 1e-300 : 1.0;
        EXPECT_FITS(x, [&](double v) { return triangular_cdf(c[0] * s, c[1] * s, c[2] * s, v * s); },
                    "triangular " << c[0] << " " << c[1] << " " << c[2]);
    }
}

TEST(DistributionFit, Uniform) {
    const auto x = draw(131, [](int64_t n, int64_t *st, double *v, KorError *f) { g05sqc(n, -2.0, 5.0, st, v, f); });
    EXPECT_FITS(x, [](double v) { return std::min(1.0, std::max(0.0, (v + 2.0) / 7.0)); }, "uniform");
    // Ends far apart: the width overflows, the variates must not.
    const auto wide = draw(132, [](int64_t n, int64_t *st, double *v, KorError *f) { g05sqc(n, -DBL_MAX, DBL_MAX, st, v, f); });
    EXPECT_FITS(wide, [](double v) { return 0.5 + 0.5 * (v / DBL_MAX); }, "uniform, widest");
}

TEST(DistributionFit, VonMises) {
    int64_t seed = 141;
    for (double kappa : {0.001, 0.7, 5.0, 50.0}) {
        const auto x = draw(seed++, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05src(n, kappa, st, v, f); });
        for (double v : x) ASSERT_TRUE(v >= -pi && v <= pi) << v;
        const VonMisesCdf cdf(kappa);
        EXPECT_FITS(x, cdf, "von Mises " << kappa);
    }
}

// For large κ the von Mises distribution is normal with variance 1/κ to
// O(1/κ); the published formulas lose every digit there, so this tests the
// cancellation-free form up to the largest κ accepted.
TEST(DistributionFit, VonMisesLargeConcentrationIsNormal) {
    int64_t seed = 151;
    for (double kappa : {1e8, 1e12, 1e100, 1e300}) {
        auto x = draw(seed++, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05src(n, kappa, st, v, f); });
        for (double &v : x) v *= std::sqrt(kappa);
        EXPECT_FITS(x, normal_cdf, "von Mises " << kappa);
    }
}

TEST(DistributionFit, Weibull) {
    const double cases[][2] = {{0.7, 2.0}, {3.0, 1.0}, {0.05, 1e-10}};
    int64_t seed = 161;
    for (const auto &c : cases) {
        const double a = c[0], b = c[1];
        const auto x = draw(seed++, [&](int64_t n, int64_t *st, double *v, KorError *f) { g05ssc(n, a, b, st, v, f); });
        EXPECT_FITS(x, [&](double v) { return v <= 0 ? 0.0 : -std::expm1(-std::exp(a * (std::log(v) - std::log(b)))); },
                    "weibull " << a << " " << b);
    }
}

// ---------------------------------------------------------------------------
// Inversion: one uniform per variate, and the documented transform of it.

struct Inversion {
    const char *name;
    std::function<void(int64_t n, int64_t *state, double *x, KorError *fail)> call;
    std::function<double(double u)> transform;
};

std::vector<Inversion> inversions() {
    static const double mix_a[3] = {1.0, 5.0, 0.2}, mix_w[3] = {0.25, 0.0, 0.75};
    return {
        {"cauchy", [](int64_t n, int64_t *s, double *x, KorError *f) { g05scc(n, -1.0, 0.5, s, x, f); },
         [](double u) { return -1.0 + 0.5 * std::tan(pi * (u - 0.5)); }},
        {"exponential", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sfc(n, 3.0, s, x, f); },
         [](double u) { return -3.0 * std::log(u); }},
        // Component 1 for u <= 0.25 (v = u/0.25), component 3 above
        // (v = (u - 0.25)/0.75); component 2 has no weight.
        {"exponential mixture", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sgc(n, 3, mix_a, mix_w, s, x, f); },
         [](double u) { return u <= 0.25 ? -1.0 * std::log(u / 0.25) : -0.2 * std::log((u - 0.25) / 0.75); }},
        {"logistic", [](int64_t n, int64_t *s, double *x, KorError *f) { g05slc(n, 2.0, 1.5, s, x, f); },
         [](double u) { return 2.0 + 1.5 * std::log(u / (1.0 - u)); }},
        {"lognormal", [](int64_t n, int64_t *s, double *x, KorError *f) { g05smc(n, -0.5, 2.0, s, x, f); },
         [](double u) { return std::exp(-0.5 + std::sqrt(2.0) * kor::specfun::inverse_normal(u)); }},
        {"triangular", [](int64_t n, int64_t *s, double *x, KorError *f) { g05spc(n, 1.0, 2.0, 5.0, s, x, f); },
         [](double u) { return u <= 0.25 ? 1.0 + std::sqrt(u * 4.0 * 1.0) : 5.0 - std::sqrt((1.0 - u) * 4.0 * 3.0); }},
        {"uniform", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sqc(n, -3.0, 4.0, s, x, f); },
         [](double u) { return -3.0 + 7.0 * u; }},
        {"weibull", [](int64_t n, int64_t *s, double *x, KorError *f) { g05ssc(n, 2.5, 0.5, s, x, f); },
         [](double u) { return 0.5 * std::pow(-std::log(u), 1.0 / 2.5); }},
    };
}

TEST(DistributionInversion, OneUniformPerVariateThroughTheTransform) {
    for (const auto &[genid, generator] : generators()) {
        for (const Inversion &inv : inversions()) {
            SCOPED_TRACE(std::string(inv.name) + ", " + generator);
            State state = make_state(genid, 2718), copy = state;
            std::vector<double> x(1000), u(1000);
            KorError fail = KOR_ERROR_INIT;
            inv.call(1000, state.data(), x.data(), &fail);
            ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
            g05sac(1000, copy.data(), u.data(), &fail);
            EXPECT_EQ(state, copy) << "the state must advance by one value per variate";
            for (size_t i = 0; i < x.size(); ++i) {
                const double expected = inv.transform(u[i]);
                ASSERT_NEAR(x[i], expected, 1e-12 * (1.0 + std::fabs(expected))) << "u = " << u[i];
            }
        }
    }
}

TEST(DistributionInversion, MixtureOfOneIsTheExponential) {
    const double a = 1.75, w = 1.0;
    State s1 = basic_state(3), s2 = s1;
    std::vector<double> x1(500), x2(500);
    KorError fail = KOR_ERROR_INIT;
    g05sgc(500, 1, &a, &w, s1.data(), x1.data(), &fail);
    g05sfc(500, a, s2.data(), x2.data(), &fail);
    EXPECT_EQ(x1, x2);
    EXPECT_EQ(s1, s2);
}

// ---------------------------------------------------------------------------
// Every routine: a stream split over two calls is the stream of one call.

struct Routine {
    const char *name;
    std::function<void(int64_t n, int64_t *state, double *x, KorError *fail)> call;
};

std::vector<Routine> routines() {
    static const double dirichlet_a[3] = {0.3, 1.0, 2.5};
    static const double mix_a[2] = {1.0, 4.0}, mix_w[2] = {0.4, 0.6};
    return {
        {"beta BB", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sbc(n, 2.0, 3.0, s, x, f); }},
        {"beta BC", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sbc(n, 0.4, 3.0, s, x, f); }},
        {"cauchy", [](int64_t n, int64_t *s, double *x, KorError *f) { g05scc(n, 0.0, 1.0, s, x, f); }},
        {"chi-squared", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sdc(n, 3, s, x, f); }},
        {"dirichlet", [](int64_t n, int64_t *s, double *x, KorError *f) {
             // n values of x hold n/3 rows; callers below use multiples of 3.
             g05sec(Kor_RowMajor, n / 3, 3, dirichlet_a, s, x, 3, f);
         }},
        {"exponential", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sfc(n, 1.0, s, x, f); }},
        {"exponential mixture", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sgc(n, 2, mix_a, mix_w, s, x, f); }},
        {"F", [](int64_t n, int64_t *s, double *x, KorError *f) { g05shc(n, 1, 5, s, x, f); }},
        {"gamma", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sjc(n, 2.5, 1.0, s, x, f); }},
        {"gamma boosted", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sjc(n, 0.5, 1.0, s, x, f); }},
        {"logistic", [](int64_t n, int64_t *s, double *x, KorError *f) { g05slc(n, 0.0, 1.0, s, x, f); }},
        {"lognormal", [](int64_t n, int64_t *s, double *x, KorError *f) { g05smc(n, 0.0, 1.0, s, x, f); }},
        {"t", [](int64_t n, int64_t *s, double *x, KorError *f) { g05snc(n, 3, s, x, f); }},
        {"triangular", [](int64_t n, int64_t *s, double *x, KorError *f) { g05spc(n, 0.0, 0.3, 1.0, s, x, f); }},
        {"uniform", [](int64_t n, int64_t *s, double *x, KorError *f) { g05sqc(n, 0.0, 2.0, s, x, f); }},
        {"von Mises", [](int64_t n, int64_t *s, double *x, KorError *f) { g05src(n, 2.0, s, x, f); }},
        {"weibull", [](int64_t n, int64_t *s, double *x, KorError *f) { g05ssc(n, 1.5, 1.0, s, x, f); }},
    };
}

// A basic state whose next uniform is exactly `end` (0.0 or 1.0).  The
// generator keeps X = 2x mod 2^60 in four 15-bit digits at state[4..7] and
// multiplies by 13^13 before converting; X = 2 converts to 1 - 2^-59, which
// rounds to 1.0, and X = 2^60 - 2 to 0.0.  So the stored X is the wanted one
// times the inverse of 13^13 mod 2^60.
State state_before(double end) {
    State state = basic_state(1);
    const uint64_t a = 302875106592253u, mask = (uint64_t(1) << 60) - 1;
    uint64_t inverse = a;  // Newton's iteration doubles the correct bits
    for (int i = 0; i < 6; ++i) inverse *= 2 - a * inverse;
    const uint64_t wanted = end == 0.0 ? mask - 1 : 2;
    const uint64_t stored = (wanted * inverse) & mask;
    for (int i = 0; i < 4; ++i) state[size_t(4 + i)] = int64_t((stored >> (15 * i)) & 0x7fff);
    return state;
}

TEST(DistributionInversion, EndsOfTheUniformRangeStayFinite) {
    for (double end : {0.0, 1.0}) {
        State probe = state_before(end);
        double u = -1;
        KorError fail = KOR_ERROR_INIT;
        g05sac(1, probe.data(), &u, &fail);
        ASSERT_EQ(u, end) << "the crafted state must deliver the end";
        for (const Inversion &inv : inversions()) {
            State state = state_before(end);
            double x = NAN;
            inv.call(1, state.data(), &x, &fail);
            EXPECT_EQ(fail.code, NE_NOERROR);
            EXPECT_TRUE(std::isfinite(x)) << inv.name << " at u = " << end << ": " << x;
        }
    }
    // The documented values at the ends: exponential 0 at u = 1 and
    // a·ln(1/DBL_MIN) at u = 0; Weibull likewise; logistic a ∓ b·ln(1/DBL_MIN).
    const double tail = -std::log(DBL_MIN);
    double x;
    KorError fail = KOR_ERROR_INIT;
    State s = state_before(1.0);
    g05sfc(1, 2.0, s.data(), &x, &fail);
    EXPECT_EQ(x, 0.0);
    EXPECT_FALSE(std::signbit(x));
    s = state_before(0.0);
    g05sfc(1, 2.0, s.data(), &x, &fail);
    EXPECT_NEAR(x, 2.0 * tail, 1e-12);
    s = state_before(0.0);
    g05slc(1, 1.0, 0.5, s.data(), &x, &fail);
    EXPECT_NEAR(x, 1.0 - 0.5 * tail, 1e-12);
    s = state_before(1.0);
    g05slc(1, 1.0, 0.5, s.data(), &x, &fail);
    EXPECT_NEAR(x, 1.0 + 0.5 * tail, 1e-12);
    s = state_before(1.0);
    g05ssc(1, 2.0, 3.0, s.data(), &x, &fail);
    EXPECT_EQ(x, 0.0);
}

// Rejection methods meet the ends as well, as any uniform of a trial.
TEST(DistributionStream, EndsOfTheUniformRangeInEveryRoutine) {
    for (double end : {0.0, 1.0}) {
        for (const Routine &r : routines()) {
            State state = state_before(end);
            std::vector<double> x(30, NAN);
            KorError fail = KOR_ERROR_INIT;
            r.call(30, state.data(), x.data(), &fail);
            EXPECT_EQ(fail.code, NE_NOERROR) << r.name;
            for (double v : x) EXPECT_FALSE(std::isnan(v)) << r.name << " at u = " << end;
        }
    }
}

TEST(DistributionStream, SplitCallsContinueTheStream) {
    for (const auto &[genid, generator] : generators()) {
        for (const Routine &r : routines()) {
            SCOPED_TRACE(std::string(r.name) + ", " + generator);
            State whole = make_state(genid, 1618), split = whole;
            std::vector<double> one(900), two(900);
            KorError fail = KOR_ERROR_INIT;
            r.call(900, whole.data(), one.data(), &fail);
            ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
            r.call(300, split.data(), two.data(), &fail);
            r.call(600, split.data(), two.data() + 300, &fail);
            EXPECT_EQ(one, two);
            EXPECT_EQ(whole, split);
        }
    }
}

TEST(DistributionStream, NoVariatesLeaveEverythingAlone) {
    for (const Routine &r : routines()) {
        State state = basic_state(5);
        const State before = state;
        double x[1] = {-7.5};
        KorError fail = KOR_ERROR_INIT;
        r.call(0, state.data(), x, &fail);
        EXPECT_EQ(fail.code, NE_NOERROR) << r.name << ": " << fail.message;
        EXPECT_EQ(state, before) << r.name;
        EXPECT_EQ(x[0], -7.5) << r.name;
    }
}

TEST(DistributionStream, DamagedStateIsRefusedByEveryRoutine) {
    for (const Routine &r : routines()) {
        for (const auto &[position, value] : std::vector<std::pair<size_t, int64_t>>{{1, 1235}, {0, 16}, {2, 7}, {15, 0}}) {
            State state = basic_state(5);
            state[position] = value;
            const State before = state;
            std::vector<double> x(6, -7.5);
            KorError fail = KOR_ERROR_INIT;
            r.call(6, state.data(), x.data(), &fail);
            EXPECT_EQ(fail.message, corrupt_message) << r.name;
            EXPECT_EQ(state, before) << r.name;
            EXPECT_EQ(x, std::vector<double>(6, -7.5)) << r.name;
        }
        // The state is checked before anything else, even a bad n.
        State state = basic_state(5);
        state[1] = 0;
        KorError fail = KOR_ERROR_INIT;
        double x[1];
        r.call(-3, state.data(), x, &fail);
        EXPECT_EQ(fail.message, corrupt_message) << r.name;
    }
}

// ---------------------------------------------------------------------------
// Exits: exact C texts, output and state untouched.

struct ExitCase {
    std::function<void(int64_t *state, double *x, KorError *fail)> call;
    int code;
    std::string message;
};

TEST(DistributionExits, EveryParameterExit) {
    const double good2[2] = {1.0, 2.0}, bad_a[3] = {1.0, -2.0, 3.0}, zero_a[2] = {0.0, 1.0};
    const double nan_a[2] = {1.0, NAN};
    const double w[2] = {0.5, 0.5}, w_neg[3] = {0.5, -0.25, 0.75}, w_short[2] = {0.5, 0.49};
    const double w_nan[2] = {NAN, 1.0};
    const double a3[3] = {1.0, 2.0, 3.0};
    const double w3[3] = {0.1, 0.1, 0.8};
    const std::string n_text = "NE_INT:\n  On entry, n = -1.\n  Constraint: n >= 0.";
    const ExitCase cases[] = {
        // g05sb
        {[](int64_t *s, double *x, KorError *f) { g05sbc(-1, 1.0, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05sbc(2, 0.0, 1.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, a = 0.0e+00.\n  Constraint: a > 0.0."},
        {[](int64_t *s, double *x, KorError *f) { g05sbc(2, NAN, 1.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, a = NaN.\n  Constraint: a > 0.0."},
        {[](int64_t *s, double *x, KorError *f) { g05sbc(2, 1.0, -0.5, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, b = -5.0e-01.\n  Constraint: b > 0.0."},
        // g05sc
        {[](int64_t *s, double *x, KorError *f) { g05scc(-1, 0.0, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05scc(2, 0.0, -1.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, semiqr = -1.0e+00.\n  Constraint: semiqr >= 0.0."},
        // g05sd
        {[](int64_t *s, double *x, KorError *f) { g05sdc(-1, 2, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05sdc(2, 0, s, x, f); }, NE_INT,
         "NE_INT:\n  On entry, df = 0.\n  Constraint: df >= 1."},
        // g05se
        {[&](int64_t *s, double *x, KorError *f) { g05sec(Kor_OrderType(7), 1, 2, good2, s, x, 2, f); }, NE_BAD_PARAM,
         "NE_BAD_PARAM:\n  On entry, argument order had an illegal value.\n  Constraint: order = Kor_RowMajor or Kor_ColMajor."},
        {[&](int64_t *s, double *x, KorError *f) { g05sec(Kor_RowMajor, -1, 2, good2, s, x, 2, f); }, NE_INT, n_text},
        {[&](int64_t *s, double *x, KorError *f) { g05sec(Kor_RowMajor, 1, 0, good2, s, x, 2, f); }, NE_INT,
         "NE_INT:\n  On entry, m = 0.\n  Constraint: m >= 1."},
        {[&](int64_t *s, double *x, KorError *f) { g05sec(Kor_ColMajor, 1, 2, zero_a, s, x, 2, f); },
         NE_REAL_ARRAY_CONS, "NE_REAL_ARRAY_CONS:\n  On entry, at least one a[i] <= 0."},
        {[&](int64_t *s, double *x, KorError *f) { g05sec(Kor_ColMajor, 1, 2, nan_a, s, x, 2, f); },
         NE_REAL_ARRAY_CONS, "NE_REAL_ARRAY_CONS:\n  On entry, at least one a[i] <= 0."},
        {[&](int64_t *s, double *x, KorError *f) { g05sec(Kor_ColMajor, 3, 2, good2, s, x, 2, f); }, NE_INT_2,
         "NE_INT_2:\n  On entry, pdx = 2 and n = 3.\n  Constraint: order != Kor_ColMajor or pdx >= n."},
        {[&](int64_t *s, double *x, KorError *f) { g05sec(Kor_RowMajor, 3, 2, good2, s, x, 1, f); }, NE_INT_2,
         "NE_INT_2:\n  On entry, pdx = 1 and m = 2.\n  Constraint: order != Kor_RowMajor or pdx >= m."},
        // g05sf
        {[](int64_t *s, double *x, KorError *f) { g05sfc(-1, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05sfc(2, 0.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, a = 0.0e+00.\n  Constraint: a > 0.0."},
        // g05sg
        {[&](int64_t *s, double *x, KorError *f) { g05sgc(-1, 2, good2, w, s, x, f); }, NE_INT, n_text},
        {[&](int64_t *s, double *x, KorError *f) { g05sgc(2, 0, good2, w, s, x, f); }, NE_INT,
         "NE_INT:\n  On entry, nmix = 0.\n  Constraint: nmix >= 1."},
        {[&](int64_t *s, double *x, KorError *f) { g05sgc(2, 3, bad_a, w3, s, x, f); }, NE_REAL_ARRAY_CONS,
         "NE_REAL_ARRAY_CONS:\n  On entry, a[1] = -2.0e+00.\n  Constraint: a[i-1] > 0.0."},
        {[&](int64_t *s, double *x, KorError *f) { g05sgc(2, 3, a3, w_neg, s, x, f); }, NE_REAL_ARRAY_CONS,
         "NE_REAL_ARRAY_CONS:\n  On entry, wgt[1] = -2.5e-01.\n  Constraint: wgt[i-1] >= 0.0."},
        {[&](int64_t *s, double *x, KorError *f) { g05sgc(2, 2, good2, w_nan, s, x, f); }, NE_REAL_ARRAY_CONS,
         "NE_REAL_ARRAY_CONS:\n  On entry, wgt[0] = NaN.\n  Constraint: wgt[i-1] >= 0.0."},
        {[&](int64_t *s, double *x, KorError *f) { g05sgc(2, 2, good2, w_short, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, sum of wgt = 9.9e-01.\n  Constraint: sum of wgt = 1.0."},
        // g05sh
        {[](int64_t *s, double *x, KorError *f) { g05shc(-1, 1, 1, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05shc(2, 0, 1, s, x, f); }, NE_INT,
         "NE_INT:\n  On entry, df1 = 0.\n  Constraint: df1 >= 1."},
        {[](int64_t *s, double *x, KorError *f) { g05shc(2, 1, -4, s, x, f); }, NE_INT,
         "NE_INT:\n  On entry, df2 = -4.\n  Constraint: df2 >= 1."},
        // g05sj
        {[](int64_t *s, double *x, KorError *f) { g05sjc(-1, 1.0, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05sjc(2, -1.0, 1.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, a = -1.0e+00.\n  Constraint: a > 0.0."},
        {[](int64_t *s, double *x, KorError *f) { g05sjc(2, 1.0, 0.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, b = 0.0e+00.\n  Constraint: b > 0.0."},
        // g05sl
        {[](int64_t *s, double *x, KorError *f) { g05slc(-1, 0.0, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05slc(2, 0.0, -1e-300, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, b = -1.0e-300.\n  Constraint: b >= 0.0."},
        // g05sm
        {[](int64_t *s, double *x, KorError *f) { g05smc(-1, 0.0, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05smc(2, 710.0, 1.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, xmu is too large to take the exponential of\n  xmu = 7.1e+02."},
        {[](int64_t *s, double *x, KorError *f) { g05smc(2, NAN, 1.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, xmu is too large to take the exponential of\n  xmu = NaN."},
        {[](int64_t *s, double *x, KorError *f) { g05smc(2, 0.0, -2.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, var = -2.0e+00.\n  Constraint: var >= 0.0."},
        // g05sn
        {[](int64_t *s, double *x, KorError *f) { g05snc(-1, 1, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05snc(2, 0, s, x, f); }, NE_INT,
         "NE_INT:\n  On entry, df = 0.\n  Constraint: df >= 1."},
        // g05sp
        {[](int64_t *s, double *x, KorError *f) { g05spc(-1, 0.0, 0.5, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05spc(2, 1.0, 0.5, 2.0, s, x, f); }, NE_REAL_2,
         "NE_REAL_2:\n  On entry, xmed = 5.0e-01 and\n  xmin = 1.0e+00.\n  Constraint: xmed >= xmin."},
        {[](int64_t *s, double *x, KorError *f) { g05spc(2, 0.0, 1.5, 1.0, s, x, f); }, NE_REAL_2,
         "NE_REAL_2:\n  On entry, xmax = 1.0e+00 and\n  xmed = 1.5e+00.\n  Constraint: xmax >= xmed."},
        // g05sq
        {[](int64_t *s, double *x, KorError *f) { g05sqc(-1, 0.0, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05sqc(2, 1.0, 0.25, s, x, f); }, NE_REAL_2,
         "NE_REAL_2:\n  On entry, a = 1.0e+00 and b = 2.5e-01.\n  Constraint: a <= b."},
        // g05sr
        {[](int64_t *s, double *x, KorError *f) { g05src(-1, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05src(2, 0.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, vk <= 0.0 or vk too large: vk = 0.0e+00."},
        {[](int64_t *s, double *x, KorError *f) { g05src(2, 2e300, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, vk <= 0.0 or vk too large: vk = 2.0e+300."},
        {[](int64_t *s, double *x, KorError *f) { g05src(2, INFINITY, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, vk <= 0.0 or vk too large: vk = Infinity."},
        // g05ss
        {[](int64_t *s, double *x, KorError *f) { g05ssc(-1, 1.0, 1.0, s, x, f); }, NE_INT, n_text},
        {[](int64_t *s, double *x, KorError *f) { g05ssc(2, 0.0, 1.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, a = 0.0e+00.\n  Constraint: a > 0.0."},
        {[](int64_t *s, double *x, KorError *f) { g05ssc(2, 1.0, -3.0, s, x, f); }, NE_REAL,
         "NE_REAL:\n  On entry, b = -3.0e+00.\n  Constraint: b > 0.0."},
    };
    for (const ExitCase &c : cases) {
        SCOPED_TRACE(c.message);
        State state = basic_state(77);
        const State before = state;
        std::vector<double> x(8, -7.5);
        KorError fail = KOR_ERROR_INIT;
        c.call(state.data(), x.data(), &fail);
        EXPECT_EQ(fail.code, c.code);
        EXPECT_EQ(std::string(fail.message), c.message);
        EXPECT_EQ(state, before);
        EXPECT_EQ(x, std::vector<double>(8, -7.5));
    }
}

TEST(DistributionExits, ParametersAtTheirBoundsAreAccepted) {
    // The weights' tolerance is 10·nmix·2^-53: ten tenths sum to 1 - 2^-53,
    // inside it; with nmix = 3 (tolerance 30·2^-53) a sum of 1 + 28·2^-53 is
    // inside and one that rounds to 1 + 32·2^-53 outside.
    const double a10[10] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    double w10[10];
    std::fill(w10, w10 + 10, 0.1);
    State state = basic_state(8);
    double x[4];
    KorError fail = KOR_ERROR_INIT;
    g05sgc(4, 10, a10, w10, state.data(), x, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    const double a3[3] = {1, 1, 1};
    const double over[3] = {0.5, 0.25, 0.25 + 31 * 0x1p-53};
    g05sgc(4, 3, a3, over, state.data(), x, &fail);
    EXPECT_EQ(fail.code, NE_REAL);
    const double inside[3] = {0.5, 0.25, 0.25 + 28 * 0x1p-53};
    g05sgc(4, 3, a3, inside, state.data(), x, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;

    // The largest accepted concentration and mean of the underlying normal.
    g05src(4, 1e300, state.data(), x, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    g05smc(4, std::log(DBL_MAX), 0.0, state.data(), x, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_TRUE(std::isfinite(x[0]));
    g05smc(4, -1e6, 1.0, state.data(), x, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
}

TEST(DistributionExits, SmallGammaShapeWarnsAndStillReturnsVariates) {
    State state = basic_state(12), copy = state;
    std::vector<double> x(2000, -7.5);
    KorError fail = KOR_ERROR_INIT;
    g05sjc(2000, 0.005, 1.0, state.data(), x.data(), &fail);
    EXPECT_EQ(fail.code, NW_REAL);
    EXPECT_EQ(std::string(fail.message),
              "NW_REAL:\n  On entry, a = 5.0e-03.\n  For very small shape parameter values, variates are approximate.");
    EXPECT_NE(state, copy);
    size_t zero_or_subnormal = 0;
    for (double v : x) {
        ASSERT_TRUE(v >= 0.0 && std::isfinite(v)) << v;
        if (v < DBL_MIN) ++zero_or_subnormal;
    }
    // About exp(-708·0.005)/Γ(1.005) ≈ 2.9% lie below DBL_MIN; the rest are
    // the returned variates.
    EXPECT_GT(zero_or_subnormal, 20u);
    EXPECT_LT(zero_or_subnormal, 120u);

    // At the threshold and above there is no warning.
    g05sjc(10, 0.01, 1.0, state.data(), x.data(), &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
}

// ---------------------------------------------------------------------------
// Degenerate parameters: constant output, state untouched.

TEST(DistributionDegenerate, ZeroSpreadGivesConstantsWithoutDrawing) {
    const double one = 1.0;
    const struct {
        const char *name;
        std::function<void(int64_t *, double *, KorError *)> call;
        double value;
    } cases[] = {
        {"logistic b = 0", [](int64_t *s, double *x, KorError *f) { g05slc(5, -2.5, 0.0, s, x, f); }, -2.5},
        {"cauchy semiqr = 0", [](int64_t *s, double *x, KorError *f) { g05scc(5, 4.0, 0.0, s, x, f); }, 4.0},
        {"lognormal var = 0", [](int64_t *s, double *x, KorError *f) { g05smc(5, 1.0, 0.0, s, x, f); }, std::exp(1.0)},
        {"triangular xmin = xmax", [](int64_t *s, double *x, KorError *f) { g05spc(5, 3.0, 3.0, 3.0, s, x, f); }, 3.0},
        {"uniform a = b", [](int64_t *s, double *x, KorError *f) { g05sqc(5, -1.0, -1.0, s, x, f); }, -1.0},
        {"dirichlet m = 1", [&](int64_t *s, double *x, KorError *f) { g05sec(Kor_ColMajor, 5, 1, &one, s, x, 5, f); }, 1.0},
    };
    for (const auto &c : cases) {
        State state = basic_state(4);
        const State before = state;
        double x[5];
        KorError fail = KOR_ERROR_INIT;
        c.call(state.data(), x, &fail);
        EXPECT_EQ(fail.code, NE_NOERROR) << c.name;
        EXPECT_EQ(state, before) << c.name;
        for (double v : x) EXPECT_EQ(v, c.value) << c.name;
    }
}

// Very small beta shapes put the mass at the ends: a variate is next to 0
// with probability b/(a + b) and next to 1 otherwise, and nothing overflows.
TEST(DistributionDegenerate, TinyBetaShapesSplitBetweenTheEnds) {
    const auto x = draw(17, [](int64_t n, int64_t *st, double *v, KorError *f) { g05sbc(n, 1e-8, 3e-8, st, v, f); });
    size_t high = 0;
    for (double v : x) {
        ASSERT_TRUE(v >= 0.0 && v <= 1.0) << v;
        ASSERT_TRUE(v < 1e-100 || v > 1.0 - 1e-15) << v;
        if (v > 0.5) ++high;
    }
    // P(high) = a/(a + b) = 1/4: 5000 of 20000, sd 61.
    EXPECT_NEAR(double(high), 5000.0, 300.0);
}

// ---------------------------------------------------------------------------
// Dirichlet layout

TEST(DistributionDirichlet, RowAndColumnMajorHoldTheSameVariates) {
    const double a[3] = {0.7, 2.0, 0.2};
    const int64_t n = 50, pad = 2;
    State s1 = basic_state(23), s2 = s1;
    std::vector<double> rows(size_t(n * (3 + pad)), -7.5), columns(size_t((n + pad) * 3), -7.5);
    KorError fail = KOR_ERROR_INIT;
    g05sec(Kor_RowMajor, n, 3, a, s1.data(), rows.data(), 3 + pad, &fail);
    ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
    g05sec(Kor_ColMajor, n, 3, a, s2.data(), columns.data(), n + pad, &fail);
    ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
    EXPECT_EQ(s1, s2);
    for (int64_t i = 0; i < n; ++i) {
        for (int64_t j = 0; j < 3; ++j)
            EXPECT_EQ(rows[size_t(i * (3 + pad) + j)], columns[size_t(j * (n + pad) + i)]) << i << " " << j;
        for (int64_t j = 3; j < 3 + pad; ++j) EXPECT_EQ(rows[size_t(i * (3 + pad) + j)], -7.5) << "padding";
    }
    for (int64_t j = 0; j < 3; ++j)
        for (int64_t i = n; i < n + pad; ++i) EXPECT_EQ(columns[size_t(j * (n + pad) + i)], -7.5) << "padding";
}

TEST(DistributionDirichlet, TinyParametersStillSumToOne) {
    // Gammas of shape 1e-3 underflow most of the time; the rows must still
    // be proper points of the simplex.
    const double a[4] = {1e-3, 1e-3, 1e-3, 1e-3};
    State state = basic_state(29);
    std::vector<double> x(4000);
    KorError fail = KOR_ERROR_INIT;
    g05sec(Kor_RowMajor, 1000, 4, a, state.data(), x.data(), 4, &fail);
    ASSERT_EQ(fail.code, NE_NOERROR);
    for (int i = 0; i < 1000; ++i) {
        double sum = 0;
        for (int j = 0; j < 4; ++j) {
            ASSERT_TRUE(x[size_t(4 * i + j)] >= 0.0 && x[size_t(4 * i + j)] <= 1.0);
            sum += x[size_t(4 * i + j)];
        }
        EXPECT_NEAR(sum, 1.0, 1e-15);
    }
}

// ---------------------------------------------------------------------------
// The Fortran-style interface: the lines written for IFAIL = -1, and the
// integer order of g05se.

TEST(DistributionFortran, IndexedMessagesAndIntegerOrder) {
    State state = basic_state(31);
    const State before = state;
    const int64_t n = 2, nmix = 3;
    const double a[3] = {1.0, 2.0, 0.0}, w[3] = {0.2, 0.3, 0.5};
    double x[2] = {-7.5, -7.5};
    int64_t ifail = -1;
    testing::internal::CaptureStdout();
    g05sgf_(&n, &nmix, a, w, state.data(), x, &ifail);
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(ifail, 3);
    EXPECT_NE(out.find("** On entry, a[2] = 0.0e+00, that is a(3)\n** Constraint: a(i) > 0.0.\n"), std::string::npos)
        << out;
    EXPECT_EQ(state, before);
    EXPECT_EQ(x[0], -7.5);

    // order 2 is column major, as Kor_ColMajor.
    const double alpha[2] = {1.5, 0.5};
    const int64_t order = 2, rows = 4, m = 2, pdx = 4;
    State s1 = basic_state(37), s2 = s1;
    double fx[8], cx[8];
    ifail = 0;
    g05sef_(&order, &rows, &m, alpha, s1.data(), fx, &pdx, &ifail);
    EXPECT_EQ(ifail, 0);
    KorError fail = KOR_ERROR_INIT;
    g05sec(Kor_ColMajor, 4, 2, alpha, s2.data(), cx, 4, &fail);
    EXPECT_EQ(std::vector<double>(fx, fx + 8), std::vector<double>(cx, cx + 8));

    const int64_t bad_order = 3;
    ifail = 1;
    g05sef_(&bad_order, &rows, &m, alpha, s1.data(), fx, &pdx, &ifail);
    EXPECT_EQ(ifail, 1);
    const int64_t row_order = 1, narrow = 1;
    ifail = -1;
    testing::internal::CaptureStdout();
    g05sef_(&row_order, &rows, &m, alpha, s1.data(), fx, &narrow, &ifail);
    const std::string pdx_out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(ifail, 6);
    EXPECT_NE(pdx_out.find("** On entry, pdx = 1 and m = 2\n** Constraint: order /= 1 or pdx >= m.\n"),
              std::string::npos)
        << pdx_out;
}

}  // namespace
