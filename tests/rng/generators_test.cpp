// The Wichmann–Hill I and II, ACORN and MRG32k3a generators: their
// reference streams (tests/rng/data, copied from the project's reference
// data with their headers), small independent implementations of the
// published recurrences, the partitioning invariants (leap-frog streams
// interleave to the plain stream, skips equal drawing), the seeding rules
// and exits, and a fuzz of damaged states under the sanitizers.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "kor.h"
#include "rng/rng_support.hpp"

namespace {

using u64 = uint64_t;
using u128 = unsigned __int128;
using namespace kor::rng_test;
using Words = State;
using Fields = std::vector<std::string>;

std::vector<Fields> read_lines(const std::string &path) {
    std::ifstream in(path);
    EXPECT_TRUE(in.good()) << path;
    std::vector<Fields> lines;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        Fields f;
        for (std::string s; fields >> s;) f.push_back(s);
        lines.push_back(f);
    }
    return lines;
}

std::vector<Fields> reference(const std::string &name) {
    return read_lines(std::string(KOR_SOURCE_DIR) + "/tests/rng/data/" + name);
}

int64_t integer(const std::string &s) { return std::stoll(s); }
double real(const std::string &s) { return std::strtod(s.c_str(), nullptr); }

u64 power_mod(u64 a, u64 e, u64 m) {
    u64 r = 1;
    for (a %= m; e; e >>= 1, a = a * a % m)
        if (e & 1) r = r * a % m;
    return r;
}

// ---------------------------------------------------------------------------
// Wichmann–Hill I: the substitute 273-row family.

struct Wh1Row {
    u64 a[4], m[4];
};

std::vector<Wh1Row> wh1_table() {
    std::vector<Wh1Row> rows;
    for (const Fields &f : read_lines(std::string(KOR_SOURCE_DIR) + "/rng/data/wh1_substitute_273.rows")) {
        EXPECT_EQ(integer(f[0]), int64_t(rows.size()) + 1);
        Wh1Row r;
        for (int j = 0; j < 4; ++j) r.a[j] = u64(integer(f[1 + j])), r.m[j] = u64(integer(f[5 + j]));
        rows.push_back(r);
    }
    EXPECT_EQ(rows.size(), 273u);
    return rows;
}

// 1 - frac(s) with s = sum x_j (1/m_j), summed left to right.
double wh1_uniform(const u64 x[4], const u64 m[4]) {
    double s = 0.0;
    for (int j = 0; j < 4; ++j) s += double(x[j]) * (1.0 / double(m[j]));
    return 1.0 - (s - std::floor(s));
}

TEST(WichmannHillI, ReferenceStreamsOfTheSubstituteRows) {
    const std::vector<Wh1Row> table = wh1_table();
    int checked = 0;
    for (const char *name : {"ones", "mixed"}) {
        for (int row : {1, 2, 273}) {
            const Wh1Row &r = table[size_t(row - 1)];
            Words seed = {1, 1, 1, 1};
            if (std::string(name) == "mixed") seed = {int64_t(123456789 % r.m[0]), 2, 3, 4};
            // Rows by their number and by numbers equal mod 273.
            for (int64_t subid : {int64_t(row), int64_t(row) + 273, -int64_t(row)}) {
                Words state = init(Kor_WichmannHill_I, subid, seed);
                ASSERT_EQ(state[3], row);
                for (int j = 0; j < 4; ++j) {
                    ASSERT_EQ(u64(state[8 + j]), r.a[j]);
                    ASSERT_EQ(u64(state[12 + j]), r.m[j]);
                }
                int64_t n = 0;
                for (const Fields &f : reference("wh1_substitute_ref.txt")) {
                    if (integer(f[0]) != row || f[1] != name) continue;
                    const double u = draw(state, integer(f[2]) - n).back();
                    n = integer(f[2]);
                    u64 x[4];
                    for (int j = 0; j < 4; ++j) {
                        x[j] = u64(integer(f[3 + j]));
                        EXPECT_EQ(u64(state[4 + j]), x[j]) << row << " " << name << " " << n;
                    }
                    // This generator returns one minus the family's fraction.
                    EXPECT_NEAR(u, 1.0 - real(f[7]), 1e-15);
                    EXPECT_NEAR(u, 1.0 - real(f[8]), 1e-15);
                    EXPECT_EQ(u, wh1_uniform(x, r.m));
                    ++checked;
                }
            }
        }
    }
    EXPECT_EQ(checked, 2 * 3 * 3 * 10);
}

