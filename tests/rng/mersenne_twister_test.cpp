// The Mersenne Twister through the C interface: the published MT19937
// streams (mt19937ar's two initialisations), std::mt19937 as an independent
// implementation, leap-frog against the plain stream, skip-ahead against
// straight generation and against the published-method jump values, and
// the state's frame, forms and checks.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "kor.h"
#include "rng/rng_support.hpp"

namespace kor::rng {
// The polynomial jump whatever the count (g05kj steps short skips instead).
void mersenne_twister_jump(int64_t *state, uint64_t high, uint64_t low);
}  // namespace kor::rng

namespace {

using namespace kor::rng_test;

State mt_state(std::vector<int64_t> seeds, int64_t lstate = 1260) {
    return init(Kor_MersenneTwister, 1, seeds, lstate);
}

// The uniform the library documents for a tempered word y: y read as a
// signed 32-bit integer y_s, u = (y_s + 2^31) 2^-32 + 2^-53.
double uniform_of(uint32_t y) { return (double(int32_t(y)) + 2147483648.0) * 0x1p-32 + 0x1p-53; }

// The plain stream after init_genrand(seed) from the standard library's
// engine (whose constructor is init_genrand), n values from value first on.
std::vector<double> oracle(uint32_t seed, uint64_t first, int64_t n) {
    std::mt19937 engine(seed);
    engine.discard(first);
    std::vector<double> x(static_cast<size_t>(n));
    for (double &v : x) v = uniform_of(uint32_t(engine()));
    return x;
}

// Published genrand_int32 outputs (mt19937ar; the 10000th of init_genrand
// 5489 is the value the C++ standard requires of std::mt19937).
const uint32_t genrand_5489[20] = {3499211612u, 581869302u,  3890346734u, 3586334585u, 545404204u,
                                   4161255391u, 3922919429u, 949333985u,  2715962298u, 1323567403u,
                                   418932835u,  2350294565u, 1196140740u, 809094426u,  2348838239u,
                                   4264392720u, 4112460519u, 4279768804u, 4144164697u, 4156218106u};
const uint32_t by_array_1234[20] = {1067595299u, 955945823u,  477289528u,  4107218783u, 4228976476u,
                                    3344332714u, 3355579695u, 227628506u,  810200273u,  2591290167u,
                                    2560260675u, 3242736208u, 646746669u,  1479517882u, 4245472273u,
                                    1143372638u, 3863670494u, 3221021970u, 1773610557u, 1138697238u};
const std::vector<int64_t> key_1234 = {0x123, 0x234, 0x345, 0x456};

TEST(MersenneTwister, InitGenrandStreamIsThePublishedOne) {
    State state = mt_state({5489});
    const std::vector<double> x = draw(state, 10000);
    for (int i = 0; i < 20; ++i) EXPECT_EQ(x[size_t(i)], uniform_of(genrand_5489[i])) << "value " << i + 1;
    EXPECT_EQ(x[9999], uniform_of(4123659995u));
}

TEST(MersenneTwister, InitByArrayStreamIsThePublishedOne) {
    State state = mt_state(key_1234);
    const std::vector<double> x = draw(state, 1000);
    for (int i = 0; i < 20; ++i) EXPECT_EQ(x[size_t(i)], uniform_of(by_array_1234[i])) << "value " << i + 1;
    EXPECT_EQ(x[999], uniform_of(3460025646u));
}

TEST(MersenneTwister, SeedsAreTakenModulo2To32) {
    State wide = mt_state({(int64_t(1) << 32) + 5489});
    EXPECT_EQ(draw(wide, 3)[0], uniform_of(genrand_5489[0]));
    State wide_key = mt_state({0x123 + (int64_t(7) << 32), 0x234, 0x345, 0x456});
    EXPECT_EQ(draw(wide_key, 1)[0], uniform_of(by_array_1234[0]));
}

TEST(MersenneTwister, AgreesWithTheStandardLibraryInAnyPieces) {
    // Pieces that start, end and straddle block boundaries, and one large
    // fill of whole blocks.
    for (uint32_t seed : {1u, 20240601u, 4294967295u}) {
        State state = mt_state({int64_t(seed)});
        const std::vector<double> expected = oracle(seed, 0, 100000);
        std::vector<double> got;
        for (int64_t piece : {1, 622, 1, 624, 625, 7, 1247, 3000}) {
            const std::vector<double> x = draw(state, piece);
            got.insert(got.end(), x.begin(), x.end());
        }
        const std::vector<double> rest = draw(state, int64_t(expected.size() - got.size()));
        got.insert(got.end(), rest.begin(), rest.end());
        ASSERT_EQ(got.size(), expected.size());
        for (size_t i = 0; i < got.size(); ++i) ASSERT_EQ(got[i], expected[i]) << "seed " << seed << " value " << i;
    }
}

TEST(MersenneTwister, UniformsLieStrictlyInsideTheUnitInterval) {
    State state = mt_state({77});
    for (double u : draw(state, 200000)) {
        ASSERT_GT(u, 0.0);
        ASSERT_LT(u, 1.0);
    }
}

TEST(MersenneTwister, StateFrameOfBothForms) {
    State full = mt_state({5489});
    ASSERT_EQ(full[0], 1260);
    EXPECT_EQ(full[1], 3692);
    EXPECT_EQ(full[2], 3);
    EXPECT_EQ(full[3], 1);
    EXPECT_EQ(full[1256], 3692);
    EXPECT_EQ(full[1257], 1);
    EXPECT_EQ(full[1258], 1);
    EXPECT_EQ(full[1259], 3692);
    // init_genrand's first words: mt[0] = seed, mt[1] = 1812433253 (s ^ s>>30) + 1.
    EXPECT_EQ(full[4], 5489);
    EXPECT_EQ(full[5], int64_t(uint32_t(1812433253u * 5489u + 1u)));

    State small = mt_state({5489}, 700);
    ASSERT_EQ(small[0], 633);
    EXPECT_EQ(small[629], 3692);
    EXPECT_EQ(small[630], 1);
    EXPECT_EQ(small[631], 1);
    EXPECT_EQ(small[632], 3692);
    EXPECT_EQ(small[633], -1) << "nothing written past the used length";
    for (int i = 1; i < 629; ++i) EXPECT_EQ(small[size_t(i)], full[size_t(i)]) << "word " << i;
    EXPECT_EQ(draw(small, 5000), draw(full, 5000));
}

TEST(MersenneTwister, SizeQueryAndInitialisationExits) {
    KorError fail = KOR_ERROR_INIT;
    int64_t seed = 5, lstate = 0;
    g05kfc(Kor_MersenneTwister, 1, &seed, 1, nullptr, &lstate, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(lstate, 1260);
    lstate = -4;
    g05kgc(Kor_MersenneTwister, 1, nullptr, &lstate, &fail);
    EXPECT_EQ(lstate, 1260);

    State state(1260, -7);
    const struct {
        std::vector<int64_t> seeds;
        int64_t lseed, lstate;
        int code;
        std::string message;
    } cases[] = {
        {{5}, 1, 632, NE_INT, "NE_INT:\n  On entry, lstate = 632.\n  Constraint: lstate <= 0 or lstate >= 633."},
        {{5}, 1, 1, NE_INT, "NE_INT:\n  On entry, lstate = 1.\n  Constraint: lstate <= 0 or lstate >= 633."},
        {{5}, 0, 1260, NE_INT, "NE_INT:\n  On entry, lseed = 0.\n  Constraint: lseed >= 1."},
        {{0}, 1, 1260, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {{-9}, 1, 633, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {{5, 6, 0}, 3, 1260, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {{5, -1}, 2, 1260, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
    };
    for (const auto &c : cases) {
        const State before = state;
        int64_t length = c.lstate;
        std::vector<int64_t> seeds = c.seeds;
        g05kfc(Kor_MersenneTwister, 1, seeds.data(), c.lseed, state.data(), &length, &fail);
        EXPECT_EQ(fail.code, c.code) << c.message;
        EXPECT_EQ(fail.message, c.message);
        EXPECT_EQ(length, c.lstate);
        EXPECT_EQ(state, before) << "a failed initialisation leaves state alone";
    }
    // With one seed only the first is looked at.
    std::vector<int64_t> seeds = {5, 0};
    int64_t length = 1260;
    g05kfc(Kor_MersenneTwister, 1, seeds.data(), 1, state.data(), &length, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
}

TEST(MersenneTwister, NonRepeatableInitialisation) {
    State a(1260), b(1260);
    int64_t la = 1260, lb = 700;
    KorError fail = KOR_ERROR_INIT;
    g05kgc(Kor_MersenneTwister, 1, a.data(), &la, &fail);
    ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
    g05kgc(Kor_MersenneTwister, 1, b.data(), &lb, &fail);
    ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
    EXPECT_EQ(a[0], 1260);
    EXPECT_EQ(b[0], 633);
    EXPECT_NE(draw(a, 10), draw(b, 10));
}

TEST(MersenneTwister, CopiedStateIsACopiedStream) {
    State state = mt_state(key_1234);
    draw(state, 1000);
    State copy = state;
    EXPECT_EQ(draw(copy, 3000), draw(state, 3000));
    skip(state, 12345678);
    copy = state;
    EXPECT_EQ(draw(copy, 700), draw(state, 700));
}

TEST(MersenneTwister, LeapFrogStreamsInterleaveToThePlainStream) {
    for (int64_t lstate : {1260, 633}) {
        State base = mt_state({4357}, lstate);
        draw(base, 5);  // partitioning starts from wherever the stream stands
        const std::vector<double> plain = oracle(4357, 5, 7 * 2000 + 7);
        for (int64_t n : {1, 2, 3, 7}) {
            for (int64_t k = 1; k <= n; ++k) {
                State s = base;
                leapfrog(s, n, k);
                EXPECT_EQ(s[size_t(s[0] - 3)], n);
                EXPECT_EQ(s[size_t(s[0] - 2)], k);
                std::vector<double> got = draw(s, 1), more = draw(s, 700), rest = draw(s, 1299);
                got.insert(got.end(), more.begin(), more.end());
                got.insert(got.end(), rest.begin(), rest.end());
                for (size_t j = 0; j < got.size(); ++j)
                    ASSERT_EQ(got[j], plain[size_t(k - 1) + j * size_t(n)])
                        << "lstate " << lstate << " n " << n << " k " << k << " value " << j;
            }
        }
    }
}

TEST(MersenneTwister, LeapFrogWithALongStride) {
    // A stride of ten million: the full form jumps between values, the
    // short form steps; both must give the plain stream's values.
    const int64_t n = 10000001, k = 2;
    std::mt19937 engine(99);
    std::vector<double> expected;
    engine.discard(k - 1);
    for (int j = 0; j < 3; ++j) {
        expected.push_back(uniform_of(uint32_t(engine())));
        engine.discard(uint64_t(n - 1));
    }
    for (int64_t lstate : {1260, 633}) {
        State s = mt_state({99}, lstate);
        leapfrog(s, n, k);
        EXPECT_EQ(draw(s, 3), expected) << "lstate " << lstate;
    }
}

TEST(MersenneTwister, LeapFrogOfALeapFrog) {
    // Stream 2 of 3 of stream 2 of 2: the values 4, 10, 16, ... (stride 6).
    State s = mt_state({31337});
    leapfrog(s, 2, 2);
    leapfrog(s, 3, 2);
    EXPECT_EQ(s[1257], 6);
    EXPECT_EQ(s[1258], 4);
    const std::vector<double> plain = oracle(31337, 0, 6 * 500);
    const std::vector<double> got = draw(s, 400);
    for (size_t j = 0; j < got.size(); ++j) ASSERT_EQ(got[j], plain[3 + 6 * j]) << "value " << j;

    // A stride past a state word is refused, and leaves the state alone.
    State t = mt_state({31337});
    leapfrog(t, int64_t(1) << 40, 1);
    const State before = t;
    KorError fail = KOR_ERROR_INIT;
    g05khc(int64_t(1) << 40, 1, t.data(), &fail);
    EXPECT_EQ(fail.code, NE_BAD_PARAM);
    EXPECT_EQ(std::string(fail.message),
              "NE_BAD_PARAM:\n  On entry, cannot use leap-frog with the base generator defined by state.");
    EXPECT_EQ(t, before);
}

TEST(MersenneTwister, SkipEqualsDrawingTheSkippedValues) {
    // From a fresh state (block used up), mid-block and at a block's end,
    // by g05kj (which steps short skips) and by the polynomial jump.
    for (int64_t drawn : {0, 7, 624}) {
        State base = mt_state({5489});
        draw(base, drawn);
        for (int64_t n : {0, 1, 623, 624, 625, 1000, 1000000, 10000000}) {
            const std::vector<double> expected = oracle(5489, uint64_t(drawn + n), 1300);
            State stepped = base;
            skip(stepped, n);
            EXPECT_EQ(draw(stepped, 1300), expected) << "g05kj, drawn " << drawn << " n " << n;
            State jumped = base;
            kor::rng::mersenne_twister_jump(jumped.data(), 0, uint64_t(n));
            EXPECT_EQ(draw(jumped, 1300), expected) << "jump, drawn " << drawn << " n " << n;
        }
    }
}

TEST(MersenneTwister, SkipMatchesThePublishedJumpValues) {
    // Outputs drawn + J + 1 .. drawn + J + 5 of the plain stream, by the
    // jump-ahead method of Haramoto et al. (2008).
    const struct {
        bool by_array;
        int64_t drawn;
        int64_t j;  // 0 stands for 2^128
        uint32_t values[5];
    } cases[] = {
        {false, 0, 1000, {2500741117u, 4263797064u, 2322457777u, 1155622524u, 3736368257u}},
        {false, 0, 1000000, {3135507266u, 1811477324u, 2095834071u, 258599318u, 1470212236u}},
        {false, 0, 0, {1297186950u, 2930575927u, 3015810866u, 1451871318u, 498222669u}},
        {false, 7, 1000, {1527337250u, 1366117744u, 3207345339u, 512022531u, 3628630048u}},
        {false, 7, 1000000, {2165689929u, 551388967u, 368560217u, 2509193163u, 1612372455u}},
        {false, 7, 0, {3856098397u, 3831318528u, 3872305724u, 3879213932u, 867180544u}},
        {true, 0, 1000, {3276005344u, 4252045284u, 4237864172u, 435643333u, 1199718579u}},
        {true, 0, 1000000, {3661023188u, 687681782u, 1665995100u, 1078760193u, 2074770286u}},
        {true, 0, 0, {2598284679u, 3970827426u, 358649025u, 3070058529u, 689431510u}},
    };
    for (const auto &c : cases) {
        State base = c.by_array ? mt_state(key_1234) : mt_state({5489});
        draw(base, c.drawn);
        std::vector<double> expected;
        for (uint32_t v : c.values) expected.push_back(uniform_of(v));
        State a = base, b = base;
        if (c.j) {
            skip(a, c.j);
            kor::rng::mersenne_twister_jump(b.data(), 0, uint64_t(c.j));
        } else {
            skip_power(a, 128);
            // 2^128 as two jumps of 2^127.
            kor::rng::mersenne_twister_jump(b.data(), uint64_t(1) << 63, 0);
            kor::rng::mersenne_twister_jump(b.data(), uint64_t(1) << 63, 0);
        }
        EXPECT_EQ(draw(a, 5), expected) << "by_array " << c.by_array << " drawn " << c.drawn << " J " << c.j;
        EXPECT_EQ(draw(b, 5), expected) << "by_array " << c.by_array << " drawn " << c.drawn << " J " << c.j;
    }
}

TEST(MersenneTwister, SkipsCompose) {
    State base = mt_state({2718281828});
    draw(base, 100);
    const int64_t t = 1000000000000;
    const struct { int64_t a, b; } splits[] = {{t, 0}, {t - 1000000, 1000000}, {t - 7, 7}, {t / 2, t / 2},
                                               {1, t - 1}, {3000000, t - 3000000}};
    State whole = base;
    skip(whole, t);
    const std::vector<double> expected = draw(whole, 2000);
    for (const auto &s : splits) {
        State parts = base;
        skip(parts, s.a);
        skip(parts, s.b);
        EXPECT_EQ(draw(parts, 2000), expected) << s.a << " + " << s.b;
    }
    // Drawing is skipping: skip(t) then 700 values equals skip(t - 300),
    // draw 300, and the next 700 values.
    State drawn = base;
    skip(drawn, t - 300);
    draw(drawn, 300);
    EXPECT_EQ(draw(drawn, 700), std::vector<double>(expected.begin(), expected.begin() + 700));
}

TEST(MersenneTwister, SkipByPowersOfTwo) {
    State base = mt_state({161803});
    draw(base, 11);
    // Against the plain stream while straight generation is cheap (2^24
    // goes through the jump).
    for (int64_t e : {0, 1, 5, 9, 10, 20, 23, 24}) {
        State s = base;
        skip_power(s, e);
        EXPECT_EQ(draw(s, 700), oracle(161803, 11 + (uint64_t(1) << e), 700)) << "e " << e;
    }
    // Against g05kj's integer 2^e, and 2^e by two halves.
    for (int64_t e : {30, 40, 62}) {
        State a = base, b = base;
        skip_power(a, e);
        skip(b, int64_t(1) << e);
        EXPECT_EQ(draw(a, 700), draw(b, 700)) << "e " << e;
        State c = base;
        skip_power(c, e - 1);
        skip_power(c, e - 1);
        b = base;
        skip(b, int64_t(1) << e);
        EXPECT_EQ(draw(c, 700), draw(b, 700)) << "e " << e;
    }
    // Beyond 63 bits the power is formed by squarings: 2^64 is 2^62 four
    // times by g05kj's integer path.
    State a = base, b = base;
    skip_power(a, 64);
    for (int i = 0; i < 4; ++i) skip(b, int64_t(1) << 62);
    EXPECT_EQ(draw(a, 700), draw(b, 700));
    a = base;
    b = base;
    skip_power(a, 200);
    skip_power(b, 199);
    skip_power(b, 199);
    EXPECT_EQ(draw(a, 700), draw(b, 700));
}

TEST(MersenneTwister, SkipByTheFullPeriodsPowerOfTwo) {
    // The period is 2^19937 - 1, so 2^19937 values are one value, and e far
    // beyond 19937 costs no more than e mod 19937.
    State base = mt_state({5489});
    draw(base, 3);
    const std::vector<double> expected = oracle(5489, 4, 700);
    State a = base;
    skip_power(a, 19937);
    EXPECT_EQ(draw(a, 700), expected);
    State c = base;
    skip_power(c, 1000000LL * 19937 + 5);
    EXPECT_EQ(draw(c, 700), oracle(5489, 3 + 32, 700));
#ifdef NDEBUG
    // Two skips of 2^19936 are one value: 39872 squarings modulo P come back
    // to x only if P is the generator's (irreducible) characteristic
    // polynomial and the arithmetic is right.  About a second optimised; the
    // unoptimised sanitizer build leaves it out.
    State b = base;
    skip_power(b, 19936);
    State halfway = b;
    EXPECT_NE(draw(halfway, 1)[0], expected[0]);
    skip_power(b, 19936);
    EXPECT_EQ(draw(b, 700), expected);
#endif
}

TEST(MersenneTwister, SkipAfterLeapFrogCountsTheStreamsValues) {
    const std::vector<double> plain = oracle(8675309, 0, 3 * 20000);
    State s = mt_state({8675309});
    leapfrog(s, 3, 2);
    skip(s, 5);
    std::vector<double> got = draw(s, 100);
    for (size_t j = 0; j < got.size(); ++j) ASSERT_EQ(got[j], plain[1 + 3 * (5 + j)]) << "value " << j;

    // A long skip after a leap-frog: 10^7 stream values are 3 10^7 plain ones.
    State t = mt_state({8675309});
    leapfrog(t, 3, 2);
    skip(t, 10000000);
    std::mt19937 engine(8675309);
    engine.discard(1 + 3 * 10000000ULL);
    for (double u : draw(t, 50)) {
        ASSERT_EQ(u, uniform_of(uint32_t(engine())));
        engine.discard(2);
    }
    // And a power of two beyond 63 bits after a leap-frog: 2^64 stream
    // values are four times 2^62.
    State a = mt_state({8675309}), b = mt_state({8675309});
    leapfrog(a, 5, 4);
    leapfrog(b, 5, 4);
    skip_power(a, 64);
    for (int i = 0; i < 4; ++i) skip(b, int64_t(1) << 62);
    EXPECT_EQ(draw(a, 100), draw(b, 100));
}

TEST(MersenneTwister, ShortFormRefusesSkipAhead) {
    State s = mt_state({5489}, 633);
    const State before = s;
    KorError fail = KOR_ERROR_INIT;
    for (int64_t n : {0, 1, 1000000}) {
        g05kjc(n, s.data(), &fail);
        EXPECT_EQ(fail.code, NE_INT_ARRAY);
        EXPECT_EQ(std::string(fail.message),
                  "NE_INT_ARRAY:\n  On entry, the base generator is Mersenne Twister, but the state vector defined on "
                  "initialization is not large enough to perform a skip ahead. See the initialization function "
                  "kor_rand_init_repeatable (g05kfc) or kor_rand_init_nonrepeatable (g05kgc).");
        g05kkc(n, s.data(), &fail);
        EXPECT_EQ(fail.code, NE_INT_ARRAY);
        EXPECT_EQ(std::string(fail.message),
                  "NE_INT_ARRAY:\n  On entry, the state vector defined on initialization is not large enough to "
                  "perform a skip-ahead (applies to Mersenne Twister base generator).");
    }
    EXPECT_EQ(s, before);
    // Leap-frog works on the short form.
    leapfrog(s, 2, 1);
}

TEST(MersenneTwister, CorruptedStatesAreRefused) {
    State good = mt_state({5489});
    draw(good, 10);
    const int64_t length = good[0];
    const struct { int64_t at, value; } corruptions[] = {
        {1, 3693},          {length - 1, 0},    {length - 4, 1},    {0, 1259},  {0, 633},  {0, 700},
        {0, 1 << 30},       {0, -5},            {2, 7},             {3, 2},     {628, 0},  {628, 625},
        {628, -1},          {628, 1LL << 40},   {length - 3, 0},    {length - 2, -3},
    };
    for (const auto &c : corruptions) {
        State s = good;
        s[size_t(c.at)] = c.value;
        const State before = s;
        std::vector<double> x(5, -1.0);
        KorError fail = KOR_ERROR_INIT;
        g05sac(5, s.data(), x.data(), &fail);
        EXPECT_EQ(std::string(fail.message), corrupt_message) << "word " << c.at << " = " << c.value;
        EXPECT_EQ(x, std::vector<double>(5, -1.0));
        g05kjc(10, s.data(), &fail);
        EXPECT_EQ(std::string(fail.message), corrupt_message);
        g05kkc(10, s.data(), &fail);
        EXPECT_EQ(std::string(fail.message), corrupt_message);
        g05khc(2, 1, s.data(), &fail);
        EXPECT_EQ(std::string(fail.message), corrupt_message);
        EXPECT_EQ(s, before);
    }
    // A short-form state whose length word claims the full form.
    State small = mt_state({5489}, 633);
    small.resize(1260, 0);
    small[0] = 1260;
    KorError fail = KOR_ERROR_INIT;
    double u = -1.0;
    g05sac(1, small.data(), &u, &fail);
    EXPECT_EQ(std::string(fail.message), corrupt_message);
}

TEST(MersenneTwister, RandomWordsInASoundFrameStayInBounds) {
    // Words that no seeding produces (negative, past 32 bits) inside a frame
    // that passes the check: drawing, leap-frog and skips still run, every
    // value in (0, 1).  (Run under the sanitizers this also shows no read
    // outside the state.)
    std::mt19937_64 noise(12345);
    for (int trial = 0; trial < 8; ++trial) {
        State s = mt_state({5489});
        for (int i = 4; i < 628; ++i) s[size_t(i)] = int64_t(noise());
        s[628] = 1 + int64_t(noise() % 624);
        State t = s;
        for (double u : draw(s, 2000)) {
            ASSERT_GT(u, 0.0);
            ASSERT_LT(u, 1.0);
        }
        skip(t, 5000000);
        skip_power(t, 70);
        leapfrog(t, 3, 3);
        for (double u : draw(t, 1000)) {
            ASSERT_GT(u, 0.0);
            ASSERT_LT(u, 1.0);
        }
    }
}

}  // namespace
