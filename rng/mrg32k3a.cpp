// L'Ecuyer's MRG32k3a (Operations Research 47 (1999) 159-164): two
// third-order recurrences
//   p1 = (1403580 s11 - 810728 s10) mod m1,   m1 = 2^32 - 209,
//   p2 = (527612 s22 - 1370589 s20) mod m2,   m2 = 2^32 - 22853,
// combined as u = (p1 - p2 mod m1, with m1 for 0) / (m1 + 1).
//
// Block (Lg = 58): [3] 0, [4..9] s10 s11 s12 s20 s21 s22 (oldest first),
// [10..12] the first component's multipliers of s12, s11, s10 (0, 1403580,
// -810728), [13..15] the second's of s22, s21, s20 (527612, 0, -1370589),
// [16..17] m1 and m2 as differences from 2^32 (-209, -22853), [18] w = 1
// (the output scale is 1/(m1 + w)), [19..27] and [28..36] the one-step
// matrices of the two components raised to the leap-frog stride (row-major,
// the stride itself being stream word 1), [37..56] 0.
//
// Everything is exact integer arithmetic, so the stream is the published
// double-precision one bit for bit.  A plain stream runs on the published
// constants, reducing by 2^32 = c (mod 2^32 - c); a leap-frogged stream
// steps by the matrices A^n, whose entries are full 32-bit numbers, each
// product reduced mod m before the sum.  Skips multiply by matrix powers.
#include <algorithm>
#include <cstdint>

#include "rng/basic.hpp"
#include "rng/state.hpp"

