// Wikramaratna's ACORN generator of order k, modulus M = 2^60
// (J. Comput. Phys. 83 (1989) 16-31):
//   Y0 fixed (odd),  Y_m <- (Y_m + Y_{m-1}) mod M  for m = 1..k in order,
//   the output being the new Y_k / M.
//
// The order is subid when 1 <= subid <= 1000, else 10.  seed(1), reduced
// mod 2^60 and made odd (its low bit set), is Y0; seed(2..k+1) are the
// initial Y1..Yk (0 when not given).  Every number is held as two 30-bit
// halves, high half first.
// Block (Lg = 2k + 7): [3] k, [4..5] Y0, [4+2m..5+2m] Y_m (m = 1..k),
// [2k+6] the check value.
//
// One step is Y <- L Y with L the unit lower triangular matrix of ones, so
// n steps are Y <- L^n Y with (L^n)_{m,i} = C(n + m - i - 1, m - i); a skip
// forms those k + 1 binomial coefficients mod 2^60 and applies them in
// O(k^2).  Leap-frog is not offered.
#include <algorithm>
#include <cstdint>

#include "rng/state.hpp"

namespace kor::rng {

namespace {

using u64 = uint64_t;
using u128 = unsigned __int128;
constexpr int64_t check_value = 5050, default_order = 10, max_order = 1000;
constexpr int at_y = 4;
constexpr u64 mask30 = (u64(1) << 30) - 1, mask60 = (u64(1) << 60) - 1;

int64_t order_of(int64_t subid) { return subid >= 1 && subid <= max_order ? subid : default_order; }
int64_t block_for(int64_t k) { return 2 * k + 7; }

u64 read(const int64_t *state, int64_t m) {
    return (u64(state[at_y + 2 * m]) & mask30) << 30 | (u64(state[at_y + 2 * m + 1]) & mask30);
}

void write(int64_t *state, int64_t m, u64 y) {
    state[at_y + 2 * m] = int64_t(y >> 30 & mask30);
    state[at_y + 2 * m + 1] = int64_t(y & mask30);
}

SeedStatus seed(int64_t subid, const int64_t *seed, int64_t lseed, int64_t *state, int64_t room, int64_t *block) {
    const int64_t k = order_of(subid), length = block_for(k);
    *block = length;
    if (lseed < 1) return SeedStatus::lseed_too_small;
    if (room < 0) return SeedStatus::query;
    if (room < length) return SeedStatus::lstate_too_small;
    const int64_t given = std::min(lseed, k + 1);
    if (seed[0] < 1) return SeedStatus::invalid_seed;
    for (int64_t i = 1; i < given; ++i)
        if (seed[i] < 0) return SeedStatus::invalid_seed;
    std::fill(state, state + length, 0);
    state[at_length] = length;
    state[at_check] = state[length - 1] = check_value;
    state[at_genid] = acorn;
    state[at_sub] = k;
    // An odd Y0 gives the full period.
    write(state, 0, (u64(seed[0]) & mask60) | 1);
    for (int64_t i = 1; i < given; ++i) write(state, i, u64(seed[i]) & mask60);
    return SeedStatus::ok;
}

bool length_ok(const int64_t *state, int64_t length) {
    const int64_t k = state[at_sub];
    return k >= 1 && k <= max_order && length == block_for(k) + frame_words;
}

// The additive recurrence: the halves are joined into one 60-bit number
// per term, which carries between them exactly as the 30-bit arithmetic.
void fill(int64_t *state, int64_t n, double *u) {
    const int64_t k = state[at_sub];
    u64 y[max_order + 1];
    for (int64_t m = 0; m <= k; ++m) y[m] = read(state, m);
    for (int64_t i = 0; i < n; ++i) {
        for (int64_t m = 1; m <= k; ++m) y[m] = (y[m] + y[m - 1]) & mask60;
        u[i] = double(y[k]) * 0x1p-60;
    }
    for (int64_t m = 1; m <= k; ++m) write(state, m, y[m]);
}

// The inverse of an odd number mod 2^64 (Newton's iteration doubles the
// correct low bits, from 3).
u64 inverse(u64 a) {
    u64 x = a;
    for (int i = 0; i < 5; ++i) x *= 2 - a * x;
    return x;
}

int trailing_zeros(u128 v) {
    int t = 0;
    for (; !(v & 1); v >>= 1) ++t;
    return t;
}

// Y <- L^n Y for n >= 1 (n below 2^127).  c_d = C(n + d - 1, d) is built
// as c_{d-1} (n + d - 1) / d, keeping the power of two apart so that only
// odd numbers are divided (they are invertible mod 2^60).
void advance(int64_t *state, u128 n) {
    const int64_t k = state[at_sub];
    u64 c[max_order + 1], y[max_order + 1];
    c[0] = 1;
    u64 odd = 1;
    int twos = 0;
    for (int64_t d = 1; d <= k; ++d) {
        const u128 factor = n + u128(d - 1);
        const int f = trailing_zeros(factor), g = __builtin_ctzll(u64(d));
        odd *= u64(factor >> f) * inverse(u64(d) >> g);
        twos += f - g;
        c[d] = twos >= 60 ? 0 : (odd << twos) & mask60;
    }
    for (int64_t m = 0; m <= k; ++m) y[m] = read(state, m);
    for (int64_t m = 1; m <= k; ++m) {
        u64 sum = 0;
        for (int64_t d = 0; d <= m; ++d) sum += c[d] * y[m - d];
        write(state, m, sum & mask60);
    }
}

PartitionStatus skip(int64_t *state, int64_t n) {
    if (n > 0) advance(state, u128(n));
    return PartitionStatus::ok;
}

// L^(2^e) = sum_j C(2^e, j) (L - I)^j with (L - I)^j = 0 for j > k, and
// C(2^e, j) is divisible by 2^(e - v) where 2^v <= j <= 1000 < 2^10: from
// e = 69 on every term but the identity vanishes mod 2^60, so 2^100 stands
// for any larger power.
PartitionStatus skip_power_of_two(int64_t *state, int64_t e) {
    advance(state, u128(1) << std::min<int64_t>(e, 100));
    return PartitionStatus::ok;
}

PartitionStatus leapfrog(int64_t *, int64_t, int64_t) { return PartitionStatus::unsupported; }

}  // namespace

extern const Generator acorn_generator = {acorn, check_value, seed, length_ok, fill, leapfrog, skip, skip_power_of_two};

}  // namespace kor::rng