TEST(WichmannHillI, SubgeneratorNumberWrapsModulo273) {
    for (const auto &[subid, row] : std::vector<std::pair<int64_t, int64_t>>{
             {1, 1}, {273, 273}, {274, 1}, {0, 273}, {-5, 5}, {-273, 273}, {547, 1}, {INT64_MIN, 1 + (u64(INT64_MAX) % 273)}})
        EXPECT_EQ(init(Kor_WichmannHill_I, subid, {5})[3], row) << subid;
}

TEST(WichmannHillI, SeedsFoldedAndCompletedFromTheBasicGenerator) {
    // Above 16909320 a seed becomes (seed mod 16909320) + 1.
    Words state = init(Kor_WichmannHill_I, 1, {16909320, 16909321, 33818641, 7});
    EXPECT_EQ(Words(state.begin() + 4, state.begin() + 8), (Words{16909320, 2, 2, 7}));

    // Missing seeds are trunc(16909320 u) of the basic generator started
    // from the last given seed.
    Words basic = init(Kor_Basic, 0, {77});
    const std::vector<double> u = draw(basic, 3);
    state = init(Kor_WichmannHill_I, 9, {77});
    EXPECT_EQ(state[4], 77);
    for (int j = 1; j < 4; ++j) EXPECT_EQ(state[4 + j], int64_t(16909320.0 * u[size_t(j - 1)]));
    state = init(Kor_WichmannHill_I, 9, {5, 77});
    EXPECT_EQ(state[4], 5);
    EXPECT_EQ(state[5], 77);
    EXPECT_EQ(state[6], int64_t(16909320.0 * u[0]));
}

TEST(WichmannHillI, LongStreamAgreesWithTheRecurrence) {
    const Wh1Row r = wh1_table()[99];
    Words state = init(Kor_WichmannHill_I, 100, {11, 22, 33, 44});
    u64 x[4] = {11, 22, 33, 44};
    const std::vector<double> u = draw(state, 20000);
    for (size_t i = 0; i < u.size(); ++i) {
        for (int j = 0; j < 4; ++j) x[j] = r.a[j] * x[j] % r.m[j];
        ASSERT_EQ(u[i], wh1_uniform(x, r.m)) << i;
    }
    // The closed form a^n x0 after a skip of 10^12.
    Words far = init(Kor_WichmannHill_I, 100, {11, 22, 33, 44});
    skip(far, 1000000000000);
    const u64 x0[4] = {11, 22, 33, 44};
    for (int j = 0; j < 4; ++j)
        EXPECT_EQ(u64(far[4 + j]), power_mod(r.a[j], 1000000000000, r.m[j]) * x0[j] % r.m[j]);
}

// ---------------------------------------------------------------------------
// Wichmann–Hill II (2006).

TEST(WichmannHillII, ConstantsAndReferenceStreams) {
    const std::vector<Fields> lines = reference("wh2006_ref.txt");
    Words state = init(Kor_WichmannHill_II, 0, {1, 2, 3, 4});
    u64 m[4] = {};
    for (const Fields &f : lines) {
        if (f[0] != "const") continue;
        const int j = int(integer(f[1])) - 1;
        EXPECT_EQ(state[8 + j], integer(f[2]));   // a
        EXPECT_EQ(state[12 + j], integer(f[3]));  // m
        EXPECT_EQ(state[16 + j], integer(f[4]));  // q
        EXPECT_EQ(state[20 + j], integer(f[5]));  // r
        m[j] = u64(integer(f[3]));
    }
    int checked = 0;
    for (const auto &[name, seed] : std::vector<std::pair<std::string, Words>>{
             {"seed_1_2_3_4", {1, 2, 3, 4}}, {"seed_123456789_987654321_555555555_111111111", {123456789, 987654321, 555555555, 111111111}}}) {
        Words s = init(Kor_WichmannHill_II, 0, seed);
        int64_t n = 0;
        for (const Fields &f : lines) {
            if (f[0] != name) continue;
            const double u = draw(s, integer(f[1]) - n).back();
            n = integer(f[1]);
            double sum = 0.0;
            for (int j = 0; j < 4; ++j) {
                EXPECT_EQ(s[4 + j], integer(f[2 + j])) << name << " " << n;
                sum += double(integer(f[2 + j])) * (1.0 / double(m[j]));
            }
            EXPECT_NEAR(u, real(f[6]), 1e-15);
            EXPECT_NEAR(u, real(f[7]), 1e-15);
            EXPECT_EQ(u, sum - std::trunc(sum));
            ++checked;
        }
    }
    EXPECT_EQ(checked, 42);
}

