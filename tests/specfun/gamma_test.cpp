// s14ab (ln Γ) and s14aa (Γ) through the C interface: every exit with its
// text, outcome and returned value; values against closed forms, the
// recurrence Γ(x + 1) = xΓ(x) and glibc's lgamma and tgamma.
#include <cfloat>
#include <cmath>
#include <string>
#include <vector>

#include "specfun/specfun_support.hpp"

using namespace specfun_test;

namespace {

const double sqrt_pi = std::sqrt(M_PI);

struct ExitCase {
    double x;
    int code;
    int64_t errnum;
    std::string message;  // empty: not compared
    double value;
};

void expect_exit(double (*f)(double, KorError *), const ExitCase &c) {
    SCOPED_TRACE("x = " + std::to_string(c.x) + " (" + std::to_string(std::signbit(c.x)) + ")");
    const Outcome r = call(f, c.x);
    EXPECT_EQ(r.fail.code, c.code);
    EXPECT_EQ(r.fail.errnum, c.errnum);
    if (!c.message.empty()) {
        EXPECT_EQ(std::string(r.fail.message), c.message);
    }
    EXPECT_TRUE(same_bits(r.value, c.value)) << r.value << " instead of " << c.value;
}

std::string log_gamma_le(const char *x) {
    return std::string("NE_REAL_ARG_LE:\n  On entry, x = ") + x + ".\n  Constraint: x > 0.0.";
}
std::string log_gamma_gt(const char *x) {
    return std::string("NE_REAL_ARG_GT:\n  On entry, x = ") + x +
           " and\n  the constant x_big = 2.55e+305.\n  Constraint: x <= x_big.";
}
std::string gamma_gt(const char *x) {
    return std::string("NE_REAL_ARG_GT:\n  On entry, x = ") + x +
           ".\n  Constraint: x <= 1.7e+02.\n  The argument is too large, the function returns the "
           "approximate value of\n  Gamma(x) at the nearest valid argument.";
}
std::string gamma_lt(const char *x) {
    return std::string("NE_REAL_ARG_LT:\n  On entry, x = ") + x +
           ".\n  The function returns zero.\n  Constraint: x >= -1.7e+02.\n  The argument is too "
           "large and negative, the function returns zero.";
}
std::string gamma_small(const char *x) {
    return std::string("NE_REAL_ARG_TOO_SMALL:\n  On entry, x = ") + x +
           ".\n  Constraint: abs(x) >= 2.23e-308.\n  The argument is too close to zero, the "
           "function returns the approximate\n  value of Gamma(x) at the nearest valid argument.";
}
std::string gamma_neg_int(const char *x) {
    return std::string("NE_REAL_ARG_NEG_INT:\n  On entry, x = ") + x +
           ".\n  Constraint: x must not be a negative integer.\n  The argument is a negative "
           "integer, at which values Gamma(x) is infinite.\n  The function returns a large "
           "positive value.";
}

// Roundings in Γ's reduction to [1, 2): one per factor of the product, one
// for the reciprocal or division, one for the final multiplication.
double gamma_roundings(double x) {
    const double n = std::trunc(x);
    if (x < 0.0) return 2.0 - n + 2.0;
    if (x < 1.0) return 2.0;
    if (x < 2.0) return 1.0;
    return n - 2.0 + 1.0;
}

// Γ's own error: the polynomial's few u plus the reduction's roundings.
double gamma_bound(double x) { return 6.0 + 1.1 * gamma_roundings(x); }

TEST(S14ab, Exits) {
    const double big = DBL_MAX;
    const std::vector<ExitCase> cases = {
        {0.0, NE_REAL_ARG_LE, 1, log_gamma_le("0.0e+00"), big},
        {-0.0, NE_REAL_ARG_LE, 1, log_gamma_le("-0.0e+00"), big},
        {-3.5, NE_REAL_ARG_LE, 1, log_gamma_le("-3.5e+00"), 0.0},
        {-1.0, NE_REAL_ARG_LE, 1, log_gamma_le("-1.0e+00"), 0.0},
        {-4.9406564584124654e-324, NE_REAL_ARG_LE, 1, log_gamma_le("-4.9e-324"), 0.0},
        {-big, NE_REAL_ARG_LE, 1, log_gamma_le("-1.7976931348623157e+308"), 0.0},
        {-inf, NE_REAL_ARG_LE, 1, log_gamma_le("-Infinity"), 0.0},
        {2.56e305, NE_REAL_ARG_GT, 2, log_gamma_gt("2.56e+305"), big},
        {std::nextafter(2.55e305, inf), NE_REAL_ARG_GT, 2, log_gamma_gt("2.5500000000000003e+305"), big},
        {big, NE_REAL_ARG_GT, 2, log_gamma_gt("1.7976931348623157e+308"), big},
        {inf, NE_REAL_ARG_GT, 2, log_gamma_gt("Infinity"), big},
    };
    for (const ExitCase &c : cases) {
        expect_exit(s14abc, c);
        expect_exit(kor_log_gamma, c);
    }
}

TEST(S14ab, LargestArgumentIsComputed) {
    const Outcome r = call(s14abc, 2.55e305);
    EXPECT_SUCCEEDED(r);
    EXPECT_LE(rel_error(r.value, std::lgamma(2.55e305)), 8.0) << r.value;
}

TEST(S14ab, ClosedForms) {
    // ln Γ(1) = ln Γ(2) = 0; at the integers ln (n-1)!; at halves ln of √π multiples.
    for (double x : {1.0, 2.0}) {
        const Outcome r = call(s14abc, x);
        EXPECT_SUCCEEDED(r);
        EXPECT_NEAR(r.value, 0.0, 1e-16) << "x = " << x;
    }
    const struct { double x, expected; } cases[] = {
        {0.5, std::log(sqrt_pi)},     {1.5, std::log(sqrt_pi / 2.0)},
        {2.5, std::log(0.75 * sqrt_pi)}, {3.0, std::log(2.0)},
        {4.0, std::log(6.0)},         {5.0, std::log(24.0)},
        {12.0, std::log(39916800.0)}, {13.0, std::log(479001600.0)},
    };
    for (const auto &c : cases) {
        const Outcome r = call(s14abc, c.x);
        EXPECT_SUCCEEDED(r);
        EXPECT_LE(rel_error(r.value, c.expected), 6.0) << "x = " << c.x << ": " << r.value;
    }
}

TEST(S14ab, TinyArgumentsGiveMinusLogX) {
    for (double x : {1e-20, 0x1p-53, 1e-100, 1e-300, DBL_MIN, 1e-310, 4.9406564584124654e-324}) {
        const Outcome r = call(s14abc, x);
        EXPECT_SUCCEEDED(r);
        EXPECT_EQ(r.value, -std::log(x)) << "x = " << x;
    }
}

TEST(S14ab, NaNGivesNaN) {
    const Outcome r = call(s14abc, NAN);
    EXPECT_TRUE(std::isnan(r.value));
    EXPECT_SUCCEEDED(r);
}

TEST(S14ab, AgreesWithGlibcLgamma) {
    // Measured against max(|ln Γ|, 1): ln Γ passes through zero at 1 and 2.
    std::vector<double> xs;
    for (double x = 1e-16; x < 2.55e305; x *= 1.0137) xs.push_back(x);
    for (double x = 0.001; x < 20.0; x += 0.001) xs.push_back(x);
    for (double x : xs) {
        const Outcome r = call(s14abc, x);
        ASSERT_EQ(r.fail.code, NE_NOERROR) << "x = " << x;
        const double ref = std::lgamma(x);
        EXPECT_LE(std::fabs(r.value - ref) / std::max(std::fabs(ref), 1.0), 2e-15)
            << "x = " << x << ": " << r.value << " vs " << ref;
    }
}

TEST(S14ab, ContinuousAcrossRangeEdges) {
    // The two neighbours of each edge are computed by different formulas
    // (or the same formula with and without the correction series); their
    // difference must be the function's own slope times the step, up to the
    // error of each side (a few u of max(|ln Γ|, 1)).
    for (double edge : {0x1p-53, 0.5, 0.6796875, 1.5, 4.0, 12.0, 2.24e76}) {
        const double lo = std::nextafter(edge, 0.0), hi = std::nextafter(edge, inf);
        const double h = 1e-5 * edge;
        const double slope = (std::lgamma(edge + h) - std::lgamma(edge - h)) / (2.0 * h);
        const double f_lo = s14abc(lo, nullptr), f_mid = s14abc(edge, nullptr),
                     f_hi = s14abc(hi, nullptr);
        const double scale = std::max({std::fabs(f_lo), std::fabs(f_hi), 1.0});
        EXPECT_LE(std::fabs((f_hi - f_lo) - slope * (hi - lo)), 8.0 * u * scale) << "edge " << edge;
        EXPECT_LE(std::fabs((f_mid - f_lo) - slope * (edge - lo)), 8.0 * u * scale) << "edge " << edge;
    }
}

TEST(S14aa, Exits) {
    const double at_limit = 4.3e+304, near_zero = 4.4843049327354256e+307;
    std::vector<ExitCase> cases = {
        {170.5, NE_REAL_ARG_GT, 1, gamma_gt("1.705e+02"), at_limit},
        {std::nextafter(170.0, inf), NE_REAL_ARG_GT, 1, gamma_gt("1.7000000000000003e+02"), at_limit},
        {inf, NE_REAL_ARG_GT, 1, gamma_gt("Infinity"), at_limit},
        {-170.5, NE_REAL_ARG_LT, 2, gamma_lt("-1.705e+02"), 0.0},
        {-1e300, NE_REAL_ARG_LT, 2, gamma_lt("-1.0e+300"), 0.0},
        {-inf, NE_REAL_ARG_LT, 2, gamma_lt("-Infinity"), 0.0},
        {1e-310, NE_REAL_ARG_TOO_SMALL, 3, gamma_small("1.0e-310"), near_zero},
        {0.0, NE_REAL_ARG_TOO_SMALL, 3, gamma_small("0.0e+00"), near_zero},
        {-0.0, NE_REAL_ARG_TOO_SMALL, 3, gamma_small("-0.0e+00"), near_zero},
        {-1e-310, NE_REAL_ARG_TOO_SMALL, 3, gamma_small("-1.0e-310"), -near_zero},
        {4.9406564584124654e-324, NE_REAL_ARG_TOO_SMALL, 3, gamma_small("4.9e-324"), near_zero},
        {DBL_MIN, NE_REAL_ARG_TOO_SMALL, 3, gamma_small("2.2250738585072014e-308"), near_zero},
        {-DBL_MIN, NE_REAL_ARG_TOO_SMALL, 3, "", -near_zero},
        {std::nextafter(2.23e-308, 0.0), NE_REAL_ARG_TOO_SMALL, 3, "", near_zero},
        {-3.0, NE_REAL_ARG_NEG_INT, 4, gamma_neg_int("-3.0e+00"), at_limit},
        {-1.0, NE_REAL_ARG_NEG_INT, 4, gamma_neg_int("-1.0e+00"), at_limit},
        {-170.0, NE_REAL_ARG_NEG_INT, 4, gamma_neg_int("-1.7e+02"), at_limit},
    };
    for (int k = 1; k <= 170; ++k) cases.push_back({-double(k), NE_REAL_ARG_NEG_INT, 4, "", at_limit});
    for (const ExitCase &c : cases) {
        expect_exit(s14aac, c);
        expect_exit(kor_gamma, c);
    }
}

TEST(S14aa, ReciprocalNearZero) {
    // 2.23e-308 <= |x| <= 1e-17: 1/x without failure.
    for (double x : {1e-20, -1e-20, 1e-17, -1e-17, 2.23e-308, -2.23e-308, 1e-300}) {
        const Outcome r = call(s14aac, x);
        EXPECT_SUCCEEDED(r);
        EXPECT_EQ(r.value, 1.0 / x) << "x = " << x;
    }
    EXPECT_EQ(s14aac(1e-20, nullptr), 1e20);
    EXPECT_EQ(s14aac(-1e-20, nullptr), -1e20);
}

// For -2^-54 <= x < -1e-17, x + 1 rounds to 1.0: a negative-integer test
// written as x - (trunc(x) - 1) = 1 would take x for an integer.
// Γ(x) = 1/x - γ + O(x) there, 1/x to working precision.
TEST(S14aa, NegativeTinyIsNotAnInteger) {
    for (double x : {-1.5e-17, -3e-17, -5e-17, -0x1p-54}) {
        const Outcome r = call(s14aac, x);
        EXPECT_SUCCEEDED(r);
        EXPECT_LE(rel_error(r.value, 1.0 / x), 4.0) << "x = " << x << ": " << r.value;
    }
}

TEST(S14aa, NaNGivesNaN) {
    const Outcome r = call(s14aac, NAN);
    EXPECT_TRUE(std::isnan(r.value));
    EXPECT_SUCCEEDED(r);
}

TEST(S14aa, ClosedForms) {
    std::vector<std::pair<double, double>> cases = {
        {0.5, sqrt_pi},           {1.5, sqrt_pi / 2.0},         {3.5, 15.0 / 8.0 * sqrt_pi},
        {-0.5, -2.0 * sqrt_pi},   {-1.5, 4.0 / 3.0 * sqrt_pi}, {-2.5, -8.0 / 15.0 * sqrt_pi},
    };
    // Γ(n) = (n-1)!, exact in double up to n = 23.
    double factorial = 1.0;
    for (int n = 1; n <= 23; ++n) {
        cases.push_back({double(n), factorial});
        factorial *= n;
    }
    for (const auto &[x, expected] : cases) {
        const Outcome r = call(s14aac, x);
        EXPECT_SUCCEEDED(r);
        EXPECT_LE(rel_error(r.value, expected), gamma_bound(x)) << "x = " << x << ": " << r.value;
    }
}

TEST(S14aa, Recurrence) {
    // x + 1 exact for every x below; both sides share the polynomial value,
    // so only the reduction's roundings separate them.
    const double e = 0x1p-20;
    std::vector<double> xs = {e,     0x1p-10, 0.25,  0.5,   0.75,   1 - e,  1.0,   1 + e,
                              1.5,   2 - e,   2.0,   2 + e, 2.5,    3 - e,  3.0,   3.25,
                              7.5,   10.125,  33.75, 100.5, 168.25, 169.0,  -0.5,  -0.25,
                              -1 + e, -1 - e, -1.5,  -2.5,  -2 + e, -9.75,  -33.5, -100.25,
                              -168.5, -169.5};
    for (double x = 4.0625; x < 169.0; x += 5.0625) xs.push_back(x);
    for (double x = -0.96875; x > -169.0; x -= 4.5390625) xs.push_back(x);
    for (double x : xs) {
        const Outcome a = call(s14aac, x), b = call(s14aac, x + 1.0);
        EXPECT_SUCCEEDED(a);
        EXPECT_SUCCEEDED(b);
        const double tol = 2.0 + 1.1 * (gamma_roundings(x) + gamma_roundings(x + 1.0));
        EXPECT_LE(rel_error(x * a.value, b.value), tol)
            << "x = " << x << ": Γ(x) = " << a.value << ", Γ(x+1) = " << b.value;
    }
}

TEST(S14aa, AgreesWithGlibcTgamma) {
    std::vector<double> xs;
    for (double x = 1e-17; x < 1.0; x *= 1.0173) {
        xs.push_back(x);
        xs.push_back(-x);
    }
    for (double x = -169.99; x <= 170.0; x += 0.0173) xs.push_back(x);
    for (int k = 1; k <= 169; ++k) {
        xs.push_back(std::nextafter(-double(k), 0.0));
        xs.push_back(std::nextafter(-double(k), -inf));
        xs.push_back(double(k) + 1.0);
    }
    for (double x : xs) {
        const Outcome r = call(s14aac, x);
        ASSERT_EQ(r.fail.code, NE_NOERROR) << "x = " << x;
        // glibc's tgamma is good to about 10 u.
        EXPECT_LE(rel_error(r.value, std::tgamma(x)), 30.0 + gamma_bound(x))
            << "x = " << x << ": " << r.value << " vs " << std::tgamma(x);
    }
}

TEST(S14aa, LogOfGammaIsLogGamma) {
    for (double x = 0.0137; x < 170.0; x += 0.0137) {
        const double g = s14aac(x, nullptr), lg = s14abc(x, nullptr);
        EXPECT_LE(std::fabs(std::log(g) - lg), (gamma_bound(x) + 8.0 * std::max(1.0, std::fabs(lg))) * u)
            << "x = " << x << ": Γ = " << g << ", ln Γ = " << lg;
    }
}

TEST(S14, RecordReusedAfterFailure) {
    KorError fail = KOR_ERROR_INIT;
    s14aac(-3.0, &fail);
    EXPECT_EQ(fail.code, NE_REAL_ARG_NEG_INT);
    const double v = s14aac(4.0, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(fail.errnum, 0);
    EXPECT_LE(rel_error(v, 6.0), gamma_bound(4.0));
}

}  // namespace
