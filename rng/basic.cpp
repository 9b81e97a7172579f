// The basic generator: x <- 13^13 x mod 2^59, kept as X = 2x mod 2^60 in
// four 15-bit digits, least significant first, with the multiplier beside
// it in the same form (leap-frog replaces it by a power).
//
// Block (Lg = 14): [4..7] X, [8..11] the multiplier, [12] 0, [13] check.
#include <cstdint>

#include "rng/basic.hpp"
#include "rng/state.hpp"

namespace kor::rng {

namespace {

constexpr int64_t block_length = 14;
constexpr int64_t check_value = 1234;
constexpr int at_x = 4, at_multiplier = 8;
constexpr uint64_t mask60 = (uint64_t(1) << 60) - 1;

uint64_t read_digits(const int64_t *digits) {
    return uint64_t(digits[0]) | uint64_t(digits[1]) << 15 | uint64_t(digits[2]) << 30 |
           uint64_t(digits[3]) << 45;
}

void write_digits(int64_t *digits, uint64_t value) {
    for (int i = 0; i < 4; ++i) digits[i] = int64_t((value >> (15 * i)) & 0x7fff);
}

// a·b mod 2^60: unsigned arithmetic wraps mod 2^64, which the mask reduces
// further; the same result as the digit-by-digit product with carries.
uint64_t multiply(uint64_t a, uint64_t b) { return (a * b) & mask60; }

uint64_t power(uint64_t a, uint64_t n) {
    uint64_t result = 1;
    for (; n; n >>= 1, a = multiply(a, a))
        if (n & 1) result = multiply(result, a);
    return result;
}

SeedStatus seed(int64_t, const int64_t *seed, int64_t lseed, int64_t *state, int64_t room,
                int64_t *block) {
    *block = block_length;
    if (lseed < 1) return SeedStatus::lseed_too_small;
    if (room < 0) return SeedStatus::query;
    if (room < block_length) return SeedStatus::lstate_too_small;
    if (seed[0] < 1) return SeedStatus::invalid_seed;
    basic_seed(state, seed[0]);
    return SeedStatus::ok;
}

bool length_ok(const int64_t *, int64_t length) { return length == block_length + frame_words; }

void fill(int64_t *state, int64_t n, double *x) {
    const uint64_t a = read_digits(state + at_multiplier);
    uint64_t value = read_digits(state + at_x);
    for (int64_t i = 0; i < n; ++i) {
        value = multiply(a, value);
        x[i] = basic_uniform(value);
    }
    write_digits(state + at_x, value);
}

// The odd residues mod 2^60 form a group of exponent 2^58, so exponents
// work mod 2^58 and a^-1 = a^(2^58 - 1).
constexpr uint64_t group_exponent = uint64_t(1) << 58;

PartitionStatus leapfrog(int64_t *state, int64_t n, int64_t k) {
    // The next value is the stored one times the new multiplier a^n; stream
    // k must start at a^k X, so store a^(k - n) X.
    const uint64_t a = read_digits(state + at_multiplier);
    const uint64_t exponent = (uint64_t(k) + group_exponent - uint64_t(n) % group_exponent) % group_exponent;
    write_digits(state + at_x, multiply(power(a, exponent), read_digits(state + at_x)));
    write_digits(state + at_multiplier, power(a, uint64_t(n)));
    const int64_t length = state[at_length];
    state[length - 3] = n;
    state[length - 2] = k;
    return PartitionStatus::ok;
}

// Skips advance by the one-step multiplier's power; after a leap-frog the
// stored multiplier already is a power, and a skip counts its steps.
PartitionStatus skip(int64_t *state, int64_t n) {
    const uint64_t a = read_digits(state + at_multiplier);
    write_digits(state + at_x, multiply(power(a, uint64_t(n)), read_digits(state + at_x)));
    return PartitionStatus::ok;
}

PartitionStatus skip_power_of_two(int64_t *state, int64_t e) {
    // Beyond e = 58, a^(2^e) is 1.
    uint64_t a = read_digits(state + at_multiplier);
    for (int64_t i = 0; i < e && i < 60; ++i) a = multiply(a, a);
    write_digits(state + at_x, multiply(a, read_digits(state + at_x)));
    return PartitionStatus::ok;
}

}  // namespace

void basic_seed(int64_t *state, int64_t seed) {
    state[at_length] = block_length;
    state[at_check] = check_value;
    state[at_genid] = basic;
    state[at_sub] = 0;
    write_digits(state + at_x, (4 * uint64_t(seed) + 2) & mask60);
    write_digits(state + at_multiplier, basic_multiplier);
    state[12] = 0;
    state[block_length - 1] = check_value;
    // The seed itself is never the first value.
    write_digits(state + at_x, multiply(basic_multiplier, read_digits(state + at_x)));
}

void basic_uniforms(int64_t *state, int64_t n, double *x) { fill(state, n, x); }

extern const Generator basic_generator = {basic, check_value, seed, length_ok, fill,
                                          leapfrog, skip, skip_power_of_two};

}  // namespace kor::rng