TEST(WichmannHillII, SeedsCompletedFromTheBasicGenerator) {
    Words basic = init(Kor_Basic, 0, {31});
    const std::vector<double> u = draw(basic, 3);
    const Words state = init(Kor_WichmannHill_II, 0, {31});
    const int64_t m[4] = {2147483579, 2147483543, 2147483423, 2147483123};
    EXPECT_EQ(state[4], 31);
    // trunc(2147483647 u), brought into 1..m-1.
    for (int j = 1; j < 4; ++j)
        EXPECT_EQ(state[4 + j], (int64_t(2147483647.0 * u[size_t(j - 1)]) - 1) % (m[j] - 1) + 1);
    // A seed beyond the modulus is brought into 1..m-1 the same way.
    EXPECT_EQ(init(Kor_WichmannHill_II, 0, {m[0], m[1] - 1, 2 * m[2] - 1, 3})[4], 1);
    EXPECT_EQ(init(Kor_WichmannHill_II, 0, {m[0], m[1] - 1, 2 * m[2] - 1, 3})[6], 1);
}

TEST(WichmannHillII, LeapFrogBeyondSchrageGivesTheSameValues) {
    // With stride 5 the multipliers a^5 mod m have r >= q, where Schrage's
    // method does not apply; the values must not change.
    Words plain = init(Kor_WichmannHill_II, 0, {5, 6, 7, 8}), frog = plain;
    KorError fail = KOR_ERROR_INIT;
    g05khc(5, 3, frog.data(), &fail);
    ASSERT_EQ(fail.code, NE_NOERROR);
    bool beyond = false;
    for (int j = 0; j < 4; ++j) beyond = beyond || frog[20 + j] >= frog[16 + j];
    EXPECT_TRUE(beyond);
    const std::vector<double> all = draw(plain, 5000), some = draw(frog, 1000);
    for (size_t i = 0; i < some.size(); ++i) ASSERT_EQ(some[i], all[2 + 5 * i]) << i;
}

// ---------------------------------------------------------------------------
// MRG32k3a.

constexpr int64_t mrg_m1 = 4294967087, mrg_m2 = 4294944443;

// The published recurrence in exact integers.
struct Mrg {
    int64_t s[6];
    double next() {
        const int64_t p1 = ((1403580 * s[1] - 810728 * s[0]) % mrg_m1 + mrg_m1) % mrg_m1;
        const int64_t p2 = ((527612 * s[5] - 1370589 * s[3]) % mrg_m2 + mrg_m2) % mrg_m2;
        s[0] = s[1], s[1] = s[2], s[2] = p1, s[3] = s[4], s[4] = s[5], s[5] = p2;
        return double(p1 > p2 ? p1 - p2 : p1 - p2 + mrg_m1) * (1.0 / (double(mrg_m1) + 1.0));
    }
};

Words mrg_words(const Words &state) { return Words(state.begin() + 4, state.begin() + 10); }

TEST(Mrg32k3a, ReferenceOutputsAndStates) {
    const std::vector<Fields> lines = reference("mrg32k3a_ref.txt");
    Words state = init(Kor_MRG32k3a, 0, Words(6, 12345));
    EXPECT_EQ(mrg_words(state), Words(6, 12345));
    const std::vector<double> u = draw(state, 1000000);
    int checked = 0;
    for (const Fields &f : lines) {
        if (f[0] != "u") continue;
        EXPECT_EQ(u[size_t(integer(f[1]) - 1)], real(f[5])) << f[1];
        ++checked;
    }
    EXPECT_EQ(checked, 23);
    Words s = init(Kor_MRG32k3a, 0, Words(6, 12345));
    int64_t n = 0;
    for (const Fields &f : lines) {
        if (f[0] != "state") continue;
        draw(s, integer(f[1]) - n);
        n = integer(f[1]);
        Words expected;
        for (int i = 2; i < 8; ++i) expected.push_back(integer(f[size_t(i)]));
        EXPECT_EQ(mrg_words(s), expected) << n;
        ++checked;
    }
    EXPECT_EQ(checked, 30);
}

