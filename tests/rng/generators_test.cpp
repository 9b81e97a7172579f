// The base generators.  Reference streams (tests/data/rng) pin small
// independent implementations of the published recurrences, which then
// check long runs and long skips; tables over every generator check the
// seeding exits, the partitioning invariants (leap-frog streams interleave
// to the plain stream, skips equal drawing, copies continue the stream) and
// that damaged states are refused.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "routine_index.hpp"  // every routine's exits
#include "rng/rng_support.hpp"
#include "support/data.hpp"

namespace {

using namespace kor::rng_test;
using kor::test::read_table;
using kor::test::Row;
using u64 = uint64_t;
using u128 = unsigned __int128;

u64 power_mod(u64 a, u128 e, u64 m) {
    u64 r = 1;
    for (a %= m; e; e >>= 1, a = u64(u128(a) * a % m))
        if (e & 1) r = u64(u128(r) * a % m);
    return r;
}

// ---------------------------------------------------------------------------
// Independent recurrences, with the conversions docs/rng.md states.

// x <- 13^13 x mod 2^59; u = 1 - (H 2^-30 + L 2^-60), H and L the 30-bit
// halves of 2x.
struct Basic {
    u64 x;
    double next() {
        x = u64(u128(x) * 302875106592253u % (u128(1) << 59));
        const u64 h = x >> 29, l = (x << 1) & ((u64(1) << 30) - 1);
        return 1.0 - (double(h) * 0x1p-30 + double(l) * 0x1p-60);
    }
};

// Four components; s = sum x_j (1/m_j) left to right, u = 1 - frac(s) for
// Wichmann–Hill I and frac(s) for II.
struct WichmannHill {
    u64 x[4], a[4], m[4];
    bool one_minus;
    double next() {
        double s = 0.0;
        for (int j = 0; j < 4; ++j) s += double(x[j] = a[j] * x[j] % m[j]) * (1.0 / double(m[j]));
        return one_minus ? 1.0 - (s - std::floor(s)) : s - std::floor(s);
    }
    // The generator of a seeded state: its multipliers and moduli, with x.
    static WichmannHill of(const State &s, const std::vector<u64> &x) {
        WichmannHill w{{}, {}, {}, s[2] == 2};
        for (int j = 0; j < 4; ++j) w.x[j] = x[size_t(j)], w.a[j] = u64(s[size_t(8 + j)]), w.m[j] = u64(s[size_t(12 + j)]);
        return w;
    }
};

constexpr int64_t m1 = 4294967087, m2 = 4294944443;
struct Mrg {
    int64_t s[6];
    double next() {
        const int64_t p1 = ((1403580 * s[1] - 810728 * s[0]) % m1 + m1) % m1;
        const int64_t p2 = ((527612 * s[5] - 1370589 * s[3]) % m2 + m2) % m2;
        s[0] = s[1], s[1] = s[2], s[2] = p1, s[3] = s[4], s[4] = s[5], s[5] = p2;
        return double(p1 > p2 ? p1 - p2 : p1 - p2 + m1) * (1.0 / (double(m1) + 1.0));
    }
};

constexpr u64 mask60 = (u64(1) << 60) - 1;
struct Acorn {
    std::vector<u64> y;  // Y0 (the odd seed) .. Yk
    double next() {
        for (size_t m = 1; m < y.size(); ++m) y[m] = (y[m] + y[m - 1]) & mask60;
        return double(y.back()) * 0x1p-60;
    }
};

// Y_m of an ACORN state (two 30-bit halves, high first, from word 4).
u64 acorn_word(const State &s, int64_t m) { return u64(s[size_t(4 + 2 * m)]) << 30 | u64(s[size_t(5 + 2 * m)]); }

State integers(const Row &r, size_t from, size_t to) {
    State out;
    for (size_t i = from; i < to; ++i) out.push_back(r.integer(i));
    return out;
}

template <class Oracle>
void expect_stream(State &state, Oracle &oracle, int64_t n) {
    const Reals u = draw(state, n);
    for (size_t i = 0; i < u.size(); ++i) ASSERT_EQ(u[i], oracle.next()) << "value " << i + 1;
}

// ---------------------------------------------------------------------------
// Reference streams and long runs.

TEST(ReferenceStreams, Basic) {
    // Seed s starts the generator at x0 = 2s + 1 and advances once: seed
    // 61728394 gives the iterates of x0 = 123456789 from the second on.
    State state = init(Kor_Basic, 0, {61728394});
    Basic oracle{123456789};
    const Reals u = draw(state, 9);
    for (const Row &r : kor::test::rows_of(read_table("rng/mcg59_ref.txt"), "123456789")) {
        oracle.next();
        EXPECT_EQ(oracle.x, r.word(1)) << "iterate " << r.integer(0);
        if (r.integer(0) >= 2) { EXPECT_NEAR(u[size_t(r.integer(0) - 2)], 1.0 - r.real(2), 0x1p-53) << r.integer(0); }
    }
    state = init(Kor_Basic, 0, {987654321});
    oracle = {2 * 987654321 + 1};
    oracle.next();
    expect_stream(state, oracle, 100000);
}

// Draws the values up to each row's index n (field `at`) from the state and
// the oracle together; `check` then sees the row and the last value.
template <class Oracle, class Check>
void follow(State &state, Oracle &oracle, const std::vector<Row> &rows, size_t at, Check check) {
    int64_t n = 0;
    for (const Row &r : rows) {
        const Reals u = draw(state, r.integer(at) - n);
        for (double v : u) ASSERT_EQ(v, oracle.next()) << "value " << r.integer(at);
        n = r.integer(at);
        check(r, u.back());
    }
}

TEST(ReferenceStreams, WichmannHillI) {
    const std::vector<Row> table = read_table("rng/wh1_substitute_ref.txt");
    for (int64_t row : {1, 2, 273}) {
        const int64_t m = init(Kor_WichmannHill_I, row, {1})[12];
        for (const std::string name : {"ones", "mixed"}) {
            const State seed = name == "ones" ? State{1, 1, 1, 1} : State{123456789 % m, 2, 3, 4};
            const std::vector<Row> rows = kor::test::rows_of(kor::test::rows_of(table, std::to_string(row)), name);
            ASSERT_EQ(rows.size(), 10u);
            SCOPED_TRACE("row " + std::to_string(row) + " " + name);
            State state = init(Kor_WichmannHill_I, row, seed);
            WichmannHill oracle = WichmannHill::of(state, {u64(seed[0]), u64(seed[1]), u64(seed[2]), u64(seed[3])});
            follow(state, oracle, rows, 0, [&](const Row &r, double u) {
                for (int j = 0; j < 4; ++j) EXPECT_EQ(state[size_t(4 + j)], r.integer(size_t(1 + j)));
                EXPECT_NEAR(u, 1.0 - r.real(6), 1e-15);  // one minus the family's fraction
            });
        }
    }
    State state = init(Kor_WichmannHill_I, 100, {11, 22, 33, 44});
    WichmannHill oracle = WichmannHill::of(state, {11, 22, 33, 44});
    expect_stream(state, oracle, 20000);
}

TEST(ReferenceStreams, WichmannHillII) {
    const std::vector<Row> table = read_table("rng/wh2006_ref.txt");
    for (const State &seed : {State{1, 2, 3, 4}, State{123456789, 987654321, 555555555, 111111111}}) {
        State state = init(Kor_WichmannHill_II, 0, seed);
        for (const Row &r : kor::test::rows_of(table, "const"))  // a, m and Schrage's q, r
            for (int c = 0; c < 4; ++c)
                EXPECT_EQ(state[size_t(8 + 4 * c + r.integer(0) - 1)], r.integer(size_t(1 + c)));
        WichmannHill oracle = WichmannHill::of(state, {u64(seed[0]), u64(seed[1]), u64(seed[2]), u64(seed[3])});
        std::string name = "seed";
        for (int64_t s : seed) name += "_" + std::to_string(s);
        const std::vector<Row> rows = kor::test::rows_of(table, name);
        ASSERT_EQ(rows.size(), 21u);
        follow(state, oracle, rows, 0, [&](const Row &r, double u) {
            for (int j = 0; j < 4; ++j) EXPECT_EQ(state[size_t(4 + j)], r.integer(size_t(1 + j)));
            EXPECT_NEAR(u, r.real(5), 1e-15);
        });
    }
}

TEST(ReferenceStreams, Mrg32k3a) {
    const std::vector<Row> table = read_table("rng/mrg32k3a_ref.txt");
    const auto words = [](const State &s) { return State(s.begin() + 4, s.begin() + 10); };
    State state = init(Kor_MRG32k3a, 0, State(6, 12345));
    Mrg oracle{{12345, 12345, 12345, 12345, 12345, 12345}};
    follow(state, oracle, kor::test::rows_of(table, "u"), 0,
           [&](const Row &r, double u) { EXPECT_EQ(u, r.real(4)) << r.integer(0); });
    state = init(Kor_MRG32k3a, 0, State(6, 12345));
    oracle = {{12345, 12345, 12345, 12345, 12345, 12345}};
    follow(state, oracle, kor::test::rows_of(table, "state"), 0,
           [&](const Row &r, double) { EXPECT_EQ(words(state), integers(r, 1, 7)) << r.integer(0); });
    // Skip states, among them the starts of RngStreams' streams (2^127 apart).
    for (const Row &r : kor::test::rows_of(table, "skipstate")) {
        State s = init(Kor_MRG32k3a, 0, State(6, r.integer(0)));
        std::stringstream n(r.text(1));  // "35", "2^127", "2^76+2^127"
        for (std::string term; std::getline(n, term, '+');)
            term[0] == '2' && term[1] == '^' ? skip_power(s, std::stoll(term.substr(2))) : skip(s, std::stoll(term));
        EXPECT_EQ(words(s), integers(r, 2, 8)) << r.integer(0) << " skipped " << r.text(1);
    }
    // Seeds at the ends of their ranges.
    state = init(Kor_MRG32k3a, 0, {987654321, 1, m1 - 1, 0, 0, m2 - 1});
    oracle = {{987654321, 1, m1 - 1, 0, 0, m2 - 1}};
    expect_stream(state, oracle, 100000);
}

TEST(ReferenceStreams, Acorn) {
    const std::vector<Row> table = read_table("rng/acorn_ref.txt");
    for (const State &seed : {State{123456789}, State{123456789, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}}) {
        State state = init(Kor_ACORN, 10, seed);
        Acorn oracle{std::vector<u64>(11, 0)};
        for (size_t m = 0; m < seed.size(); ++m) oracle.y[m] = u64(seed[m]);
        const std::vector<Row> rows =
            kor::test::rows_of(table, seed.size() == 1 ? "k10_M2p60_seed123456789_zero" : "k10_M2p60_seed123456789_init1to10");
        ASSERT_EQ(rows.size(), 21u);
        follow(state, oracle, rows, 0, [&](const Row &r, double u) {
            EXPECT_EQ(acorn_word(state, 10), r.word(1)) << r.integer(0);
            EXPECT_EQ(u, r.real(2));
        });
    }
    // Order 3: seed(1) made odd and taken mod 2^60, missing initial values
    // 0, seeds beyond k + 1 ignored; every half stays in 30 bits.
    State state = init(Kor_ACORN, 3, {(int64_t(1) << 60) + 1000, 5, (int64_t(1) << 61) + 6, 7, 8});
    Acorn oracle{{1001, 5, 6, 7}};
    expect_stream(state, oracle, 5000);
    state = init(Kor_ACORN, 3, {1000, 4});
    oracle = {{1001, 4, 0, 0}};
    expect_stream(state, oracle, 100);
}

// Skips far beyond drawing, against closed forms: a^n x mod m for the
// congruential generators, seed C(n + 9, 10) mod 2^60 for ACORN of order
// 10 from a zero start (the product of the ten factors taken mod 10! 2^60,
// then divided by 10!, is exact).
TEST(ReferenceStreams, LongSkipsAgreeWithClosedForms) {
    for (const int64_t n : {int64_t(1000000000000), int64_t(1) << 40, INT64_MAX}) {
        SCOPED_TRACE(n);
        State basic = init(Kor_Basic, 0, {77});
        skip(basic, n);
        Basic b{u64(u128(power_mod(302875106592253u, u128(n) + 1, u64(1) << 59)) * 155 % (u128(1) << 59))};
        expect_stream(basic, b, 3);
        for (Kor_BaseGenerator genid : {Kor_WichmannHill_I, Kor_WichmannHill_II}) {
            State state = init(genid, 100, {11, 22, 33, 44});
            WichmannHill w = WichmannHill::of(state, {11, 22, 33, 44});
            skip(state, n);
            for (int j = 0; j < 4; ++j) w.x[j] = power_mod(w.a[j], u128(n), w.m[j]) * w.x[j] % w.m[j];
            expect_stream(state, w, 3);
        }
        if (n > int64_t(1) << 40) continue;  // the product below must fit in 128 bits
        State acorn = init(Kor_ACORN, 10, {123456789});
        skip(acorn, n);
        const u128 factorial = 3628800, modulus = factorial << 60;
        u128 p = 1;
        for (u64 i = 0; i < 10; ++i) p = p * (u128(n) + i) % modulus;
        EXPECT_EQ(acorn_word(acorn, 10), u64(p / factorial * 123456789) & mask60);
    }
    // Order 1000: C(2^e, j) for j <= 1000 is divisible by 2^(e - 9), so the
    // matrix power for 2^68 still moves the state, its square does not, nor
    // does 2^500.
    const State seeded = init(Kor_ACORN, 1000, {918273645, 1, 2, 3});
    State a = seeded, b = seeded;
    skip_power(a, 68);
    EXPECT_NE(a, seeded);
    skip_power(a, 68);
    EXPECT_EQ(a, seeded);
    skip_power(b, 69);
    skip_power(b, 500);
    EXPECT_EQ(b, seeded);
}

// ---------------------------------------------------------------------------
// Seeding rules

TEST(Seeding, MissingSeedsComeFromTheBasicGeneratorAndLargeOnesAreFolded) {
    State basic = init(Kor_Basic, 0, {77});
    const Reals u = draw(basic, 5);
    // Wichmann–Hill I: trunc(16909320 u) from the last seed given; above
    // 16909320 a seed becomes (seed mod 16909320) + 1.
    State state = init(Kor_WichmannHill_I, 9, {5, 77});
    EXPECT_EQ(State(state.begin() + 4, state.begin() + 8),
              (State{5, 77, int64_t(16909320.0 * u[0]), int64_t(16909320.0 * u[1])}));
    state = init(Kor_WichmannHill_I, 1, {16909320, 16909321, 33818641, 7});
    EXPECT_EQ(State(state.begin() + 4, state.begin() + 8), (State{16909320, 2, 2, 7}));
    // Wichmann–Hill II: trunc(2147483647 u), and any seed, into 1..m-1.
    const int64_t m[4] = {2147483579, 2147483543, 2147483423, 2147483123};
    state = init(Kor_WichmannHill_II, 0, {77});
    for (int j = 1; j < 4; ++j) EXPECT_EQ(state[size_t(4 + j)], (int64_t(2147483647.0 * u[size_t(j - 1)]) - 1) % (m[j] - 1) + 1);
    state = init(Kor_WichmannHill_II, 0, {m[0], m[1] - 1, 2 * m[2] - 1, 3});
    EXPECT_EQ(State(state.begin() + 4, state.begin() + 8), (State{1, m[1] - 1, 1, 3}));
    // MRG32k3a: reduced mod m1 (first three) and m2 (last three); missing
    // ones trunc(m u) from the last seed given.
    state = init(Kor_MRG32k3a, 0, {m1 + 5, 0, 0, m2, 2 * m2 + 1, 7, 99});
    EXPECT_EQ(State(state.begin() + 4, state.begin() + 10), (State{5, 0, 0, 0, 1, 7}));
    state = init(Kor_MRG32k3a, 0, {1, 77});
    EXPECT_EQ(State(state.begin() + 4, state.begin() + 10),
              (State{1, 77, int64_t(double(m1) * u[0]), int64_t(double(m2) * u[1]), int64_t(double(m2) * u[2]),
                     int64_t(double(m2) * u[3])}));
    // ACORN's order is subid when 1..1000, else 10.
    for (const auto &[subid, length] : {std::pair{10, 30}, {3, 16}, {1, 12}, {1000, 2010}, {0, 30}, {1001, 30}, {-3, 30}})
        EXPECT_EQ(query(Kor_ACORN, subid), length) << subid;
    // Wichmann–Hill I's rows wrap modulo 273, 0 and negative numbers too.
    for (const auto &[subid, row] : {std::pair<int64_t, int64_t>{274, 1}, {0, 273}, {-5, 5}, {-273, 273}, {547, 1}, {-2, 2},
                                     {INT64_MIN, 1 + int64_t(u64(INT64_MAX) % 273)}})
        EXPECT_EQ(init(Kor_WichmannHill_I, subid, {5})[3], row) << subid;
}

TEST(Seeding, ExitsLeaveStateAndLstateAlone) {
    const Kor_BaseGenerator basic = Kor_Basic, wh1 = Kor_WichmannHill_I, mt = Kor_MersenneTwister,
                            wh2 = Kor_WichmannHill_II, acorn = Kor_ACORN, mrg = Kor_MRG32k3a;
    const struct {
        Kor_BaseGenerator genid;
        State seed;
        int64_t lseed, lstate;
        const char *exit;
        std::vector<std::string> values;
    } cases[] = {
        {Kor_BaseGenerator(2149), {5}, 1, 80, "genid_invalid", {}}, {Kor_BaseGenerator(2156), {5}, 1, 80, "genid_invalid", {}},
        {basic, {5}, 1, 16, "lstate_too_small", {"16", "17"}},     {wh1, {5}, 1, 20, "lstate_too_small", {"20", "21"}},
        {mt, {5}, 1, 632, "lstate_too_small", {"632", "633"}},     {wh2, {5}, 1, 28, "lstate_too_small", {"28", "29"}},
        {acorn, {5}, 1, 15, "lstate_too_small", {"15", "16"}},     {mrg, {5}, 1, 1, "lstate_too_small", {"1", "61"}},
        {basic, {5}, 0, 80, "lseed_too_small", {"0"}},             {wh1, {5}, -1, 80, "lseed_too_small", {"-1"}},
        {mt, {5}, 0, 1260, "lseed_too_small", {"0"}},              {wh2, {5}, 0, 80, "lseed_too_small", {"0"}},
        {acorn, {5}, 0, 80, "lseed_too_small", {"0"}},             {mrg, {5}, 0, 80, "lseed_too_small", {"0"}},
        {basic, {0}, 1, 80, "invalid_seed", {}},                   {wh1, {5, 6, 7, -8}, 4, 80, "invalid_seed", {}},
        {mt, {-9}, 1, 633, "invalid_seed", {}},                    {mt, {5, 6, 0}, 3, 1260, "invalid_seed", {}},
        {wh2, {5, 0}, 2, 80, "invalid_seed", {}},                  {acorn, {0}, 1, 80, "invalid_seed", {}},
        {acorn, {7, 1, -1}, 3, 80, "invalid_seed", {}},            {mrg, {0, 0, 0, 1, 2, 3}, 6, 80, "invalid_seed", {}},
        {mrg, {1, 2, 3, m2, 0, 2 * m2}, 6, 80, "invalid_seed", {}}, {mrg, {1, 2, -3, 1, 2, 3}, 6, 80, "invalid_seed", {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.genid) + " " + c.exit);
        State state(1260, -7), seed = c.seed;
        int64_t lstate = c.lstate;
        KorError fail = KOR_ERROR_INIT;
        g05kfc(c.genid, 3, seed.data(), c.lseed, state.data(), &lstate, &fail);
        EXPECT_EQ(exit_named(kor::g05kf::info, c.exit, fail), c.values);
        EXPECT_EQ(lstate, c.lstate);
        EXPECT_EQ(state, State(1260, -7));
    }
    // A longer state than needed: lstate is kept, the used length stored.
    // g05kg starts a different stream every time.
    for (Kor_BaseGenerator genid : {basic, wh1, mt, wh2, acorn, mrg}) {
        int64_t seed[2] = {3, 4}, lstate = 5000;
        State state(5000), other(5000);
        KorError fail = KOR_ERROR_INIT;
        g05kfc(genid, 3, seed, 2, state.data(), &lstate, &fail);
        kor::test::expect_success(fail);
        EXPECT_EQ(lstate, 5000);
        EXPECT_EQ(state[0], query(genid, 3));
        g05kgc(genid, 3, state.data(), &lstate, &fail);
        g05kgc(genid, 3, other.data(), &lstate, &fail);
        kor::test::expect_success(fail);
        EXPECT_EQ(other[0], state[0]);
        EXPECT_NE(draw(state, 20), draw(other, 20));
        lstate = (genid == mt ? 633 : query(genid, 3)) - 1;
        g05kgc(genid, 3, state.data(), &lstate, &fail);
        EXPECT_EQ(exit_named(kor::g05kg::info, "lstate_too_small", fail)[0], std::to_string(lstate));
    }
    // A null state with a length; a size query may pass null.
    int64_t seed = 3, lstate = 5000;
    KorError fail = KOR_ERROR_INIT;
    g05kfc(wh2, 3, &seed, 1, nullptr, &lstate, &fail);
    exit_named(kor::g05kf::info, "state_null", fail);
    g05kgc(wh2, 3, nullptr, &lstate, &fail);
    exit_named(kor::g05kg::info, "state_null", fail);
    lstate = -4;
    g05kgc(wh2, 3, nullptr, &lstate, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(lstate, 29);
    g05kgc(Kor_BaseGenerator(0), 0, nullptr, &lstate, &fail);
    EXPECT_EQ(exit_named(kor::g05kg::info, "genid_invalid", fail), std::vector<std::string>{});
}

// ---------------------------------------------------------------------------
// Invariants of every generator

struct Config {
    const char *name;
    Kor_BaseGenerator genid;
    int64_t subid;
    State seed;
    int64_t lstate;       // 0: the length the size query gives
    bool leapfrog, skip;  // supported
};

const Config configs[] = {
    {"basic", Kor_Basic, 0, {31337}, 0, true, true},
    {"WH I", Kor_WichmannHill_I, 17, {1234, 5678, 9012, 3456}, 0, true, true},
    {"MT", Kor_MersenneTwister, 1, {4357}, 0, true, true},
    {"MT short", Kor_MersenneTwister, 1, {4357, 99}, 633, true, false},
    {"WH II", Kor_WichmannHill_II, 0, {1234, 5678, 9012, 3456}, 0, true, true},
    {"ACORN 10", Kor_ACORN, 10, {12345, 1, 2}, 0, false, true},
    {"ACORN 3", Kor_ACORN, 3, {54321}, 0, false, true},
    {"MRG32k3a", Kor_MRG32k3a, 0, {1234, 5678, 9012, 3456, 7890, 1122}, 0, true, true},
};

State seeded(const Config &g) { return init(g.genid, g.subid, g.seed, g.lstate); }

TEST(AllGenerators, LeapFrogStreamsInterleaveToThePlainStream) {
    for (const Config &g : configs) {
        SCOPED_TRACE(g.name);
        State base = seeded(g);
        draw(base, 5);  // partitioning starts wherever the stream stands
        State plain = base;
        const Reals all = draw(plain, 7 * 2100);
        for (int64_t n : {1, 2, 3, 7}) {
            for (int64_t k = 1; k <= n; ++k) {
                State s = base;
                KorError fail = KOR_ERROR_INIT;
                g05khc(n, k, s.data(), &fail);
                if (!g.leapfrog) {
                    exit_named(kor::g05kh::info, "unsupported", fail);
                    EXPECT_EQ(s, base);
                    continue;
                }
                kor::test::expect_success(fail);
                State t = s;
                Reals x;
                for (int64_t piece : {1, 700, 1299}) for (double v : draw(s, piece)) x.push_back(v);
                for (size_t i = 0; i < x.size(); ++i) ASSERT_EQ(x[i], all[size_t(k - 1) + i * size_t(n)]) << n << " " << k;
                if (!g.skip) continue;
                // A skip counts values of the partitioned stream.
                skip(t, 7);
                EXPECT_EQ(draw(t, 1)[0], all[size_t(k - 1 + 7 * n)]) << n << " " << k;
            }
        }
    }
}

TEST(AllGenerators, SkipsEqualDrawingAndCompose) {
    for (const Config &g : configs) {
        SCOPED_TRACE(g.name);
        for (int64_t drawn : {0, 7, 624}) {
            State base = seeded(g);
            draw(base, drawn);
            State plain = base;
            const Reals all = draw(plain, 1000700);
            for (int64_t n : {0, 1, 2, 623, 624, 625, 1000, 1000000}) {
                State s = base;
                KorError fail = KOR_ERROR_INIT;
                g05kjc(n, s.data(), &fail);
                if (!g.skip) {
                    exit_named(kor::g05kj::info, "state_too_small", fail);
                    g05kkc(n, s.data(), &fail);
                    exit_named(kor::g05kk::info, "state_too_small", fail);
                    EXPECT_EQ(s, base);
                    continue;
                }
                const Reals x = draw(s, 700);
                for (size_t i = 0; i < x.size(); ++i) ASSERT_EQ(x[i], all[size_t(n) + i]) << drawn << " + " << n;
            }
        }
        if (!g.skip) continue;
        const State start = seeded(g);
        // Large skips compose.
        for (int64_t n : {int64_t(1000000000000), int64_t(1) << 62, INT64_MAX}) {
            State one = start, two = start;
            skip(one, n);
            skip(two, n - 999999);
            skip(two, 999999);
            EXPECT_EQ(draw(one, 700), draw(two, 700)) << n;
        }
        // Skipping 2^e equals skipping that many values; 2^63 and 2^200 are
        // two skips of half the length.
        for (int64_t e = 0; e < 63; ++e) {
            State a = start, b = start;
            skip_power(a, e);
            skip(b, int64_t(1) << e);
            ASSERT_EQ(draw(a, 3), draw(b, 3)) << e;
        }
        for (int64_t e : {63, 64, 200}) {
            State a = start, b = start;
            skip_power(a, e);
            skip_power(b, e - 1);
            skip_power(b, e - 1);
            EXPECT_EQ(draw(a, 700), draw(b, 700)) << e;
        }
    }
}

// ---------------------------------------------------------------------------
// Argument exits and damaged states

TEST(Partitioning, ArgumentExits) {
    State state = init(Kor_Basic, 0, {3});
    const State before = state;
    KorError fail = KOR_ERROR_INIT;
    g05khc(0, 1, state.data(), &fail);
    EXPECT_EQ(kor::test::exit_values<kor::g05kh::Exit::n_invalid>(kor::g05kh::info, fail), std::vector<std::string>{"0"});
    g05khc(3, 4, state.data(), &fail);
    EXPECT_EQ(kor::test::exit_reals<kor::g05kh::Exit::k_invalid>(kor::g05kh::info, fail), (Reals{4, 3}));
    g05khc(3, 0, state.data(), &fail);
    EXPECT_EQ(kor::test::exit_reals<kor::g05kh::Exit::k_invalid>(kor::g05kh::info, fail), (Reals{0, 3}));
    g05kjc(-1, state.data(), &fail);
    EXPECT_EQ(kor::test::exit_reals<kor::g05kj::Exit::n_invalid>(kor::g05kj::info, fail), Reals{-1});
    g05kkc(-1, state.data(), &fail);
    EXPECT_EQ(kor::test::exit_reals<kor::g05kk::Exit::n_invalid>(kor::g05kk::info, fail), Reals{-1});
    EXPECT_EQ(state, before);
}

// Each way of damaging a state is caught by every consumer, which then
// writes nothing and leaves the state alone; the state is checked before
// any other argument.
TEST(StateCheck, EveryConsumerRefusesADamagedState) {
    // {genid (0: every one), word (negative: from the end), value}: the
    // length, check values, genid and stream words of every state, then the
    // basic length, the Mersenne Twister's form, position and length, and
    // ACORN's order.
    const int64_t damage[][3] = {{0, 0, -1},  {0, 0, 1},     {0, 0, 1 << 30}, {0, 1, 1},     {0, 2, 7},
                                 {0, 2, 0},   {0, -1, 0},    {0, -4, 1},      {0, -3, 0},    {0, -2, -1},
                                 {1, 0, 16},  {3, 3, 2},     {3, 628, 0},     {3, 628, 625}, {3, 628, -1},
                                 {3, 0, 1260}, {5, 3, 0},    {5, 3, 1001},    {5, 3, 4}};
    for (const Config &g : configs) {
        for (const auto &[genid, at, value] : damage) {
            State state = seeded(g);
            draw(state, 3);
            int64_t &word = state[size_t(at < 0 ? int64_t(state.size()) + at : at)];
            if ((genid && genid != g.genid - 2149) || word == value) continue;
            SCOPED_TRACE(std::string(g.name) + ", word " + std::to_string(at) + " = " + std::to_string(value));
            word = value;
            if (at == 0 && value > int64_t(state.size()) && value <= 1260) state.resize(size_t(value), 0);
            const State before = state;
            Reals x(4, -7.5);
            KorError fail = KOR_ERROR_INIT;
            g05sac(4, state.data(), x.data(), &fail);
            exit_named(kor::g05sa::info, "state_corrupt", fail);
            g05skc(-4, 0.0, -1.0, state.data(), x.data(), &fail);
            exit_named(kor::g05sk::info, "state_corrupt", fail);
            g05khc(0, 1, state.data(), &fail);
            exit_named(kor::g05kh::info, "state_corrupt", fail);
            g05kjc(-5, state.data(), &fail);
            exit_named(kor::g05kj::info, "state_corrupt", fail);
            g05kkc(5, state.data(), &fail);
            exit_named(kor::g05kk::info, "state_corrupt", fail);
            EXPECT_EQ(state, before);
            EXPECT_EQ(x, Reals(4, -7.5));
        }
    }
}

// Random arrays, many of them with a plausible frame (length, check values,
// genid, positive stream words) around random words, must be refused or
// used without reading outside the length they declare in their first word
// (each is allocated at exactly that length; the sanitizer build reports
// any stray read), and a state that is used stays a sound state.
TEST(StateCheck, RandomStatesAreRefusedOrUsedSafely) {
    std::mt19937_64 random(20240611);
    const int64_t checks[7] = {0, 1234, 2468, 3692, 4826, 5050, 4826};
    const int64_t lengths[7] = {0, 17, 21, 1260, 29, 0, 61};
    int accepted = 0;
    for (int trial = 0; trial < 40000; ++trial) {
        const int64_t genid = int64_t(random() % 6) + 1;
        const bool framed = random() % 2;
        int64_t length = int64_t(random() % 1300) + 3, order = 0;
        if (framed) {
            if (genid == 5) length = 2 * (order = int64_t(random() % 60) + 1) + 10;
            else length = genid == 3 ? (random() % 2 ? 633 : 1260) : lengths[genid];
        }
        State state(static_cast<size_t>(length));
        for (int64_t &w : state) {
            const u64 kind = random() % 4;
            w = kind == 0 ? int64_t(random()) : kind == 1 ? int64_t(random() % 5) - 1 : int64_t(random() % (u64(1) << 33));
        }
        state[0] = length;
        state[2] = random() % 8 ? genid : int64_t(random() % 9) - 1;
        if (framed) {
            state[1] = state[size_t(length - 4)] = state[size_t(length - 1)] = checks[genid];
            if (genid == 5) state[3] = order;
            // Any stride for the generators that fold it into their
            // multipliers; the Mersenne Twister steps through the values it
            // skips, so a huge stride would only make the test slow.
            const u64 stride = genid == 3 ? random() % 8 : random() >> 1;
            state[size_t(length - 3)] = random() % 2 ? 1 : int64_t(stride) | 1;
            state[size_t(length - 2)] = int64_t(random() % 5) + 1;
        }
        const State before = state;
        double x[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
        KorError fail = KOR_ERROR_INIT;
        g05sac(8, state.data(), x, &fail);
        if (fail.code != NE_NOERROR) {
            ASSERT_EQ(state, before);
            ASSERT_EQ(x[0], -1.0);
            continue;
        }
        ++accepted;
        const int64_t n = int64_t(random() % 7) + 1;
        g05khc(n, int64_t(random() % u64(n)) + 1, state.data(), &fail);
        g05kjc(int64_t(random() >> 1), state.data(), &fail);
        g05kkc(int64_t(random() % 300), state.data(), &fail);
        g05sac(8, state.data(), x, &fail);
        ASSERT_EQ(fail.code, NE_NOERROR) << "genid " << genid << ": " << fail.message;
        ASSERT_EQ(State(state.begin(), state.begin() + 3), State(before.begin(), before.begin() + 3));
    }
    EXPECT_GT(accepted, 8000);
}

}  // namespace
