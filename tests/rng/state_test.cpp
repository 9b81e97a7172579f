// The generator state through the basic generator: initialisation and its
// exits, the size query, the state check as every consumer runs it, and
// the uniform and normal stages.  Expected streams come from the published
// iterates of 13^13 mod 2^59 (mcg59_ref.txt in the project's data).
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "kor.h"
#include "rng/rng_support.hpp"
#include "specfun/inverse_normal.hpp"

namespace {

using namespace kor::rng_test;

State basic_state(int64_t seed) { return init(Kor_Basic, 0, {seed}, 17); }

// x <- 13^13 x mod 2^59 on the generator's own value; the uniform is
// 1 - x/2^59 formed from the two 30-bit halves of 2x.
struct Mcg59 {
    unsigned __int128 x;
    double next() {
        x = (x * 302875106592253u) % (static_cast<unsigned __int128>(1) << 59);
        const uint64_t doubled = uint64_t(x) << 1;
        return 1.0 - (double(doubled >> 30) * 0x1p-30 + double(doubled & ((1u << 30) - 1)) * 0x1p-60);
    }
};

TEST(BasicGenerator, MatchesThePublishedIterates) {
    // Seed s starts the generator at x0 = 2s + 1 and advances once.
    const struct { int64_t seed; uint64_t x2; } cases[] = {
        {61728394, 560990357701968317u},   // x0 = 123456789
    };
    for (const auto &c : cases) {
        std::vector<int64_t> state = basic_state(c.seed);
        double u;
        KorError fail = KOR_ERROR_INIT;
        g05sac(1, state.data(), &u, &fail);
        EXPECT_EQ(u, 1.0 - double(c.x2) / 576460752303423488.0);
    }
}

TEST(BasicGenerator, LongStreamAgreesWithAnIndependentRecurrence) {
    std::vector<int64_t> state = basic_state(987654321);
    Mcg59 oracle{2 * 987654321u + 1};
    oracle.next();
    std::vector<double> x(100000);
    KorError fail = KOR_ERROR_INIT;
    g05sac(int64_t(x.size()), state.data(), x.data(), &fail);
    for (size_t i = 0; i < x.size(); ++i) ASSERT_EQ(x[i], oracle.next()) << "value " << i;
}

TEST(BasicGenerator, SeedOneGivesTheDocumentedDigits) {
    // X = 4 + 2 = 6 before the first advance, then 13^13 * 6 mod 2^60.
    std::vector<int64_t> state = basic_state(1);
    const unsigned __int128 x = (static_cast<unsigned __int128>(302875106592253u) * 6) % (static_cast<unsigned __int128>(1) << 60);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(state[4 + i], int64_t((uint64_t(x) >> (15 * i)) & 0x7fff));
    EXPECT_EQ(state[0], 17);
    EXPECT_EQ(state[1], 1234);
    EXPECT_EQ(state[2], 1);
    EXPECT_EQ(state[13], 1234);
    EXPECT_EQ(state[14], 1);
    EXPECT_EQ(state[15], 1);
    EXPECT_EQ(state[16], 1234);
}

TEST(Initialisation, SizeQueryAndExits) {
    KorError fail = KOR_ERROR_INIT;
    int64_t seed = 5, lstate = 0;
    g05kfc(Kor_Basic, 0, &seed, 1, nullptr, &lstate, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(lstate, 17);

    std::vector<int64_t> state(40, -7);
    const struct {
        Kor_BaseGenerator genid;
        int64_t seed, lseed, lstate;
        int code;
        std::string message;
    } cases[] = {
        {Kor_BaseGenerator(2149), 5, 1, 40, NE_BAD_PARAM,
         "NE_BAD_PARAM:\n  On entry, argument genid had an illegal value.\n  Constraint: genid = Kor_Basic, "
         "Kor_WichmannHill_I, Kor_MersenneTwister, Kor_WichmannHill_II, Kor_ACORN or Kor_MRG32k3a."},
        {Kor_Basic, 0, 1, 40, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {Kor_Basic, -3, 1, 40, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {Kor_Basic, 5, 0, 40, NE_INT, "NE_INT:\n  On entry, lseed = 0.\n  Constraint: lseed >= 1."},
        {Kor_Basic, 5, 1, 16, NE_INT, "NE_INT:\n  On entry, lstate = 16.\n  Constraint: lstate <= 0 or lstate >= 17."},
        {Kor_Basic, 5, 1, 2, NE_INT, "NE_INT:\n  On entry, lstate = 2.\n  Constraint: lstate <= 0 or lstate >= 17."},
    };
    for (const auto &c : cases) {
        std::vector<int64_t> before = state;
        int64_t length = c.lstate, s = c.seed;
        g05kfc(c.genid, 0, &s, c.lseed, state.data(), &length, &fail);
        EXPECT_EQ(fail.code, c.code) << c.message;
        EXPECT_EQ(fail.message, c.message);
        EXPECT_EQ(length, c.lstate);
        EXPECT_EQ(state, before) << "a failed initialisation must leave state alone";
    }
}

TEST(Initialisation, LongerStateAcceptedAndLengthLeftAsGiven) {
    std::vector<int64_t> state(50);
    int64_t seed = 77, lstate = 50;
    KorError fail = KOR_ERROR_INIT;
    g05kfc(Kor_Basic, 0, &seed, 1, state.data(), &lstate, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(lstate, 50);
    EXPECT_EQ(state[0], 17);
}

// Each way of damaging a state is caught by every consumer, which then
// writes nothing and leaves the state alone.
TEST(StateCheck, EveryConsumerRefusesADamagedState) {
    const std::vector<std::pair<int, int64_t>> damage = {
        {0, 16}, {0, 2}, {0, 1 << 30}, {1, 1235}, {16, 1}, {13, 0}, {2, 7}, {2, 0}, {14, 0}, {15, -1}};
    for (const auto &[position, value] : damage) {
        std::vector<int64_t> state = basic_state(42);
        state[size_t(position)] = value;
        const std::vector<int64_t> before = state;
        double x[4] = {-1, -1, -1, -1};
        KorError fail = KOR_ERROR_INIT;
        g05sac(4, state.data(), x, &fail);
        EXPECT_EQ(fail.message, corrupt_message) << "state[" << position << "] = " << value;
        g05skc(4, 0.0, 1.0, state.data(), x, &fail);
        EXPECT_EQ(fail.message, corrupt_message);
        g05khc(2, 1, state.data(), &fail);
        EXPECT_EQ(fail.message, corrupt_message);
        g05kjc(5, state.data(), &fail);
        EXPECT_EQ(fail.message, corrupt_message);
        g05kkc(5, state.data(), &fail);
        EXPECT_EQ(fail.message, corrupt_message);
        EXPECT_EQ(state, before);
        EXPECT_EQ(x[0], -1.0);
    }
}

TEST(Variates, ArgumentExitsLeaveOutputAndStateAlone) {
    std::vector<int64_t> state = basic_state(42);
    const std::vector<int64_t> before = state;
    double x[2] = {-1, -1};
    KorError fail = KOR_ERROR_INIT;
    g05sac(-1, state.data(), x, &fail);
    EXPECT_EQ(std::string(fail.message), "NE_INT:\n  On entry, n = -1.\n  Constraint: n >= 0.");
    g05skc(-2, 0.0, 1.0, state.data(), x, &fail);
    EXPECT_EQ(std::string(fail.message), "NE_INT:\n  On entry, n = -2.\n  Constraint: n >= 0.");
    g05skc(2, 0.0, -0.5, state.data(), x, &fail);
    EXPECT_EQ(std::string(fail.message), "NE_REAL:\n  On entry, var = -5.0e-01.\n  Constraint: var >= 0.0.");
    g05skc(2, 0.0, NAN, state.data(), x, &fail);
    EXPECT_EQ(fail.code, NE_REAL);
    EXPECT_EQ(state, before);
    EXPECT_EQ(x[0], -1.0);
    g05sac(0, state.data(), x, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(state, before);
}

TEST(Variates, NormalIsTheInverseOfTheUniformStream) {
    std::vector<int64_t> a = basic_state(2024), b = a;
    std::vector<double> u(1000), z(1000);
    KorError fail = KOR_ERROR_INIT;
    g05sac(1000, a.data(), u.data(), &fail);
    g05skc(1000, 3.0, 4.0, b.data(), z.data(), &fail);
    ASSERT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(a, b) << "one uniform per normal variate";
    for (size_t i = 0; i < u.size(); ++i) EXPECT_EQ(z[i], 3.0 + 2.0 * kor::specfun::inverse_normal(u[i]));
}

TEST(Variates, ZeroVarianceLeavesTheStateAlone) {
    std::vector<int64_t> state = basic_state(9);
    const std::vector<int64_t> before = state;
    double x[3];
    KorError fail = KOR_ERROR_INIT;
    g05skc(3, -1.25, 0.0, state.data(), x, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(state, before);
    for (double v : x) EXPECT_EQ(v, -1.25);
}

TEST(Variates, InversionIsFiniteAtBothEnds) {
    EXPECT_TRUE(std::isfinite(kor::specfun::inverse_normal(0.0)));
    EXPECT_TRUE(std::isfinite(kor::specfun::inverse_normal(1.0)));
    EXPECT_LT(kor::specfun::inverse_normal(0.0), -37.0);
    EXPECT_GT(kor::specfun::inverse_normal(1.0), 37.0);
}

// The odd residues mod 2^60 have exponent 2^58: skipping 2^58 values
// returns to the same state, and 2^500 as well.  (Leap-frog and skips
// against the plain stream: AllGenerators in generators_test.cpp.)
TEST(BasicGenerator, SkipsByMultiplesOfThePeriodReturnToTheStart) {
    std::vector<int64_t> start = basic_state(5), far = start, farther = start;
    skip_power(far, 58);
    skip_power(farther, 500);
    EXPECT_EQ(far, start);
    EXPECT_EQ(farther, start);
}

TEST(Partitioning, ArgumentExits) {
    std::vector<int64_t> state = basic_state(3);
    KorError fail = KOR_ERROR_INIT;
    g05khc(0, 1, state.data(), &fail);
    EXPECT_EQ(std::string(fail.message), "NE_INT:\n  On entry, n = 0.\n  Constraint: n >= 1.");
    g05khc(3, 4, state.data(), &fail);
    EXPECT_EQ(std::string(fail.message), "NE_INT_2:\n  On entry, k = 4 and n = 3.\n  Constraint: 0 < k <= n.");
    g05khc(3, 0, state.data(), &fail);
    EXPECT_EQ(fail.code, NE_INT_2);
    g05kjc(-1, state.data(), &fail);
    EXPECT_EQ(std::string(fail.message), "NE_INT:\n  On entry, n = -1.\n  Constraint: n >= 0.");
    g05kkc(-1, state.data(), &fail);
    EXPECT_EQ(fail.code, NE_INT);
}

}  // namespace