TEST(Mrg32k3a, SkipStatesIncludingTheStreamSpacings) {
    int checked = 0;
    for (const Fields &f : reference("mrg32k3a_ref.txt")) {
        if (f[0] != "skipstate") continue;
        Words state = init(Kor_MRG32k3a, 0, Words(6, integer(f[1])));
        const std::string n = f[2];
        if (n == "2^76+2^127") {
            skip_power(state, 76);
            skip_power(state, 127);
        } else if (n.rfind("2^", 0) == 0) {
            skip_power(state, integer(n.substr(2)));
        } else {
            skip(state, integer(n));
        }
        Words expected;
        for (int i = 3; i < 9; ++i) expected.push_back(integer(f[size_t(i)]));
        EXPECT_EQ(mrg_words(state), expected) << f[1] << " " << n;
        ++checked;
    }
    EXPECT_EQ(checked, 12);
}

TEST(Mrg32k3a, StoredOneStepMatricesAndConstants) {
    const Words state = init(Kor_MRG32k3a, 0, {1, 2, 3, 4, 5, 6});
    for (const Fields &f : reference("mrg32k3a_matrices.txt")) {
        const int c = f[0] == "A1" ? 0 : f[0] == "A2" ? 1 : -1;
        if (c < 0) continue;
        for (int j = 0; j < 3; ++j)
            EXPECT_EQ(state[size_t(19 + 9 * c + 3 * (integer(f[1]) - 1) + j)], integer(f[size_t(2 + j)]));
    }
    EXPECT_EQ(Words(state.begin() + 10, state.begin() + 19),
              (Words{0, 1403580, -810728, 527612, 0, -1370589, -209, -22853, 1}));
}

TEST(Mrg32k3a, LongStreamAgreesWithTheRecurrence) {
    Words state = init(Kor_MRG32k3a, 0, {987654321, 1, 4294967086, 0, 0, 4294944442});
    Mrg oracle{{987654321, 1, 4294967086, 0, 0, 4294944442}};
    const std::vector<double> u = draw(state, 100000);
    for (size_t i = 0; i < u.size(); ++i) ASSERT_EQ(u[i], oracle.next()) << i;
}

TEST(Mrg32k3a, SeedRules) {
    // Reduced mod m1 (first three) and m2 (last three).
    EXPECT_EQ(mrg_words(init(Kor_MRG32k3a, 0, {mrg_m1 + 5, 0, 0, mrg_m2, 2 * mrg_m2 + 1, 7, 99})),
              (Words{5, 0, 0, 0, 1, 7}));
    // Fewer than six: the rest from the basic generator on the last seed.
    Words basic = init(Kor_Basic, 0, {8});
    const std::vector<double> u = draw(basic, 4);
    const Words w = mrg_words(init(Kor_MRG32k3a, 0, {3, 8}));
    EXPECT_EQ(w[0], 3);
    EXPECT_EQ(w[1], 8);
    EXPECT_EQ(w[2], int64_t(double(mrg_m1) * u[0]));
    for (int i = 3; i < 6; ++i) EXPECT_EQ(w[size_t(i)], int64_t(double(mrg_m2) * u[size_t(i - 2)]));
}

// ---------------------------------------------------------------------------
// ACORN.

u64 acorn_value(const Words &state, int64_t m) { return u64(state[size_t(4 + 2 * m)]) << 30 | u64(state[size_t(5 + 2 * m)]); }

struct Acorn {
    std::vector<u64> y;
    double next() {
        for (size_t m = 1; m < y.size(); ++m) y[m] = (y[m] + y[m - 1]) & ((u64(1) << 60) - 1);
        return double(y.back()) * 0x1p-60;
    }
};

