// Helpers shared by the special-function tests: one call through a C
// interface with its error record, bit comparison, and error measures in
// units of u = 2^-53.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>

#include "kor.h"
#include "support/numbers.hpp"

namespace specfun_test {

constexpr double u = 0x1p-53;
constexpr double inf = INFINITY;

struct Outcome {
    double value;
    KorError fail;
};

inline Outcome call(double (*f)(double, KorError *), double x) {
    Outcome r{0.0, KOR_ERROR_INIT};
    r.value = f(x, &r.fail);
    return r;
}

inline Outcome call(double (*f)(Kor_Tail, double, KorError *), Kor_Tail tail, double x) {
    Outcome r{0.0, KOR_ERROR_INIT};
    r.value = f(tail, x, &r.fail);
    return r;
}

using kor::test::same_bits;
using kor::test::ulp;

// |c - r| / |r| in units of u.
inline double rel_error(double c, double r) {
    if (r == 0.0) return c == 0.0 ? 0.0 : inf;
    return std::fabs((c - r) / r) / u;
}

// Expects a call that succeeded: code 0 and no outcome.
#define EXPECT_SUCCEEDED(outcome)                                    \
    do {                                                             \
        EXPECT_EQ((outcome).fail.code, NE_NOERROR) << (outcome).fail.message; \
        EXPECT_EQ((outcome).fail.errnum, 0);                         \
    } while (0)

}  // namespace specfun_test
