// Helpers of the generator tests: states initialised through g05kf, the
// uniform stream drawn, skipped and split through the C interface, and the
// exit of a routine named at run time (for tables over routines).
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "kor.h"
#include "support/exits.hpp"

namespace kor::rng_test {

using State = std::vector<int64_t>;
using Reals = std::vector<double>;

// The state length g05kf asks for.
inline int64_t query(Kor_BaseGenerator genid, int64_t subid) {
    int64_t seed = 1, lstate = 0;
    KorError fail = KOR_ERROR_INIT;
    g05kfc(genid, subid, &seed, 1, nullptr, &lstate, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;  // the query's outcome is -1
    return lstate;
}

// A state of `lstate` words (the length asked for when 0), filled with -1
// beforehand so that words left unwritten show.
inline State init(Kor_BaseGenerator genid, int64_t subid, State seeds, int64_t lstate = 0) {
    if (lstate == 0) lstate = query(genid, subid);
    State state(size_t(lstate), -1);
    KorError fail = KOR_ERROR_INIT;
    g05kfc(genid, subid, seeds.data(), int64_t(seeds.size()), state.data(), &lstate, &fail);
    kor::test::expect_success(fail);
    return state;
}

inline Reals draw(State &state, int64_t n) {
    Reals x(static_cast<size_t>(n));
    KorError fail = KOR_ERROR_INIT;
    g05sac(n, state.data(), x.data(), &fail);
    kor::test::expect_success(fail);
    return x;
}

#define KOR_RNG_STEP(call) { KorError fail = KOR_ERROR_INIT; call; kor::test::expect_success(fail); }
inline void skip(State &s, int64_t n) KOR_RNG_STEP(g05kjc(n, s.data(), &fail))
inline void skip_power(State &s, int64_t e) KOR_RNG_STEP(g05kkc(e, s.data(), &fail))
inline void leapfrog(State &s, int64_t n, int64_t k) KOR_RNG_STEP(g05khc(n, k, s.data(), &fail))
#undef KOR_RNG_STEP

// Expects the exit of `info` called `name`; returns the values it shows.
inline std::vector<std::string> exit_named(const kor::frame::RoutineInfo &info, const std::string &name,
                                           const KorError &fail) {
    std::vector<std::string> values;
    for (int i = 0; i < info.nexits; ++i) {
        const kor::frame::ExitInfo &exit = info.exits[i];
        if (name != exit.name) continue;
        EXPECT_EQ(fail.code, exit.code) << name << ": " << fail.message;
        EXPECT_EQ(fail.errnum, exit.outcome) << name;
        EXPECT_TRUE(kor::test::match_exit_message(exit, fail.message, values)) << name << ": " << fail.message;
        return values;
    }
    ADD_FAILURE() << info.c_name << " has no exit " << name;
    return values;
}

}  // namespace kor::rng_test