TEST(Acorn, ReferenceStreamsOfOrderTen) {
    int checked = 0;
    for (const auto &[name, seed] : std::vector<std::pair<std::string, Words>>{
             {"k10_M2p60_seed123456789_zero", {123456789}},
             {"k10_M2p60_seed123456789_init1to10", {123456789, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}}}) {
        Words state = init(Kor_ACORN, 10, seed);
        EXPECT_EQ(state[0], 30);
        EXPECT_EQ(state[3], 10);
        int64_t n = 0;
        for (const Fields &f : reference("acorn_ref.txt")) {
            if (f[0] != name) continue;
            const double u = draw(state, integer(f[1]) - n).back();
            n = integer(f[1]);
            EXPECT_EQ(acorn_value(state, 10), u64(integer(f[2]))) << name << " " << n;
            EXPECT_EQ(u, real(f[3]));
            ++checked;
        }
    }
    EXPECT_EQ(checked, 42);
}

TEST(Acorn, OrderSeedsAndHalves) {
    EXPECT_EQ(query(Kor_ACORN, 10), 30);
    EXPECT_EQ(query(Kor_ACORN, 3), 16);
    EXPECT_EQ(query(Kor_ACORN, 1), 12);
    EXPECT_EQ(query(Kor_ACORN, 1000), 2010);
    EXPECT_EQ(query(Kor_ACORN, 0), 30);
    EXPECT_EQ(query(Kor_ACORN, 1001), 30);
    EXPECT_EQ(query(Kor_ACORN, -3), 30);

    // Order 3 against the recurrence; seed(1) made odd and taken mod 2^60,
    // missing initial values 0, extra seeds ignored.
    const int64_t big = (int64_t(1) << 60) + 1000;  // -> 1001
    Words state = init(Kor_ACORN, 3, {big, 5, (int64_t(1) << 61) + 6, 7, 8, 9});
    Acorn oracle{{1001, 5, 6, 7}};
    for (int64_t m = 0; m <= 3; ++m) EXPECT_EQ(acorn_value(state, m), oracle.y[size_t(m)]);
    std::vector<double> u = draw(state, 5000);
    for (size_t i = 0; i < u.size(); ++i) ASSERT_EQ(u[i], oracle.next()) << i;
    for (size_t i = 4; i < 12; ++i) EXPECT_TRUE(state[i] >= 0 && state[i] < (int64_t(1) << 30)) << i;

    state = init(Kor_ACORN, 3, {1000, 4});
    Acorn zero{{1001, 4, 0, 0}};
    u = draw(state, 100);
    for (size_t i = 0; i < u.size(); ++i) ASSERT_EQ(u[i], zero.next()) << i;
}

// Y_k after n steps from a zero start is seed C(n + 9, 10) mod 2^60 for
// order 10: the product of the ten factors taken mod 10! 2^60, then divided
// by 10!, is exact.
u64 acorn_closed_form(u64 seed, u64 n) {
    const u128 factorial = 3628800, modulus = factorial << 60;
    u128 p = 1;
    for (u64 i = 0; i < 10; ++i) p = p * (n + i) % modulus;
    return u64(p / factorial * seed) & ((u64(1) << 60) - 1);
}

TEST(Acorn, SkipsAgreeWithTheClosedForm) {
    for (const u64 n : {u64(1), u64(37), u64(1000), u64(1) << 20, u64(999999937), u64(1000000000000), u64(1) << 40}) {
        Words state = init(Kor_ACORN, 10, {123456789});
        skip(state, int64_t(n));
        EXPECT_EQ(acorn_value(state, 10), acorn_closed_form(123456789, n)) << u64(n);
    }
    const std::vector<Fields> lines = reference("acorn_ref.txt");
    EXPECT_EQ(acorn_closed_form(123456789, 1000), u64(integer(lines[20][2])));
}

