// s15ab..s15ae, g01ea and g01fa through the C interface: values against
// long-double erf/erfc and exact identities, g01fa as the inverse of
// g01ea over the whole open interval, and every exit of g01ea and g01fa.
#include <cfloat>
#include <cmath>
#include <string>
#include <vector>

#include "specfun/specfun_support.hpp"

using namespace specfun_test;

namespace {

const Kor_Tail tails[] = {Kor_TailLower, Kor_TailUpper, Kor_TailSignificance, Kor_TailCentral};
const char *const tail_names[] = {"lower", "upper", "significance", "central"};

const char *const bad_tail_message =
    "NE_BAD_PARAM:\n  On entry, argument tail had an illegal value.\n  Constraint: tail = "
    "Kor_TailLower, Kor_TailUpper, Kor_TailSignificance or Kor_TailCentral.";

// A C caller may pass any int as a Kor_Tail; here Kor_Tail(7) stands for
// that (the interface reads the value bytewise, so even the sanitizers'
// enum check has nothing to object to).

// Arguments from -40 to 40, denser near 0, with the signed zeros.
std::vector<double> arguments() {
    std::vector<double> xs = {0.0, -0.0, 1e-300, -1e-300, DBL_MIN, 4.9406564584124654e-324};
    for (double x = 1e-8; x < 40.0; x *= 1.013) {
        xs.push_back(x);
        xs.push_back(-x);
    }
    return xs;
}

// The probability of each tail at x, in long double.
long double tail_reference(Kor_Tail tail, double x) {
    const long double z = (long double)x / std::sqrt(2.0L);
    switch (tail) {
    case Kor_TailLower: return 0.5L * std::erfc(-z);
    case Kor_TailUpper: return 0.5L * std::erfc(z);
    case Kor_TailSignificance: return std::erfc(std::fabs(z));
    default: return std::erf(std::fabs(z));
    }
}

// Relative bound in u for a probability at x: erfc's few u, and the
// rounded 1/√2 and the product (2u on z = x/√2) magnified by erfc's
// logarithmic derivative 2z + 1/z, that is (x² + 1)·2u.
double tail_bound(double x) { return 6.0 + 2.1 * (x * x + 1.0); }

TEST(S15, CumulativeNormalAtZeroIsOneHalf) {
    for (double x : {0.0, -0.0}) {
        EXPECT_EQ(s15abc(x, nullptr), 0.5);
        EXPECT_EQ(s15acc(x, nullptr), 0.5);
    }
}

TEST(S15, CumulativeNormalAndComplementAgainstLongDouble) {
    for (double x : arguments()) {
        const Outcome p = call(s15abc, x), q = call(s15acc, x);
        EXPECT_SUCCEEDED(p);
        EXPECT_SUCCEEDED(q);
        const long double z = (long double)x / std::sqrt(2.0L);
        const double p_ref = double(0.5L * std::erfc(-z)), q_ref = double(0.5L * std::erfc(z));
        if (p_ref > DBL_MIN) {
            EXPECT_LE(rel_error(p.value, p_ref), tail_bound(x)) << "P(" << x << ")";
        }
        if (q_ref > DBL_MIN) {
            EXPECT_LE(rel_error(q.value, q_ref), tail_bound(x)) << "Q(" << x << ")";
        }
        EXPECT_TRUE(same_bits(kor_cumul_normal(x, nullptr), p.value));
        EXPECT_TRUE(same_bits(kor_cumul_normal_complem(x, nullptr), q.value));
    }
}

TEST(S15, CumulativeNormalAndComplementSumToOne) {
    for (double x = -8.0; x <= 8.0; x += 1.0 / 64) {
        const double sum = s15abc(x, nullptr) + s15acc(x, nullptr);
        EXPECT_LE(std::fabs(sum - 1.0), 4.0 * u) << "x = " << x;
    }
}

TEST(S15, ErfAndErfcAreTheCLibrarysBitForBit) {
    std::vector<double> xs = arguments();
    xs.insert(xs.end(), {inf, -inf, NAN, DBL_MAX, -DBL_MAX, 26.5, 27.3, -6.0});
    for (double x : xs) {
        const Outcome c = call(s15adc, x), e = call(s15aec, x);
        EXPECT_SUCCEEDED(c);
        EXPECT_SUCCEEDED(e);
        EXPECT_TRUE(same_bits(c.value, std::erfc(x))) << "erfc(" << x << ") = " << c.value;
        EXPECT_TRUE(same_bits(e.value, std::erf(x))) << "erf(" << x << ") = " << e.value;
        EXPECT_TRUE(same_bits(kor_erfc_real(x, nullptr), c.value));
        EXPECT_TRUE(same_bits(kor_erf_real(x, nullptr), e.value));
    }
}

TEST(S15, NaNGivesNaN) {
    for (auto f : {s15abc, s15acc, s15adc, s15aec}) {
        const Outcome r = call(f, NAN);
        EXPECT_TRUE(std::isnan(r.value));
        EXPECT_SUCCEEDED(r);
    }
}

// Every report into a record reaches its handler, the closing NE_NOERROR
// of a successful call included.
struct Seen {
    static inline int calls = 0, code = -1;
    static inline std::string routine;
    static void handler(const char *, int c, const char *name) {
        ++calls;
        code = c;
        routine = name;
    }
};

TEST(S15, NeverFailAndTheHandlerSeesCodeZero) {
    const struct { double (*f)(double, KorError *); const char *name; } routines[] = {
        {s15abc, "s15abc"}, {s15acc, "s15acc"}, {s15adc, "s15adc"}, {s15aec, "s15aec"}};
    for (const auto &r : routines)
        for (double x : {-1e300, -40.0, -1.0, 0.0, 0.5, 40.0, inf, -inf, double(NAN)}) {
            KorError fail = KOR_ERROR_INIT;
            fail.code = 99;
            fail.errnum = 5;
            fail.handler = Seen::handler;
            Seen::calls = 0;
            r.f(x, &fail);
            EXPECT_EQ(fail.code, NE_NOERROR) << r.name << "(" << x << ")";
            EXPECT_EQ(fail.errnum, 0);
            EXPECT_EQ(Seen::calls, 1);
            EXPECT_EQ(Seen::code, 0);
            EXPECT_EQ(Seen::routine, r.name);
        }
}

TEST(G01ea, TailsAgainstLongDouble) {
    for (int t = 0; t < 4; ++t)
        for (double x : arguments()) {
            const Outcome r = call(g01eac, tails[t], x);
            EXPECT_SUCCEEDED(r);
            const double ref = double(tail_reference(tails[t], x));
            if (ref > DBL_MIN) {
                EXPECT_LE(rel_error(r.value, ref), tail_bound(x))
                    << tail_names[t] << "(" << x << ") = " << r.value << " vs " << ref;
            } else {
                EXPECT_LE(r.value, DBL_MIN) << tail_names[t] << "(" << x << ")";
            }
            EXPECT_TRUE(same_bits(kor_prob_normal(tails[t], x, nullptr), r.value));
        }
}

TEST(G01ea, Identities) {
    for (double x : arguments()) {
        const double lower = g01eac(Kor_TailLower, x, nullptr), upper = g01eac(Kor_TailUpper, x, nullptr);
        const double central = g01eac(Kor_TailCentral, x, nullptr);
        const double signif = g01eac(Kor_TailSignificance, x, nullptr);
        EXPECT_TRUE(same_bits(central, g01eac(Kor_TailCentral, -x, nullptr))) << x;
        EXPECT_TRUE(same_bits(signif, g01eac(Kor_TailSignificance, -x, nullptr))) << x;
        EXPECT_TRUE(same_bits(lower, g01eac(Kor_TailUpper, -x, nullptr))) << x;
        EXPECT_LE(std::fabs(signif - (1.0 - central)), 4.0 * u) << x;
        EXPECT_LE(std::fabs(lower + upper - 1.0), 4.0 * u) << x;
    }
    EXPECT_EQ(g01eac(Kor_TailLower, 0.0, nullptr), 0.5);
    EXPECT_EQ(g01eac(Kor_TailUpper, 0.0, nullptr), 0.5);
    EXPECT_EQ(g01eac(Kor_TailSignificance, 0.0, nullptr), 1.0);
    EXPECT_EQ(g01eac(Kor_TailCentral, 0.0, nullptr), 0.0);
}

TEST(G01ea, NaNGivesNaN) {
    for (Kor_Tail tail : tails) {
        const Outcome r = call(g01eac, tail, NAN);
        EXPECT_TRUE(std::isnan(r.value));
        EXPECT_SUCCEEDED(r);
    }
}

TEST(G01ea, InvalidTail) {
    for (int bad : {4, 7, 255}) {
        for (double x : {1.0, 0.0, double(NAN)}) {
            const Outcome r = call(g01eac, Kor_Tail(bad), x);
            EXPECT_EQ(r.fail.code, NE_BAD_PARAM) << "tail " << bad;
            EXPECT_EQ(r.fail.errnum, 1);
            EXPECT_EQ(std::string(r.fail.message), bad_tail_message);
            EXPECT_TRUE(same_bits(r.value, 0.0)) << r.value;
        }
    }
}

// The deviate's effect on the probability: |z| |dP/dz| / P.
double conditioning(Kor_Tail tail, double z, double p) {
    const double density = std::exp(-0.5 * z * z) / std::sqrt(2.0 * M_PI);
    const double factor = (tail == Kor_TailLower || tail == Kor_TailUpper) ? 1.0 : 2.0;
    return std::fabs(z) * factor * density / p;
}

TEST(G01fa, InvertsG01eaOverTheWholeInterval) {
    std::vector<double> ps;
    for (double p = 1e-300; p < 0.5; p *= 1.07) {
        ps.push_back(p);
        if (1.0 - p < 1.0) ps.push_back(1.0 - p);
    }
    for (int k = 1; k <= 53; ++k) ps.push_back(1.0 - std::ldexp(1.0, -k));
    for (double p = 0.01; p < 1.0; p += 0.01) ps.push_back(p);
    for (int t = 0; t < 4; ++t)
        for (double p : ps) {
            // At 1 - 2^-53 the central tail's 0.5p + 0.5 rounds to 1: see
            // CentralTailAtTheLargestP.
            if (tails[t] == Kor_TailCentral && p == 1.0 - 0x1p-53) continue;
            const Outcome z = call(g01fac, tails[t], p);
            ASSERT_EQ(z.fail.code, NE_NOERROR) << tail_names[t] << " p = " << p;
            ASSERT_TRUE(std::isfinite(z.value)) << tail_names[t] << " p = " << p;
            const double back = g01eac(tails[t], z.value, nullptr);
            // AS 241's few u on z, carried by the conditioning, plus g01ea's
            // own error; the central tail's argument 0.5p + 0.5 is rounded,
            // which moves its probability by up to u.
            double bound = p * (8.0 * conditioning(tails[t], z.value, p) + tail_bound(z.value)) * u;
            if (tails[t] == Kor_TailCentral) bound += u;
            EXPECT_LE(std::fabs(back - p), bound)
                << tail_names[t] << ": p = " << p << ", z = " << z.value << ", back " << back;
        }
}

// 1 - 2^-53 is a valid probability; its central deviate z solves
// Φ(z) = 1 - 2^-54 (40-digit mpmath).  0.5p + 0.5 rounds to 1 here, so the
// deviate must come from the other end of the interval.
TEST(G01fa, CentralTailAtTheLargestP) {
    const Outcome z = call(g01fac, Kor_TailCentral, 1.0 - 0x1p-53);
    EXPECT_SUCCEEDED(z);
    EXPECT_NEAR(z.value, 8.2923610758135955382, 1e-12) << z.value;
}

TEST(G01fa, KnownDeviatesAndSymmetry) {
    const double z975 = 1.9599639845400542355;  // Φ⁻¹(0.975)
    EXPECT_LE(rel_error(g01fac(Kor_TailSignificance, 0.05, nullptr), z975), 16.0);
    EXPECT_LE(rel_error(g01fac(Kor_TailCentral, 0.95, nullptr), z975), 16.0);
    EXPECT_LE(rel_error(g01fac(Kor_TailLower, 0.975, nullptr), z975), 16.0);
    EXPECT_LE(rel_error(g01fac(Kor_TailUpper, 0.025, nullptr), z975), 16.0);
    EXPECT_EQ(g01fac(Kor_TailLower, 0.5, nullptr), 0.0);
    std::vector<double> ps;
    for (double p = 1e-300; p < 0.5; p *= 1.3) {
        ps.push_back(p);
        if (1.0 - p < 1.0) ps.push_back(1.0 - p);
    }
    for (double p : ps) {
        const double lower = g01fac(Kor_TailLower, p, nullptr);
        EXPECT_TRUE(same_bits(g01fac(Kor_TailUpper, p, nullptr), -lower)) << p;
        EXPECT_TRUE(same_bits(kor_deviates_normal(Kor_TailLower, p, nullptr), lower)) << p;
    }
}

// Deviates of subnormal probabilities at the exact doubles, from 40-digit
// mpmath (a root of ln Φ(z) = ln p); AS 241's tail formula holds them to a
// few u.
TEST(G01fa, SubnormalProbabilities) {
    const struct { double p, z; } cases[] = {
        {1e-310, -37.663060331949523732},
        {1e-320, -38.269125343032651018},  // at the double 0x0.00000000007e8p-1022
        {4.9406564584124654e-324, -38.467405617144346251},
    };
    for (const auto &c : cases) {
        const Outcome r = call(g01fac, Kor_TailLower, c.p);
        EXPECT_SUCCEEDED(r);
        EXPECT_LE(rel_error(r.value, c.z), 16.0) << "p = " << c.p << ": " << r.value;
    }
}

TEST(G01fa, NaNGivesNaN) {
    for (Kor_Tail tail : tails) {
        const Outcome r = call(g01fac, tail, NAN);
        EXPECT_TRUE(std::isnan(r.value)) << r.value;
        EXPECT_SUCCEEDED(r);
    }
}

TEST(G01fa, ProbabilityOutOfRange) {
    const struct { double p; const char *shown, *constraint; } cases[] = {
        {0.0, "0.0e+00", "p > 0.0"},     {-0.0, "-0.0e+00", "p > 0.0"},
        {-0.5, "-5.0e-01", "p > 0.0"},   {-inf, "-Infinity", "p > 0.0"},
        {1.0, "1.0e+00", "p < 1.0"},     {1.5, "1.5e+00", "p < 1.0"},
        {1e300, "1.0e+300", "p < 1.0"},  {inf, "Infinity", "p < 1.0"},
        {std::nextafter(1.0, 2.0), "1.0000000000000002e+00", "p < 1.0"},
        {-4.9406564584124654e-324, "-4.9e-324", "p > 0.0"},
    };
    for (Kor_Tail tail : tails)
        for (const auto &c : cases) {
            const Outcome r = call(g01fac, tail, c.p);
            EXPECT_EQ(r.fail.code, NE_REAL) << c.shown;
            EXPECT_EQ(r.fail.errnum, 2);
            EXPECT_EQ(std::string(r.fail.message), std::string("NE_REAL:\n  On entry, p = ") + c.shown +
                                                       ".\n  Constraint: " + c.constraint + ".");
            EXPECT_TRUE(same_bits(r.value, 0.0)) << r.value;
        }
}

TEST(G01fa, InvalidTailCheckedBeforeP) {
    for (int bad : {4, 7, 255})
        for (double p : {0.5, 0.0, 1.0, -1.0, double(NAN)}) {
            const Outcome r = call(g01fac, Kor_Tail(bad), p);
            EXPECT_EQ(r.fail.code, NE_BAD_PARAM) << "tail " << bad << ", p = " << p;
            EXPECT_EQ(r.fail.errnum, 1);
            EXPECT_EQ(std::string(r.fail.message), bad_tail_message);
            EXPECT_TRUE(same_bits(r.value, 0.0)) << r.value;
        }
}

}  // namespace
