// The two Wichmann–Hill generators: four multiplicative congruential
// components x_j <- a_j x_j mod m_j whose fractions x_j/m_j are summed
// mod 1.
//
// Wichmann–Hill I (genid 2) is a family of 273 such generators with small
// multipliers (112..127) and prime moduli near 2^24 (Maclaren 1989).  The
// original table of the family is not publicly available; the rows used
// here, rng/data/wh1_substitute_273.rows, are a documented substitute built
// by a stated rule with the family's published properties (see
// rng/data/README.md), so the streams are not those of the original family.
// Block (Lg = 18): [3] the row, [4..7] x, [8..11] a, [12..15] m, [16] 0.
//
// Wichmann–Hill II (genid 4) is the 2006 generator with 31-bit prime
// moduli.  Block (Lg = 26): [3] 0, [4..7] x, [8..11] a, [12..15] m,
// [16..19] q = m div a, [20..23] r = m mod a (Schrage's pairs), [24] 0.
//
// Leap-frog replaces each a by a^n (and, for II, q and r by the pair of
// the new multiplier); skips multiply x by powers of the stored a.  The
// moduli are prime, so a^(m-1) = 1 and exponents are reduced mod m - 1.
#include <algorithm>
#include <cstdint>

#include "rng/basic.hpp"
#include "rng/state.hpp"
#include "tables/wh1_substitute_273.hpp"