TEST(Acorn, HighOrderSkipsAndTheirPeriodInPowersOfTwo) {
    Words seeded = init(Kor_ACORN, 1000, {918273645, 1, 2, 3});
    Words plain = seeded;
    const std::vector<double> all = draw(plain, 3000);
    for (int64_t n : {1, 2, 511, 512, 1024, 2047}) {
        Words s = seeded;
        skip(s, n);
        const std::vector<double> next = draw(s, 20);
        for (size_t i = 0; i < next.size(); ++i) ASSERT_EQ(next[i], all[size_t(n) + i]) << n;
    }
    // C(2^e, j) for j <= 1000 is divisible by 2^(e - 9): the matrix power for
    // 2^68 still moves the state, its square (2^69) does not, nor does 2^500.
    Words a = seeded, b = seeded, c = seeded;
    skip_power(a, 68);
    EXPECT_NE(a, seeded);
    skip_power(a, 68);
    EXPECT_EQ(a, seeded);
    skip_power(b, 69);
    EXPECT_EQ(b, seeded);
    skip_power(c, 500);
    EXPECT_EQ(c, seeded);
}

TEST(Acorn, LeapFrogIsRefused) {
    Words state = init(Kor_ACORN, 10, {7});
    const Words before = state;
    KorError fail = KOR_ERROR_INIT;
    g05khc(2, 1, state.data(), &fail);
    EXPECT_EQ(fail.code, NE_BAD_PARAM);
    EXPECT_EQ(std::string(fail.message),
              "NE_BAD_PARAM:\n  On entry, cannot use leap-frog with the base generator defined by state.");
    EXPECT_EQ(state, before);
}

// ---------------------------------------------------------------------------
// Invariants of every generator.

struct Config {
    const char *name;
    Kor_BaseGenerator genid;
    int64_t subid;
    Words seed;
    bool leapfrog;
};

const Config configs[] = {
    {"basic", Kor_Basic, 0, {31337}, true},
    {"WH I", Kor_WichmannHill_I, 17, {1234, 5678, 9012, 3456}, true},
    {"WH II", Kor_WichmannHill_II, 0, {1234, 5678, 9012, 3456}, true},
    {"MRG32k3a", Kor_MRG32k3a, 0, {1234, 5678, 9012, 3456, 7890, 1122}, true},
    {"ACORN 10", Kor_ACORN, 10, {12345, 1, 2}, false},
    {"ACORN 3", Kor_ACORN, 3, {54321}, false},
};

TEST(AllGenerators, LeapFrogStreamsInterleaveToThePlainStream) {
    for (const Config &g : configs) {
        if (!g.leapfrog) continue;
        Words plain = init(g.genid, g.subid, g.seed);
        const std::vector<double> all = draw(plain, 2000);
        for (int64_t n : {1, 2, 3, 5}) {
            for (int64_t k = 1; k <= n; ++k) {
                Words s = init(g.genid, g.subid, g.seed);
                KorError fail = KOR_ERROR_INIT;
                g05khc(n, k, s.data(), &fail);
                ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
                EXPECT_EQ(s[s.size() - 3], n);
                EXPECT_EQ(s[s.size() - 2], k);
                Words t = s;
                const std::vector<double> x = draw(s, 200);
                for (size_t i = 0; i < x.size(); ++i) ASSERT_EQ(x[i], all[size_t(k - 1) + i * size_t(n)]) << g.name << " " << n << " " << k;
                // A skip then counts values of the partitioned stream.
                skip(t, 7);
                EXPECT_EQ(draw(t, 1)[0], all[size_t(k - 1 + 7 * n)]) << g.name;
            }
        }
    }
}

TEST(AllGenerators, SkipsEqualDrawing) {
    for (const Config &g : configs) {
        Words plain = init(g.genid, g.subid, g.seed);
        const std::vector<double> all = draw(plain, 1000010);
        for (int64_t n : {0, 1, 2, 1000, 1000000}) {
            Words s = init(g.genid, g.subid, g.seed);
            skip(s, n);
            const std::vector<double> x = draw(s, 10);
            for (size_t i = 0; i < x.size(); ++i) ASSERT_EQ(x[i], all[size_t(n) + i]) << g.name << " " << n;
        }
        // Large skips compose.
        for (int64_t n : {int64_t(1000000000000), int64_t(1) << 62, INT64_MAX}) {
            Words one = init(g.genid, g.subid, g.seed), two = one;
            skip(one, n);
            skip(two, n - 999999);
            skip(two, 999999);
            EXPECT_EQ(one, two) << g.name << " " << n;
            EXPECT_EQ(draw(one, 5), draw(two, 5));
        }
        // Skipping 2^e equals skipping that many values.
        for (int64_t e = 0; e < 63; ++e) {
            Words a = init(g.genid, g.subid, g.seed), b = a;
            skip_power(a, e);
            skip(b, int64_t(1) << e);
            ASSERT_EQ(a, b) << g.name << " " << e;
        }
        // 2^63 = 2^62 + 2^62, and beyond.
        Words a = init(g.genid, g.subid, g.seed), b = a;
        skip_power(a, 63);
        skip_power(b, 62);
        skip_power(b, 62);
        EXPECT_EQ(draw(a, 3), draw(b, 3)) << g.name;
        a = init(g.genid, g.subid, g.seed), b = a;
        skip_power(a, 200);
        skip_power(b, 199);
        skip_power(b, 199);
        EXPECT_EQ(draw(a, 3), draw(b, 3)) << g.name;
    }
}

