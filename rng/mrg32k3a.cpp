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
// A plain stream is evaluated in double precision as in the published
// floating-point implementation: every product and sum is an integer
// below 2^53, so exact.  A leap-frogged stream steps by the matrices A^n,
// whose entries are full 32-bit numbers; it is evaluated in integers, each
// product reduced mod m before the sum.  Skips multiply by matrix powers.
#include <algorithm>
#include <cmath>
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

double output(double p1, double p2, double m1, double f) { return p1 > p2 ? (p1 - p2) * f : (p1 - p2 + m1) * f; }

// p mod m by floor division.  The floor is exact: with the published
// multipliers |p/m| < 2^21, where doubles lie at most 2^-32 apart, while
// p/m is either an integer or more than 1/m > 2^-32 away from one, so it
// never rounds onto the integer above.
double reduce(double p, double m) { return p - std::floor(p / m) * m; }

void fill(int64_t *state, int64_t n, double *u) {
    const int64_t length = state[at_length];
    Component c[2] = {read(state, 0), read(state, 1)};
    const double m1 = double(c[0].m), m2 = double(c[1].m), f = 1.0 / (m1 + double(state[at_w]));
    if (state[length - 3] != 1) {
        // Leap-frogged: every value is n steps on, by the stored matrices.
        for (int64_t i = 0; i < n; ++i) {
            for (Component &x : c) times(x.a, x.m, x.s);
            u[i] = output(double(c[0].s[2]), double(c[1].s[2]), m1, f);
        }
        write(state, c[0], 0);
        write(state, c[1], 1);
        return;
    }
    double s[6], a[6];
    for (int k = 0; k < 6; ++k) {
        s[k] = double(c[k / 3].s[k % 3]);
        a[k] = double(state[at_mult + k]);
    }
    for (int64_t i = 0; i < n; ++i) {
        const double p1 = reduce(a[0] * s[2] + a[1] * s[1] + a[2] * s[0], m1);
        const double p2 = reduce(a[3] * s[5] + a[4] * s[4] + a[5] * s[3], m2);
        s[0] = s[1], s[1] = s[2], s[2] = p1;
        s[3] = s[4], s[4] = s[5], s[5] = p2;
        u[i] = output(p1, p2, m1, f);
    }
    // Only a damaged state's multipliers could leave a word out of range.
    for (int k = 0; k < 6; ++k) state[at_s + k] = s[k] >= 0.0 && s[k] < 0x1p32 ? int64_t(s[k]) : 0;
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