namespace kor::rng {

namespace {

using u64 = uint64_t;
constexpr int at_x = 4, at_a = 8, at_m = 12, at_q = 16, at_r = 20;
constexpr int64_t wh1_block = 18, wh1_check = 2468, wh1_seed_range = 16909320;
constexpr int64_t wh2_block = 26, wh2_check = 4826, wh2_seed_range = 2147483647;
constexpr int64_t wh2_a[4] = {11600, 47003, 23000, 33000};
constexpr int64_t wh2_m[4] = {2147483579, 2147483543, 2147483423, 2147483123};

// Words as read from a state.  Sound states hold values below 2^31; the
// masks only make any other contents harmless (no overflow, no division
// by zero) instead of trusting them.
constexpr u64 word_mask = (u64(1) << 31) - 1;
u64 word(int64_t w) { return u64(w) & word_mask; }
u64 modulus(int64_t w) { return std::max<u64>(word(w), 1); }

u64 power(u64 a, u64 e, u64 m) {
    u64 result = 1 % m;
    for (a %= m; e; e >>= 1, a = a * a % m)
        if (e & 1) result = result * a % m;
    return result;
}

// The order of every multiplier divides m - 1.
u64 group_order(u64 m) { return m > 2 ? m - 1 : 1; }

struct Component {
    u64 x, a, m;
};

void read(const int64_t *state, Component c[4]) {
    for (int j = 0; j < 4; ++j) {
        c[j].m = modulus(state[at_m + j]);
        c[j].a = word(state[at_a + j]) % c[j].m;
        c[j].x = word(state[at_x + j]);
    }
}

// Seeds x1..x4: the given ones (each >= 1), then the basic generator's
// uniforms started from the last given seed, as trunc(range u).  `fold`
// brings a given seed into the generator's range.  Nothing is written
// before every seed has been accepted.
template <class Fold>
SeedStatus seeds(const int64_t *seed, int64_t lseed, int64_t range, Fold fold, int64_t x[4]) {
    const int64_t given = std::min<int64_t>(lseed, 4);
    for (int64_t i = 0; i < given; ++i) {
        if (seed[i] < 1) return SeedStatus::invalid_seed;
        x[i] = fold(seed[i], i);
    }
    if (given < 4) {
        int64_t scratch[14];
        double u[4];
        basic_seed(scratch, seed[given - 1]);
        basic_uniforms(scratch, 4 - given, u);
        // trunc(range u) is 0 only for u < 1/range; a zero component would
        // never move, so it becomes 1.
        for (int64_t i = given; i < 4; ++i) x[i] = fold(std::max<int64_t>(1, int64_t(double(range) * u[i - given])), i);
    }
    return SeedStatus::ok;
}

SeedStatus frame(int64_t lseed, int64_t room, int64_t length, int64_t *block) {
    *block = length;
    if (lseed < 1) return SeedStatus::lseed_too_small;
    if (room < 0) return SeedStatus::query;
    if (room < length) return SeedStatus::lstate_too_small;
    return SeedStatus::ok;
}

void header(int64_t *state, int64_t length, int64_t check, int64_t genid, int64_t sub) {
    std::fill(state, state + length, 0);
    state[at_length] = length;
    state[at_check] = state[length - 1] = check;
    state[at_genid] = genid;
    state[at_sub] = sub;
}

SeedStatus wh1_seed(int64_t subid, const int64_t *seed, int64_t lseed, int64_t *state, int64_t room,
                    int64_t *block) {
    if (const SeedStatus s = frame(lseed, room, wh1_block, block); s != SeedStatus::ok) return s;
    int64_t x[4];
    const auto fold = [](int64_t s, int64_t) { return s > wh1_seed_range ? s % wh1_seed_range + 1 : s; };
    if (const SeedStatus s = seeds(seed, lseed, wh1_seed_range, fold, x); s != SeedStatus::ok) return s;
    // Row ((|subid| - 1) mod 273) + 1, so that 0 selects the last row.
    const u64 magnitude = subid < 0 ? u64(0) - u64(subid) : u64(subid);
    const int row = int((magnitude + data::wh1_substitute_273::count - 1) % data::wh1_substitute_273::count);
    header(state, wh1_block, wh1_check, wichmann_hill_1, row + 1);
    for (int j = 0; j < 4; ++j) {
        state[at_x + j] = x[j];
        state[at_a + j] = data::wh1_substitute_273::rows[row][j];
        state[at_m + j] = data::wh1_substitute_273::rows[row][4 + j];
    }
    return SeedStatus::ok;
}

SeedStatus wh2_seed(int64_t, const int64_t *seed, int64_t lseed, int64_t *state, int64_t room,
                    int64_t *block) {
    if (const SeedStatus s = frame(lseed, room, wh2_block, block); s != SeedStatus::ok) return s;
    int64_t x[4];
    // Seeds are brought into 1..m-1, where the component has full period.
    const auto fold = [](int64_t s, int64_t j) { return (s - 1) % (wh2_m[j] - 1) + 1; };
    if (const SeedStatus s = seeds(seed, lseed, wh2_seed_range, fold, x); s != SeedStatus::ok) return s;
    header(state, wh2_block, wh2_check, wichmann_hill_2, 0);
    for (int j = 0; j < 4; ++j) {
        state[at_x + j] = x[j];
        state[at_a + j] = wh2_a[j];
        state[at_m + j] = wh2_m[j];
        state[at_q + j] = wh2_m[j] / wh2_a[j];
        state[at_r + j] = wh2_m[j] % wh2_a[j];
    }
    return SeedStatus::ok;
}

bool wh1_length_ok(const int64_t *, int64_t length) { return length == wh1_block + frame_words; }
bool wh2_length_ok(const int64_t *, int64_t length) { return length == wh2_block + frame_words; }

// a x mod m by Barrett's reduction with the reciprocal formed once: the
// streams' moduli are run-time values, and a 64-bit division per component
// would cost more than everything else a value takes.  With p = a x < 2^62
// and inv = floor((2^64 - 1)/m), the estimated quotient p inv / 2^64 is
// the true one or one less, so one subtraction corrects it.
struct Step {
    u64 a = 0, m = 1, inv = ~u64(0);
    Step() = default;
    explicit Step(const Component &c) : a(c.a), m(c.m), inv(~u64(0) / c.m) {}
    u64 operator()(u64 x) const {
        const u64 p = a * x;
        const u64 r = p - u64((unsigned __int128)p * inv >> 64) * m;
        return r >= m ? r - m : r;
    }
};

// The four components' next words, and s = sum x_j (1/m_j).
struct Components {
    Component c[4];
    Step step[4];
    double reciprocal[4];
    explicit Components(const int64_t *state) {
        read(state, c);
        for (int j = 0; j < 4; ++j) {
            step[j] = Step(c[j]);
            reciprocal[j] = 1.0 / double(c[j].m);
        }
    }
    double next() {
        double s = 0.0;
        for (int j = 0; j < 4; ++j) {
            c[j].x = step[j](c[j].x);
            s += double(c[j].x) * reciprocal[j];
        }
        return s;
    }
    void store(int64_t *state) const {
        for (int j = 0; j < 4; ++j) state[at_x + j] = int64_t(c[j].x);
    }
};

// The whole part of s >= 0 (below 4) by conversion, which unlike floor
// needs no library call on baseline x86-64.
double whole(double s) { return double(int64_t(s)); }

// u = 1 - frac(s).
void wh1_fill(int64_t *state, int64_t n, double *u) {
    Components c(state);
    for (int64_t i = 0; i < n; ++i) {
        const double s = c.next();
        u[i] = 1.0 - (s - whole(s));
    }
    c.store(state);
}

// u = frac(s).  The generator's definition forms a x mod m by Schrage's
// method, which keeps every product in 32 bits; the exact 64-bit product
// gives the same value, so the pairs (q, r) kept in the state are not
// needed here.
void wh2_fill(int64_t *state, int64_t n, double *u) {
    Components c(state);
    for (int64_t i = 0; i < n; ++i) {
        const double s = c.next();
        u[i] = s - whole(s);
    }
    c.store(state);
}

// x_j <- a_j^e x_j with e = exponent(m_j) (already reduced mod m_j - 1).
template <class Exponent>
void advance(int64_t *state, Exponent exponent) {
    Component c[4];
    read(state, c);
    for (int j = 0; j < 4; ++j)
        state[at_x + j] = int64_t(power(c[j].a, exponent(c[j].m), c[j].m) * (c[j].x % c[j].m) % c[j].m);
}

PartitionStatus skip(int64_t *state, int64_t n) {
    advance(state, [n](u64 m) { return u64(n) % group_order(m); });
    return PartitionStatus::ok;
}

PartitionStatus skip_power_of_two(int64_t *state, int64_t e) {
    advance(state, [e](u64 m) { return power(2, u64(e), group_order(m)); });
    return PartitionStatus::ok;
}

// The next value is the stored x times a^n; stream k starts at a^k x, so
// store a^(k - n) x (a negative exponent is a positive one mod m - 1).
PartitionStatus leapfrog(int64_t *state, int64_t n, int64_t k) {
    advance(state, [n, k](u64 m) {
        const u64 order = group_order(m);
        return (u64(k) % order + order - u64(n) % order) % order;
    });
    for (int j = 0; j < 4; ++j) {
        const u64 m = modulus(state[at_m + j]), a = power(word(state[at_a + j]), u64(n), m);
        state[at_a + j] = int64_t(a);
        if (state[at_genid] == wichmann_hill_2) {
            state[at_q + j] = a ? int64_t(m / a) : 0;
            state[at_r + j] = a ? int64_t(m % a) : 0;
        }
    }
    const int64_t length = state[at_length];
    state[length - 3] = n;
    state[length - 2] = k;
    return PartitionStatus::ok;
}

}  // namespace

extern const Generator wichmann_hill_1_generator = {wichmann_hill_1, wh1_check, wh1_seed, wh1_length_ok,
                                                    wh1_fill, leapfrog, skip, skip_power_of_two};
extern const Generator wichmann_hill_2_generator = {wichmann_hill_2, wh2_check, wh2_seed, wh2_length_ok,
                                                    wh2_fill, leapfrog, skip, skip_power_of_two};

}  // namespace kor::rng
