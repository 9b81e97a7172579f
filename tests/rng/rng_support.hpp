// Helpers of the generator tests: a state initialised through g05kf, and
// the uniform stream drawn, skipped and split through the C interface.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "kor.h"

namespace kor::rng_test {

using State = std::vector<int64_t>;

inline const std::string corrupt_message =
    "NE_INT_ARRAY:\n  On entry, state vector has been corrupted or not initialized.";

// The state length g05kf asks for.
inline int64_t query(Kor_BaseGenerator genid, int64_t subid) {
    int64_t seed = 1, lstate = 0;
    KorError fail = KOR_ERROR_INIT;
    g05kfc(genid, subid, &seed, 1, nullptr, &lstate, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    return lstate;
}

// A state of `lstate` words (the length asked for when 0), filled with -1
// beforehand so that words left unwritten show.
inline State init(Kor_BaseGenerator genid, int64_t subid, std::vector<int64_t> seeds, int64_t lstate = 0) {
    if (lstate == 0) lstate = query(genid, subid);
    State state(size_t(lstate), -1);
    KorError fail = KOR_ERROR_INIT;
    g05kfc(genid, subid, seeds.data(), int64_t(seeds.size()), state.data(), &lstate, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    return state;
}

inline std::vector<double> draw(State &state, int64_t n) {
    if (n == 0) return {};
    std::vector<double> x(static_cast<size_t>(n));
    KorError fail = KOR_ERROR_INIT;
    g05sac(n, state.data(), x.data(), &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    return x;
}

inline void skip(State &state, int64_t n) {
    KorError fail = KOR_ERROR_INIT;
    g05kjc(n, state.data(), &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
}

inline void skip_power(State &state, int64_t e) {
    KorError fail = KOR_ERROR_INIT;
    g05kkc(e, state.data(), &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
}

inline void leapfrog(State &state, int64_t n, int64_t k) {
    KorError fail = KOR_ERROR_INIT;
    g05khc(n, k, state.data(), &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
}

}  // namespace kor::rng_test
