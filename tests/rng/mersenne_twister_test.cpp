// The Mersenne Twister: the published MT19937 streams of both forms of
// state and the jump-ahead outputs (tests/data/rng); std::mt19937 as the
// independent oracle of polynomial jumps and long leap-frog strides.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "routine_index.hpp"  // every routine's exits
#include "rng/rng_support.hpp"
#include "support/data.hpp"

namespace kor::rng {
// The polynomial jump whatever the count (g05kj steps short skips instead).
void mersenne_twister_jump(int64_t *state, uint64_t high, uint64_t low);
}  // namespace kor::rng

namespace {

using namespace kor::rng_test;
using kor::test::Row;

const State key_1234 = {0x123, 0x234, 0x345, 0x456};

State mt_state(State seeds, int64_t lstate = 1260) { return init(Kor_MersenneTwister, 1, seeds, lstate); }

// The uniform docs/rng.md gives for a tempered word y: y read as a signed
// 32-bit integer y_s, u = (y_s + 2^31) 2^-32 + 2^-53.
double uniform_of(uint32_t y) { return (double(int32_t(y)) + 2147483648.0) * 0x1p-32 + 0x1p-53; }

// n values of the plain stream after init_genrand(seed), from value first on.
Reals oracle(uint32_t seed, uint64_t first, int64_t n) {
    std::mt19937 engine(seed);  // its constructor is init_genrand
    engine.discard(first);
    Reals x(static_cast<size_t>(n));
    for (double &v : x) v = uniform_of(uint32_t(engine()));
    return x;
}

TEST(MersenneTwister, PublishedStreamsOfBothInitialisations) {
    // Seeds are taken mod 2^32; one seed is init_genrand, more init_by_array.
    // The short form (633 words, here in a longer array) draws the same
    // stream and writes nothing past its length.
    for (const auto &[name, seeds, lstate] :
         {std::tuple<std::string, State, int64_t>{"init_genrand_5489", {(int64_t(1) << 32) + 5489}, 1260},
          {"init_genrand_5489", {5489}, 700}, {"init_by_array_123_234_345_456", key_1234, 1260},
          {"init_by_array_123_234_345_456", {0x123 + (int64_t(7) << 32), 0x234, 0x345, 0x456}, 700}}) {
        State state = mt_state(seeds, lstate);
        EXPECT_EQ(state[0], lstate == 700 ? 633 : 1260);
        if (lstate == 700) { EXPECT_EQ(state[633], -1); }
        const Reals x = draw(state, 10000);
        for (const Row &r : kor::test::rows_of(kor::test::read_table("rng/mt19937_ref.txt"), name))
            EXPECT_EQ(x[size_t(r.integer(0) - 1)], uniform_of(uint32_t(r.word(1)))) << name << " value " << r.integer(0);
    }
}

TEST(MersenneTwister, SkipsMatchThePublishedJumpValues) {
    // Outputs drawn + J + 1 .. drawn + J + 5 of the plain stream, by g05kj
    // or g05kk (2^128) and by the polynomial jump whatever the count.
    const std::vector<Row> rows = kor::test::read_table("rng/mt19937_jump_ref.txt");
    for (size_t i = 0; i + 4 < rows.size(); i += 5) {
        const Row &r = rows[i];
        SCOPED_TRACE(r.text(0) + ", drawn " + r.text(1) + ", J = " + r.text(2));
        State base = r.text(0) == "init_genrand_5489" ? mt_state({5489}) : mt_state(key_1234);
        draw(base, r.integer(1));
        Reals expected;
        for (size_t k = 0; k < 5; ++k) expected.push_back(uniform_of(uint32_t(rows[i + k].word(4))));
        State a = base, b = base;
        if (r.text(2) == "2^128") {
            skip_power(a, 128);
            for (int half = 0; half < 2; ++half) kor::rng::mersenne_twister_jump(b.data(), uint64_t(1) << 63, 0);
        } else {
            skip(a, r.integer(2));
            kor::rng::mersenne_twister_jump(b.data(), 0, uint64_t(r.integer(2)));
        }
        EXPECT_EQ(draw(a, 5), expected);
        EXPECT_EQ(draw(b, 5), expected);
    }
}

TEST(MersenneTwister, ShortJumpsEqualDrawing) {
    // g05kj steps these; the jump must agree from a fresh state (block used
    // up), mid-block and at a block's end.
    for (int64_t drawn : {0, 7, 624}) {
        State base = mt_state({5489});
        draw(base, drawn);
        for (int64_t n : {1, 623, 624, 625, 1000000}) {
            State jumped = base;
            kor::rng::mersenne_twister_jump(jumped.data(), 0, uint64_t(n));
            EXPECT_EQ(draw(jumped, 1300), oracle(5489, uint64_t(drawn + n), 1300)) << drawn << " + " << n;
        }
    }
}

TEST(MersenneTwister, SkipsByPowersOfTwo) {
    State base = mt_state({161803});
    draw(base, 11);
    // Against the plain stream while straight generation is cheap (2^21 on
    // go through the jump).
    for (int64_t e : {0, 1, 9, 10, 20, 21, 24}) {
        State s = base;
        skip_power(s, e);
        EXPECT_EQ(draw(s, 700), oracle(161803, 11 + (uint64_t(1) << e), 700)) << "2^" << e;
    }
    // The period is 2^19937 - 1: 2^19937 values are one value, and e far
    // beyond 19937 costs no more than e mod 19937.
    State one = base, more = base;
    skip_power(one, 19937);
    EXPECT_EQ(draw(one, 700), oracle(161803, 12, 700));
    skip_power(more, 1000000LL * 19937 + 5);
    EXPECT_EQ(draw(more, 700), oracle(161803, 11 + 32, 700));
#ifdef NDEBUG
    // Two skips of 2^19936 are one value: 39872 squarings modulo P come back
    // to x only if P is the generator's characteristic polynomial and the
    // arithmetic is right.  About a second optimised; the unoptimised
    // sanitizer build leaves it out.
    State twice = base;
    skip_power(twice, 19936);
    State halfway = twice;
    EXPECT_NE(draw(halfway, 1)[0], oracle(161803, 12, 1)[0]);
    skip_power(twice, 19936);
    EXPECT_EQ(draw(twice, 700), oracle(161803, 12, 700));
#endif
}

TEST(MersenneTwister, LongLeapFrogStrides) {
    // A stride of ten million: the full form jumps between values, the
    // short form steps; both give the plain stream's values.
    const int64_t n = 10000001;
    Reals expected;
    std::mt19937 engine(99);
    engine.discard(1);
    for (int j = 0; j < 3; ++j, engine.discard(uint64_t(n - 1))) expected.push_back(uniform_of(uint32_t(engine())));
    for (int64_t lstate : {1260, 633}) {
        State s = mt_state({99}, lstate);
        leapfrog(s, n, 2);
        EXPECT_EQ(draw(s, 3), expected) << lstate;
    }
    // Stream 2 of 3 of stream 2 of 2: the values 4, 10, 16, ... (stride 6);
    // a skip then counts the stream's values: 10^6 of them are 6 10^6.
    State s = mt_state({31337});
    leapfrog(s, 2, 2);
    leapfrog(s, 3, 2);
    EXPECT_EQ(s[1257], 6);
    EXPECT_EQ(s[1258], 4);
    const Reals plain = oracle(31337, 0, 6 * 500);
    const Reals got = draw(s, 400);
    for (size_t j = 0; j < got.size(); ++j) ASSERT_EQ(got[j], plain[3 + 6 * j]) << j;
    skip(s, 1000000);
    EXPECT_EQ(draw(s, 1), oracle(31337, 3 + 6 * (400 + 1000000ULL), 1));
    // A power of two past 63 bits after a leap-frog: 2^64 stream values
    // are four times 2^62.
    State a = mt_state({8675309}), b = a;
    leapfrog(a, 5, 4);
    leapfrog(b, 5, 4);
    skip_power(a, 64);
    for (int i = 0; i < 4; ++i) skip(b, int64_t(1) << 62);
    EXPECT_EQ(draw(a, 100), draw(b, 100));
    // The longest stride and the farthest stream a state word holds are
    // accepted; a stride past a state word is refused, the state left alone.
    State widest = mt_state({31337}), skipped = widest;
    leapfrog(widest, INT64_MAX, INT64_MAX);
    skip(skipped, INT64_MAX - 1);
    EXPECT_EQ(draw(widest, 1), draw(skipped, 1));
    leapfrog(a, int64_t(1) << 40, 1);
    const State before = a;
    KorError fail = KOR_ERROR_INIT;
    g05khc(int64_t(1) << 40, 1, a.data(), &fail);
    exit_named(kor::g05kh::info, "unsupported", fail);
    EXPECT_EQ(a, before);
}

}  // namespace
