// The basic generator's pieces that other generators use: they fill seeds
// their caller did not give from its uniforms.
#pragma once

#include <cstdint>

namespace kor::rng {

inline constexpr uint64_t basic_multiplier = 302875106592253;  // 13^13

// Writes the basic generator's seeding block for seed >= 1 into state.
void basic_seed(int64_t *state, int64_t seed);

// n uniforms from a basic block (a sound state or a scratch block).
void basic_uniforms(int64_t *state, int64_t n, double *x);

// u = 1 - (H 2^-30 + Lo 2^-60) for X = H 2^30 + Lo.
inline double basic_uniform(uint64_t value) {
    const double high = double(value >> 30), low = double(value & ((uint64_t(1) << 30) - 1));
    return 1.0 - (high * 0x1p-30 + low * 0x1p-60);
}

}  // namespace kor::rng
