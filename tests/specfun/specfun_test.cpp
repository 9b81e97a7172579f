// s14 (Γ, ln Γ), s15 (error functions) and g01 (normal probabilities and deviates): accuracy per range
// against 40-digit mpmath values (tests/data/specfun), identities, glibc's lgamma, tgamma, erf and erfc
// where the library states it, and every exit with the value it returns.
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <map>

#include "g01ea_def.hpp"
#include "g01fa_def.hpp"
#include "s14aa_def.hpp"
#include "s14ab_def.hpp"
#include "specfun/inverse_normal.hpp"
#include "support/data.hpp"
#include "support/exits.hpp"
#include "support/numbers.hpp"

namespace {

using kor::test::same_bits;
constexpr double u = 0x1p-53;
const Kor_Tail tails[] = {Kor_TailLower, Kor_TailUpper, Kor_TailSignificance, Kor_TailCentral};  // L U S C

// A call through the C interface that must succeed: the record is checked as the call's value is taken.
struct Succeeds { KorError fail = KOR_ERROR_INIT; KorError *record() { return &fail; } ~Succeeds() { kor::test::expect_success(fail); } };
double call(double (*f)(double, KorError *), double x) { return f(x, Succeeds().record()); }
double call(double (*f)(Kor_Tail, double, KorError *), Kor_Tail tail, double x) { return f(tail, x, Succeeds().record()); }
double rel_error(double c, double r) { return c == r ? 0.0 : std::fabs((c - r) / r) / u; }

// Γ's reduction to [1, 2) rounds once per factor of its product, once for the reciprocal or division
// and once for the last product; Γ's own error adds the polynomial's few u.
double gamma_roundings(double x) {
    const double n = std::trunc(x);
    return x < 0.0 ? 4.0 - n : x < 1.0 ? 2.0 : x < 2.0 ? 1.0 : n - 1.0;
}
double gamma_bound(double x) { return 6.0 + 1.1 * gamma_roundings(x); }
// A normal probability at x: z = x/√2 carries the rounded constant and the division or product (under
// 1.9u), magnified by erfc's logarithmic derivative 2z + 1/z into (x² + 1)·1.9u, on top of erfc's few u.
double normal_bound(double x) { return 4.0 + 1.9 * (x * x + 1.0); }

TEST(Specfun, AccuracyInEveryRangeWithinItsBound) {
    const std::map<std::string, double (*)(double, KorError *)> plain = {
        {"s14ab", s14abc}, {"s14aa", s14aac}, {"s15ab", s15abc}, {"s15ac", s15acc}, {"s15ad", s15adc}, {"s15ae", s15aec}};
    std::map<std::string, std::pair<double, double>> worst;  // by function and range: error, at x
    for (const auto &row : kor::test::read_table("specfun/reference.tsv")) {
        const std::string &name = row.text(0), family = name.substr(0, 5);
        const double x = row.real(2);
        const long double r = std::strtold(row.text(3).c_str(), nullptr);
        const Kor_Tail tail = tails[std::string("LUSC").find(name.size() > 5 ? name.back() : 'L')];
        const double c = family == "g01ea" ? call(g01eac, tail, x) : family == "g01fa" ? call(g01fac, tail, x) : call(plain.at(name), x);
        // ln Γ crosses zero at 1 and 2, where only an absolute error means anything.
        const long double scale = family == "s14ab" ? std::max(std::fabs(r), 1.0L) : std::fabs(r);
        const double error = c == r ? 0.0 : double(std::fabs(c - r) / scale / u);
        const double bound = family == "s14aa" ? gamma_bound(x) : family == "g01fa" ? 6.0 : name == "s15ad" ? 8.0
                           : name == "s14ab" || name == "s15ae" ? 4.0 : normal_bound(x);
        EXPECT_LE(error, bound) << name << "(" << x << ") = " << c << ", reference " << double(r);
        auto &w = worst[name + " " + row.text(1)];
        if (error >= w.first) w = {error, x};
    }
    for (const auto &[key, w] : worst) std::printf("%-28s %8.2f u at %.17g\n", key.c_str(), w.first, w.second);
}

TEST(Specfun, NanGivesNanWithoutFailure) {
    for (auto f : {s14aac, s14abc, s15abc, s15acc, s15adc, s15aec}) EXPECT_TRUE(std::isnan(call(f, NAN)));
    for (Kor_Tail tail : tails) EXPECT_TRUE(std::isnan(call(g01eac, tail, NAN)) && std::isnan(call(g01fac, tail, NAN)));
}

// Expects the exit Tag of `info` with the given values.
template <class Tag, const kor::frame::RoutineInfo &info>
void expect_reals(const KorError &fail, const std::vector<double> &values) {
    const std::vector<double> got = kor::test::exit_reals<Tag>(info, fail);
    EXPECT_TRUE(std::equal(got.begin(), got.end(), values.begin(), values.end(), same_bits)) << testing::PrintToString(got);
}

TEST(S14, FailuresReportTheArgumentAndReturnTheirValue) {
    using namespace kor;
    const double at_limit = 4.3e+304, near_zero = 4.4843049327354256e+307, above_170 = std::nextafter(170.0, INFINITY);
    const double below_smallest = std::nextafter(2.23e-308, 0.0), above_x_big = std::nextafter(2.55e305, INFINITY);
    const struct Row {
        double (*f)(double, KorError *);
        double x;
        void (*expect)(const KorError &, const std::vector<double> &);
        std::vector<double> values;
        double returned;
    } rows[] = {
        {s14abc, 0.0, expect_reals<s14ab::Exit::not_positive, s14ab::info>, {0.0}, DBL_MAX},
        {s14abc, -0.0, expect_reals<s14ab::Exit::not_positive, s14ab::info>, {-0.0}, DBL_MAX},
        {s14abc, -3.5, expect_reals<s14ab::Exit::not_positive, s14ab::info>, {-3.5}, 0.0},
        {s14abc, -0x1p-1074, expect_reals<s14ab::Exit::not_positive, s14ab::info>, {-0x1p-1074}, 0.0},
        {s14abc, -INFINITY, expect_reals<s14ab::Exit::not_positive, s14ab::info>, {-INFINITY}, 0.0},
        {s14abc, above_x_big, expect_reals<s14ab::Exit::too_large, s14ab::info>, {above_x_big, 2.55e305}, DBL_MAX},
        {s14abc, INFINITY, expect_reals<s14ab::Exit::too_large, s14ab::info>, {INFINITY, 2.55e305}, DBL_MAX},
        {s14aac, above_170, expect_reals<s14aa::Exit::too_large, s14aa::info>, {above_170, 170}, at_limit},
        {s14aac, INFINITY, expect_reals<s14aa::Exit::too_large, s14aa::info>, {INFINITY, 170}, at_limit},
        {s14aac, -170.5, expect_reals<s14aa::Exit::too_large_negative, s14aa::info>, {-170.5, -170}, 0.0},
        {s14aac, -INFINITY, expect_reals<s14aa::Exit::too_large_negative, s14aa::info>, {-INFINITY, -170}, 0.0},
        {s14aac, 0.0, expect_reals<s14aa::Exit::too_close_to_zero, s14aa::info>, {0.0, 2.23e-308}, near_zero},
        {s14aac, -0.0, expect_reals<s14aa::Exit::too_close_to_zero, s14aa::info>, {-0.0, 2.23e-308}, near_zero},
        {s14aac, below_smallest, expect_reals<s14aa::Exit::too_close_to_zero, s14aa::info>, {below_smallest, 2.23e-308}, near_zero},
        {s14aac, -1e-310, expect_reals<s14aa::Exit::too_close_to_zero, s14aa::info>, {-1e-310, 2.23e-308}, -near_zero},
    };
    std::vector<Row> all(std::begin(rows), std::end(rows));
    for (int k = 1; k <= 170; ++k) all.push_back({s14aac, -double(k), expect_reals<s14aa::Exit::negative_integer, s14aa::info>, {-double(k)}, at_limit});
    for (const Row &row : all) {
        KorError fail = KOR_ERROR_INIT;
        const double value = row.f(row.x, &fail);
        SCOPED_TRACE(testing::PrintToString(row.x));
        row.expect(fail, row.values);
        EXPECT_TRUE(same_bits(value, row.returned)) << value;
    }
}

TEST(S14, TinyArgumentsAndClosedForms) {
    // ln Γ(x) = -ln x below 2^-53; Γ(x) = 1/x for 2.23e-308 <= |x| <= 1e-17, and to
    // within rounding just above -2^-54, where x + 1 rounds to 1 but x is no integer.
    for (double x : {0x1p-53, 1e-100, DBL_MIN, 1e-310, 0x1p-1074}) EXPECT_EQ(call(s14abc, x), -std::log(x)) << x;
    for (double x : {1e-17, -1e-17, 1e-20, 2.23e-308, -2.23e-308}) EXPECT_EQ(call(s14aac, x), 1.0 / x) << x;
    for (double x : {-1.5e-17, -5e-17, -0x1p-54}) EXPECT_LE(rel_error(call(s14aac, x), 1.0 / x), 4.0) << x;
    double factorial = 1.0;  // Γ(n) = (n - 1)!, exact in double up to n = 23
    for (int n = 1; n <= 23; factorial *= n++) EXPECT_LE(rel_error(call(s14aac, n), factorial), gamma_bound(n)) << n;
}

TEST(S14, RecurrenceGlibcAndEachOther) {
    // x + 1 is exact for every x here, and Γ(x) and Γ(x + 1) share the polynomial's value.
    for (double k = -169.0; k < 169.0; ++k)
        for (double x : {k + 0x1p-20, k + 0.5, k + 1.0 - 0x1p-20}) {
            const double g = call(s14aac, x), next = call(s14aac, x + 1.0);
            EXPECT_LE(rel_error(x * g, next), 2.0 + 1.1 * (gamma_roundings(x) + gamma_roundings(x + 1.0))) << x;
        }
    std::vector<double> xs;
    for (double x = 1e-17; x < 1.0; x *= 1.0173) xs.insert(xs.end(), {x, -x});
    for (double x = -169.99; x <= 170.0; x += 0.0173) xs.push_back(x);
    for (int k = 1; k <= 169; ++k) xs.insert(xs.end(), {std::nextafter(-k, 0.0), std::nextafter(-k, -INFINITY), k + 1.0});
    for (double x : xs)  // glibc's tgamma is good to about 10 u
        EXPECT_LE(rel_error(call(s14aac, x), std::tgamma(x)), 30.0 + gamma_bound(x)) << x;
    for (double x = 1e-16; x < 2.55e305; x *= 1.0137) {
        const double lg = call(s14abc, x), ref = std::lgamma(x);
        EXPECT_LE(std::fabs(lg - ref) / std::max(std::fabs(ref), 1.0), 2e-15) << x;
        if (x < 170.0) {  // ln of Γ is ln Γ
            EXPECT_LE(std::fabs(std::log(call(s14aac, x)) - lg), (gamma_bound(x) + 8.0 * std::max(1.0, std::fabs(lg))) * u) << x;
        }
    }
}

TEST(S14ab, ContinuousAcrossTheEdgesOfItsRanges) {
    // Each edge's neighbours come from different formulas (or with and without
    // the correction series): their difference must be the slope times the
    // step, to a few u of max(|ln Γ|, 1) on either side.
    for (double edge : {0x1p-53, 0.5, 0.6796875, 1.5, 4.0, 12.0, 2.24e76}) {
        const double lo = std::nextafter(edge, 0.0), hi = std::nextafter(edge, INFINITY), h = 1e-5 * edge;
        const double slope = (std::lgamma(edge + h) - std::lgamma(edge - h)) / (2.0 * h);
        const double f_lo = call(s14abc, lo), f_mid = call(s14abc, edge), f_hi = call(s14abc, hi);
        const double scale = 8.0 * u * std::max({std::fabs(f_lo), std::fabs(f_hi), 1.0});
        EXPECT_LE(std::fabs((f_hi - f_lo) - slope * (hi - lo)), scale) << edge;
        EXPECT_LE(std::fabs((f_mid - f_lo) - slope * (edge - lo)), scale) << edge;
    }
}

// Arguments from -40 to 40, denser near 0, with the signed zeros.
std::vector<double> arguments() {
    std::vector<double> xs = {0.0, -0.0, 1e-300, -1e-300, DBL_MIN, 0x1p-1074, INFINITY, -INFINITY};
    for (double x = 1e-8; x < 40.0; x *= 1.013) xs.insert(xs.end(), {x, -x});
    return xs;
}

TEST(Specfun, NormalIdentitiesAndTheCLibrarysErfAndErfc) {
    for (double x : arguments()) {
        EXPECT_TRUE(same_bits(call(s15adc, x), std::erfc(x)) && same_bits(call(s15aec, x), std::erf(x))) << x;
        const double p = call(s15abc, x), q = call(s15acc, x);
        if (std::fabs(x) <= 8.0) { EXPECT_LE(std::fabs(p + q - 1.0), 4.0 * u) << x; }
        const double lower = call(g01eac, Kor_TailLower, x), upper = call(g01eac, Kor_TailUpper, x);
        const double central = call(g01eac, Kor_TailCentral, x), signif = call(g01eac, Kor_TailSignificance, x);
        EXPECT_TRUE(same_bits(lower, call(g01eac, Kor_TailUpper, -x))) << x;
        EXPECT_TRUE(same_bits(central, call(g01eac, Kor_TailCentral, -x)) && same_bits(signif, call(g01eac, Kor_TailSignificance, -x))) << x;
        EXPECT_LE(std::fabs(signif - (1.0 - central)), 4.0 * u) << x;
        EXPECT_LE(std::fabs(lower + upper - 1.0), 4.0 * u) << x;
    }
    EXPECT_TRUE(call(g01eac, Kor_TailSignificance, 0.0) == 1.0 && call(g01eac, Kor_TailCentral, 0.0) == 0.0);
    EXPECT_TRUE(call(s15abc, 0.0) == 0.5 && call(s15acc, -0.0) == 0.5);
}

TEST(G01fa, InvertsG01eaOverTheWholeInterval) {
    std::vector<double> ps;
    for (double p = 1e-300; p < 0.5; p *= 1.07) ps.insert(ps.end(), {p, 1.0 - p < 1.0 ? 1.0 - p : 0.5});
    for (int k = 1; k <= 53; ++k) ps.push_back(1.0 - std::ldexp(1.0, -k));
    for (int t = 0; t < 4; ++t)
        for (double p : ps) {
            const double z = call(g01fac, tails[t], p), back = call(g01eac, tails[t], z);
            // AS 241's few u on z carried by the conditioning |z| |dP/dz| / P, and
            // g01ea's own error; the central tail's 0.5p + 0.5 may round by u.
            const double conditioning = std::fabs(z) * (t < 2 ? 1.0 : 2.0) * std::exp(-0.5 * z * z) / std::sqrt(2.0 * M_PI) / p;
            const double bound = p * (8.0 * conditioning + normal_bound(z)) * u + (t == 3 ? u : 0.0);
            EXPECT_LE(std::fabs(back - p), bound) << "tail " << t << ": p = " << p << ", z = " << z;
        }
    for (double p = 1e-300; p < 1.0; p *= 1.3) EXPECT_TRUE(same_bits(call(g01fac, Kor_TailUpper, p), -call(g01fac, Kor_TailLower, p)));
    // The deviates of a uniform of exactly 0 or 1 (for the normal generator): the smallest normal double.
    EXPECT_TRUE(kor::specfun::inverse_normal(0.0) == call(g01fac, Kor_TailLower, 0x1p-1022) && kor::specfun::inverse_normal(1.0) == -kor::specfun::inverse_normal(0.0));
}

TEST(G01, ExitsReturnZero) {
    using namespace kor;
    for (int bad : {4, 7, 255})
        for (double x : {0.5, 0.0, 1.0, -1.0, double(NAN)}) {  // the tail is checked before p
            KorError fail = KOR_ERROR_INIT;
            EXPECT_TRUE(same_bits(g01eac(Kor_Tail(bad), x, &fail), 0.0));
            kor::test::exit_values<g01ea::Exit::tail_invalid>(g01ea::info, fail);
            EXPECT_TRUE(same_bits(g01fac(Kor_Tail(bad), x, &fail), 0.0));
            kor::test::exit_values<g01fa::Exit::tail_invalid>(g01fa::info, fail);
        }
    for (Kor_Tail tail : tails) {
        for (double p : {0.0, -0.0, -0.5, -HUGE_VAL, -0x1p-1074}) {
            KorError fail = KOR_ERROR_INIT;
            EXPECT_TRUE(same_bits(g01fac(tail, p, &fail), 0.0));
            expect_reals<g01fa::Exit::p_not_positive, g01fa::info>(fail, {p});
        }
        for (double p : {1.0, std::nextafter(1.0, 2.0), 1e300, HUGE_VAL}) {
            KorError fail = KOR_ERROR_INIT;
            EXPECT_TRUE(same_bits(g01fac(tail, p, &fail), 0.0));
            expect_reals<g01fa::Exit::p_not_below_one, g01fa::info>(fail, {p});
        }
    }
}

TEST(G01, LowerCaseLettersFromFortranCallers) {
    // Only Fortran-style callers pass the tail as a letter; the engines take either case.
    for (int t = 0; t < 4; ++t) {
        const char letter = "lusc"[t];
        const double x = -1.25, p = 0.125;
        int64_t ifail = 1;
        EXPECT_EQ(g01eaf_(&letter, &x, &ifail, 1), call(g01eac, tails[t], x)) << letter;
        EXPECT_EQ(g01faf_(&letter, &p, &ifail, 1), call(g01fac, tails[t], p)) << letter;
        EXPECT_EQ(ifail, 0);
    }
}

}  // namespace
