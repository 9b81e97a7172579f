// The generator state: a caller-owned array of 64-bit integers that names
// one of six base generators and holds its whole memory.  Positions here
// are 0-based (state[0] is the first word).
//
//   state[0]        L, the number of words in use
//   state[1]        the generator's check value
//   state[2]        genid, 1..6
//   state[3]        generator-specific (sub-generator, order, form)
//   state[4..L-5]   the generator's own words
//   state[L-4]      the check value (the last word of the seeding block)
//   state[L-3]      stream word 1: the leap-frog stride (1 when none)
//   state[L-2]      stream word 2: the leap-frog stream number (1 when none)
//   state[L-1]      the check value
//
// A generator's seeding function writes its block of Lg words (state[0] =
// Lg, check values at state[1] and state[Lg-1]); the common frame appends
// the last three words.
#pragma once

#include <cstdint>

namespace kor::rng {

enum Genid : int64_t {
    basic = 1,
    wichmann_hill_1 = 2,
    mersenne_twister = 3,
    wichmann_hill_2 = 4,
    acorn = 5,
    mrg32k3a = 6,
};

inline constexpr int64_t frame_words = 3;  // appended after the seeding block
inline constexpr int at_length = 0, at_check = 1, at_genid = 2, at_sub = 3, at_words = 4;

// The seeding functions' codes; they become IFAIL unchanged.
enum class SeedStatus : int64_t {
    ok = 0,
    query = -1,          // the block length was stored in *block
    genid_mismatch = 1,
    invalid_seed = 3,
    lseed_too_small = 4,
    lstate_too_small = 6,
};

enum class PartitionStatus { ok, unsupported, state_too_small };

// One base generator: its identity and its operations on a state.
struct Generator {
    int64_t genid;
    int64_t check;
    // Fills the seeding block.  `room` is the caller's lstate - 3 (<= 0 asks
    // for the block length, returned in *block with SeedStatus::query; too
    // small gives lstate_too_small with the needed length in *block).
    SeedStatus (*seed)(int64_t subid, const int64_t *seed, int64_t lseed, int64_t *state,
                       int64_t room, int64_t *block);
    // True when L is a used length this generator can have, given the words
    // below L that it reads to decide (every read of a state is bounded by
    // this test before the trailing words are looked at).
    bool (*length_ok)(const int64_t *state, int64_t length);
    // x[0..n) from the stream, advancing the state once per value.
    void (*uniforms)(int64_t *state, int64_t n, double *x);
    // Every n-th value from the k-th on (n >= 1, 1 <= k <= n).
    PartitionStatus (*leapfrog)(int64_t *state, int64_t n, int64_t k);
    // Skip n >= 0 values; skip 2^e values, e >= 0.
    PartitionStatus (*skip)(int64_t *state, int64_t n);
    PartitionStatus (*skip_power_of_two)(int64_t *state, int64_t e);
};

// The generator with this genid, or null.
const Generator *find_generator(int64_t genid);

// 0 when the state is sound; 2 when a length test fails; 1 otherwise.
int check_state(const int64_t *state);

// Uniforms on (0, 1) from a sound state (the first stage of every variate
// routine).
void uniforms(int64_t *state, int64_t n, double *x);

// Used length of a sound state.
inline int64_t used_length(const int64_t *state) { return state[at_length]; }

}  // namespace kor::rng