namespace kor::rng {

namespace {

using u64 = uint64_t;
using u128 = unsigned __int128;
constexpr int64_t block_length = 58, check_value = 4826;
constexpr int at_s = 4, at_mult = 10, at_mod = 16, at_w = 18, at_matrix = 19;
constexpr int64_t two32 = int64_t(1) << 32;
constexpr int64_t multipliers[6] = {0, 1403580, -810728, 527612, 0, -1370589};
constexpr int64_t modulus_offsets[2] = {-209, -22853};

// A modulus rebuilt from its stored word; a word that cannot be one (only
// in a damaged state) gives 2^32, so that nothing divides by zero.
u64 modulus(int64_t stored) {
    const int64_t m = stored < 0 ? stored + two32 : stored;
    return m >= 2 && m <= two32 ? u64(m) : u64(two32);
}

struct Matrix {
    u64 e[3][3];
};

Matrix multiply(const Matrix &a, const Matrix &b, u64 m) {
    Matrix c{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            u64 sum = 0;
            for (int t = 0; t < 3; ++t) sum += a.e[i][t] * b.e[t][j] % m;
            c.e[i][j] = sum % m;
        }
    return c;
}

Matrix power(Matrix a, u128 n, u64 m) {
    Matrix result{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    for (; n; n >>= 1, a = multiply(a, a, m))
        if (n & 1) result = multiply(result, a, m);
    return result;
}

// The one-step matrix of a component, acting on (oldest, middle, newest).
Matrix one_step(const int64_t *mult, u64 m) {
    Matrix a{{{0, 1, 0}, {0, 0, 1}, {0, 0, 0}}};
    for (int t = 0; t < 3; ++t) a.e[2][2 - t] = u64(mult[t] % int64_t(m) + int64_t(m)) % m;
    return a;
}

// Each component's one-step matrix has a primitive characteristic
// polynomial of degree 3, so its order is m^3 - 1 (a multiple of the order
// of any of its powers).
u128 order(u64 m) { return u128(m) * m * m - 1; }

u128 multiply_mod(u128 a, u128 b, u128 m) {  // a, b < m < 2^96
    u128 result = 0;
    for (int bit = 127; bit >= 0; --bit) {
        result = (result << 1) % m;
        if ((b >> bit) & 1) result = (result + a) % m;
    }
    return result;
}

// One component of a state: its modulus, its stored matrix and its words.
struct Component {
    u64 m;
    Matrix a;
    u64 s[3];
};

Component read(const int64_t *state, int c) {
    Component x;
    x.m = modulus(state[at_mod + c]);
    for (int i = 0; i < 3; ++i) {
        x.s[i] = u64(state[at_s + 3 * c + i]) % x.m;
        for (int j = 0; j < 3; ++j) x.a.e[i][j] = u64(state[at_matrix + 9 * c + 3 * i + j]) % x.m;
    }
    return x;
}

// s <- a s mod m, each product reduced before the sum.
void times(const Matrix &a, u64 m, u64 s[3]) {
    u64 next[3];
    for (int i = 0; i < 3; ++i) {
        u64 sum = 0;
        for (int t = 0; t < 3; ++t) sum += a.e[i][t] * s[t] % m;
        next[i] = sum % m;
    }
    std::copy(next, next + 3, s);
}

void write(int64_t *state, const Component &x, int c) {
    for (int i = 0; i < 3; ++i) state[at_s + 3 * c + i] = int64_t(x.s[i]);
}

SeedStatus seed(int64_t, const int64_t *seed, int64_t lseed, int64_t *state, int64_t room, int64_t *block) {
    *block = block_length;
    if (lseed < 1) return SeedStatus::lseed_too_small;
    if (room < 0) return SeedStatus::query;
    if (room < block_length) return SeedStatus::lstate_too_small;
    const u64 m[2] = {modulus(modulus_offsets[0]), modulus(modulus_offsets[1])};
    const int64_t given = std::min<int64_t>(lseed, 6);
    int64_t s[6];
    for (int64_t i = 0; i < given; ++i) {
        if (seed[i] < 0) return SeedStatus::invalid_seed;
        s[i] = int64_t(u64(seed[i]) % m[i / 3]);
    }
    if (given < 6) {
        int64_t scratch[14];
        double u[6];
        basic_seed(scratch, seed[given - 1]);
        basic_uniforms(scratch, 6 - given, u);
        for (int64_t i = given; i < 6; ++i) s[i] = int64_t(u64(double(m[i / 3]) * u[i - given]) % m[i / 3]);
    }
    for (int c = 0; c < 2; ++c)
        if (s[3 * c] == 0 && s[3 * c + 1] == 0 && s[3 * c + 2] == 0) return SeedStatus::invalid_seed;

    std::fill(state, state + block_length, 0);
    state[at_length] = block_length;
    state[at_check] = state[block_length - 1] = check_value;
    state[at_genid] = mrg32k3a;
    std::copy(s, s + 6, state + at_s);
    std::copy(multipliers, multipliers + 6, state + at_mult);
    std::copy(modulus_offsets, modulus_offsets + 2, state + at_mod);
    state[at_w] = 1;
    for (int c = 0; c < 2; ++c) {
        const Matrix a = one_step(multipliers + 3 * c, m[c]);
        for (int i = 0; i < 9; ++i) state[at_matrix + 9 * c + i] = int64_t(a.e[i / 3][i % 3]);
    }
    return SeedStatus::ok;
}

bool length_ok(const int64_t *, int64_t length) { return length == block_length + frame_words; }

// The combination (p1 - p2 mod m1, with m1 for 0) scaled by f; exact until
// the final product, as in the published generator.  Branch-free: the sign
// of p1 - p2 is a coin toss, which a branch would mispredict half the time.
double output(u64 p1, u64 p2, u64 m1, double f) {
    const int64_t d = int64_t(p1) - int64_t(p2);  // |d| < 2^32
    return double(d + (int64_t(m1) & -int64_t(d <= 0))) * f;
}

// p mod m for p < 2^54 and m = 2^32 - c, folding the high half by
// 2^32 = c (mod m) twice, then one subtraction: with c < 2^15 the second
// fold leaves less than 2 m.
template <u64 c>
inline u64 reduce(u64 p) {
    constexpr u64 low = 0xffffffffu;
    p = (p >> 32) * c + (p & low);
    p = (p >> 32) * c + (p & low);
    constexpr u64 m = (u64(1) << 32) - c;
    return p >= m ? p - m : p;
}

// Does the state hold the published multipliers and moduli (every state
// this library makes does)?  Then its plain stream runs on constants.
bool published(const int64_t *state) {
    return std::equal(multipliers, multipliers + 6, state + at_mult) &&
           std::equal(modulus_offsets, modulus_offsets + 2, state + at_mod);
}

void fill(int64_t *state, int64_t n, double *u) {
    const int64_t length = state[at_length];
    Component c[2] = {read(state, 0), read(state, 1)};
    const double f = 1.0 / (double(c[0].m) + double(state[at_w]));
    if (state[length - 3] == 1 && published(state)) {
        // Negative multipliers enter as m - s, so every sum is a positive
        // integer below 2^54.
        constexpr u64 c1 = -modulus_offsets[0], c2 = -modulus_offsets[1];
        constexpr u64 m1 = two32 - c1, m2 = two32 - c2;
        constexpr u64 a12 = multipliers[1], a13 = -multipliers[2], a21 = multipliers[3], a23 = -multipliers[5];
        u64 s10 = c[0].s[0], s11 = c[0].s[1], s12 = c[0].s[2];
        u64 s20 = c[1].s[0], s21 = c[1].s[1], s22 = c[1].s[2];
        for (int64_t i = 0; i < n; ++i) {
            const u64 p1 = reduce<c1>(a12 * s11 + a13 * (m1 - s10));
            const u64 p2 = reduce<c2>(a21 * s22 + a23 * (m2 - s20));
            s10 = s11, s11 = s12, s12 = p1;
            s20 = s21, s21 = s22, s22 = p2;
            u[i] = output(p1, p2, m1, f);
        }
        c[0] = {m1, c[0].a, {s10, s11, s12}};
        c[1] = {m2, c[1].a, {s20, s21, s22}};
    } else {
        // Leap-frogged (or foreign multipliers): every value is the stored
        // matrices times the words, each product reduced before the sum.
        for (int64_t i = 0; i < n; ++i) {
            for (Component &x : c) times(x.a, x.m, x.s);
            u[i] = output(c[0].s[2], c[1].s[2], c[0].m, f);
        }
    }
    write(state, c[0], 0);
    write(state, c[1], 1);
}

// Each component's words times (stored matrix)^exponent(m).
template <class Exponent>
void advance(int64_t *state, Exponent exponent) {
    for (int c = 0; c < 2; ++c) {
        Component x = read(state, c);
        times(power(x.a, exponent(x.m), x.m), x.m, x.s);
        write(state, x, c);
    }
}

// Skips count values of the stream as it stands: after a leap-frog the
// stored matrices are already A^n.
PartitionStatus skip(int64_t *state, int64_t n) {
    advance(state, [n](u64) { return u128(n); });
    return PartitionStatus::ok;
}

PartitionStatus skip_power_of_two(int64_t *state, int64_t e) {
    // 2^e itself while it fits; beyond, 2^e mod the order by square and
    // multiply.
    advance(state, [e](u64 m) {
        if (e < 128) return u128(1) << e;
        const u128 ord = order(m);
        u128 result = 1, base = 2;
        for (u64 k = u64(e); k; k >>= 1, base = multiply_mod(base, base, ord))
            if (k & 1) result = multiply_mod(result, base, ord);
        return result;
    });
    return PartitionStatus::ok;
}

// The next value comes from the stored words times A^n; stream k starts
// at A^k s, so store A^(k - n) s, a negative power being a positive one
// modulo the order.
PartitionStatus leapfrog(int64_t *state, int64_t n, int64_t k) {
    advance(state, [n, k](u64 m) { return (order(m) - u128(n - k)) % order(m); });
    for (int c = 0; c < 2; ++c) {
        const Component x = read(state, c);
        const Matrix a = power(x.a, u128(n), x.m);
        for (int i = 0; i < 9; ++i) state[at_matrix + 9 * c + i] = int64_t(a.e[i / 3][i % 3]);
    }
    const int64_t length = state[at_length];
    state[length - 3] = n;
    state[length - 2] = k;
    return PartitionStatus::ok;
}

}  // namespace

extern const Generator mrg32k3a_generator = {mrg32k3a, check_value, seed, length_ok, fill,
                                             leapfrog, skip, skip_power_of_two};

}  // namespace kor::rng
