// A Fortran program keeps a state between calls and must see exactly the
// stream the C interface gives from the same seed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "kor.h"
#include "support/process.hpp"

namespace {

std::vector<int64_t> mrg_state() {
    KorError fail = KOR_ERROR_INIT;
    int64_t seed = 1762543, lstate = 61;
    std::vector<int64_t> state(61);
    g05kfc(Kor_MRG32k3a, 1, &seed, 1, state.data(), &lstate, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    return state;
}

TEST(RngFortran, StateKeptBetweenCallsGivesTheCStream) {
    const kor::test::ProcessResult r = kor::test::run_process(kor::test::probe("rng_fortran_probe"), {});
    ASSERT_EQ(r.status, 0) << r.err;
    std::istringstream lines(r.out);
    std::string line;
    std::vector<double> u, leap, z;
    std::vector<std::string> rest;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string tag;
        fields >> tag;
        double v;
        if (tag == "u") fields >> v, u.push_back(v);
        else if (tag == "leap") while (fields >> v) leap.push_back(v);
        else if (tag == "z") fields >> v, z.push_back(v);
        else rest.push_back(line);
    }
    KorError fail = KOR_ERROR_INIT;
    std::vector<int64_t> state = mrg_state();
    std::vector<double> expected(10);
    g05sac(10, state.data(), expected.data(), &fail);
    EXPECT_EQ(u, expected);

    state = mrg_state();
    g05khc(4, 2, state.data(), &fail);
    std::vector<double> leaped(2);
    g05sac(2, state.data(), leaped.data(), &fail);
    EXPECT_EQ(leap, leaped);

    state = mrg_state();
    std::vector<double> normals(4);
    g05skc(4, 1.5, 4.0, state.data(), normals.data(), &fail);
    EXPECT_EQ(z, normals);

    const std::vector<std::string> expected_rest = {
        "query 61 ifail -1",
        "** On entry, state vector has been corrupted or not initialized.",
        " ** ABNORMAL EXIT from KOR Library routine G05SAF: IFAIL =     2",
        " ** KOR soft failure - control returned",
        "corrupt ifail 2",
    };
    EXPECT_EQ(rest, expected_rest) << r.out;
}

}  // namespace