TEST(AllGenerators, CopiedStateIsACopiedStream) {
    for (const Config &g : configs) {
        Words state = init(g.genid, g.subid, g.seed);
        draw(state, 123);
        Words copy = state;
        EXPECT_EQ(draw(state, 500), draw(copy, 500)) << g.name;
        EXPECT_EQ(state, copy);
    }
}

TEST(AllGenerators, UniformsLieInTheUnitInterval) {
    for (const Config &g : configs) {
        Words state = init(g.genid, g.subid, g.seed);
        for (double u : draw(state, 100000)) ASSERT_TRUE(u >= 0.0 && u <= 1.0) << g.name;
    }
}

TEST(AllGenerators, SizeQueriesAndSeedingExits) {
    EXPECT_EQ(query(Kor_WichmannHill_I, 1), 21);
    EXPECT_EQ(query(Kor_WichmannHill_II, 0), 29);
    EXPECT_EQ(query(Kor_MRG32k3a, 0), 61);
    const struct {
        Kor_BaseGenerator genid;
        int64_t subid;
        Words seed;
        int64_t lseed, lstate;
        int code;
        std::string message;
    } cases[] = {
        {Kor_WichmannHill_I, 1, {5}, 1, 20, NE_INT, "NE_INT:\n  On entry, lstate = 20.\n  Constraint: lstate <= 0 or lstate >= 21."},
        {Kor_WichmannHill_II, 1, {5}, 1, 28, NE_INT, "NE_INT:\n  On entry, lstate = 28.\n  Constraint: lstate <= 0 or lstate >= 29."},
        {Kor_MRG32k3a, 1, {5}, 1, 1, NE_INT, "NE_INT:\n  On entry, lstate = 1.\n  Constraint: lstate <= 0 or lstate >= 61."},
        {Kor_ACORN, 10, {5}, 1, 29, NE_INT, "NE_INT:\n  On entry, lstate = 29.\n  Constraint: lstate <= 0 or lstate >= 30."},
        {Kor_ACORN, 3, {5}, 1, 15, NE_INT, "NE_INT:\n  On entry, lstate = 15.\n  Constraint: lstate <= 0 or lstate >= 16."},
        {Kor_WichmannHill_I, 1, {5}, 0, 21, NE_INT, "NE_INT:\n  On entry, lseed = 0.\n  Constraint: lseed >= 1."},
        {Kor_WichmannHill_II, 1, {5}, -1, 29, NE_INT, "NE_INT:\n  On entry, lseed = -1.\n  Constraint: lseed >= 1."},
        {Kor_MRG32k3a, 1, {5}, 0, 61, NE_INT, "NE_INT:\n  On entry, lseed = 0.\n  Constraint: lseed >= 1."},
        {Kor_ACORN, 1, {5}, 0, 12, NE_INT, "NE_INT:\n  On entry, lseed = 0.\n  Constraint: lseed >= 1."},
        {Kor_WichmannHill_I, 1, {5, 0}, 2, 21, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {Kor_WichmannHill_I, 1, {5, 6, 7, -8}, 4, 21, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {Kor_WichmannHill_II, 1, {0}, 1, 29, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {Kor_MRG32k3a, 1, {0, 0, 0, 1, 2, 3}, 6, 61, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {Kor_MRG32k3a, 1, {1, 2, 3, mrg_m2, 0, 2 * mrg_m2}, 6, 61, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {Kor_MRG32k3a, 1, {1, 2, -3, 1, 2, 3}, 6, 61, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {Kor_ACORN, 10, {0}, 1, 30, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
        {Kor_ACORN, 10, {7, 1, -1}, 3, 30, NE_INT_ARRAY, "NE_INT_ARRAY:\n  On entry, invalid seed."},
    };
    for (const auto &c : cases) {
        Words state(80, -7);
        const Words before = state;
        int64_t lstate = c.lstate;
        KorError fail = KOR_ERROR_INIT;
        g05kfc(c.genid, c.subid, c.seed.data(), c.lseed, state.data(), &lstate, &fail);
        EXPECT_EQ(fail.code, c.code) << c.message;
        EXPECT_EQ(std::string(fail.message), c.message);
        EXPECT_EQ(lstate, c.lstate);
        EXPECT_EQ(state, before) << "a failed initialisation leaves state alone";
    }
    // A longer state than needed is accepted; its used length is stored.
    Words state(100);
    int64_t lstate = 100, seed[2] = {3, 4};
    KorError fail = KOR_ERROR_INIT;
    for (Kor_BaseGenerator genid : {Kor_WichmannHill_I, Kor_WichmannHill_II, Kor_ACORN, Kor_MRG32k3a}) {
        g05kfc(genid, 3, seed, 2, state.data(), &lstate, &fail);
        EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
        EXPECT_EQ(lstate, 100);
        EXPECT_EQ(state[0], query(genid, 3));
    }
}

TEST(AllGenerators, NonRepeatableInitialisation) {
    for (const Config &g : configs) {
        int64_t lstate = query(g.genid, g.subid);
        Words a(static_cast<size_t>(lstate)), b = a;
        KorError fail = KOR_ERROR_INIT;
        g05kgc(g.genid, g.subid, a.data(), &lstate, &fail);
        ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
        g05kgc(g.genid, g.subid, b.data(), &lstate, &fail);
        ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
        EXPECT_NE(draw(a, 20), draw(b, 20)) << g.name;
    }
}

// Random arrays, many of them with a plausible frame (length, check values,
// genid, positive stream words) around random words, must be refused or
// used without reading outside the length they declare in their first word
// (each is allocated at exactly that length; the sanitizer build reports
// any stray read), and a state that is used stays a sound state.
TEST(AllGenerators, DamagedStatesAreRefusedOrUsedSafely) {
    std::mt19937_64 random(20240611);
    const int64_t checks[7] = {0, 1234, 2468, 3692, 4826, 5050, 4826};
    const int64_t lengths[7] = {0, 17, 21, 1260, 29, 0, 61};
    int accepted = 0;
    for (int trial = 0; trial < 100000; ++trial) {
        const int64_t genid = int64_t(random() % 6) + 1;
        const bool framed = random() % 2;
        int64_t length = int64_t(random() % 1300) + 3;
        int64_t order = int64_t(random() % 1000) + 1;
        if (framed) {
            if (genid == 5) length = 2 * (order = int64_t(random() % 60) + 1) + 10;
            else if (genid == 3) length = random() % 2 ? 633 : 1260;
            else length = lengths[genid];
        }
        Words state(static_cast<size_t>(length));
        for (int64_t &w : state) {
            switch (random() % 4) {
            case 0: w = int64_t(random()); break;
            case 1: w = int64_t(random() % 5) - 1; break;
            default: w = int64_t(random() % (u64(1) << 33)); break;
            }
        }
        state[0] = length;
        state[2] = random() % 8 ? genid : int64_t(random() % 9) - 1;
        if (framed) {
            state[1] = state[size_t(length - 4)] = state[size_t(length - 1)] = checks[genid];
            state[3] = genid == 5 ? order : state[3];
            // Any stride for the generators that fold it into their
            // multipliers; the Mersenne Twister steps through the values
            // it skips, so a huge stride would only make the test slow.
            const u64 stride = genid == 3 ? random() % 8 : random() >> 1;
            state[size_t(length - 3)] = random() % 2 ? 1 : int64_t(stride) | 1;
            state[size_t(length - 2)] = int64_t(random() % 5) + 1;
        }
        const Words before = state;
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
        ASSERT_EQ(Words(state.begin(), state.begin() + 3), Words(before.begin(), before.begin() + 3));
    }
    EXPECT_GT(accepted, 20000);
}

}  // namespace
