// Shared material of the zero-finder tests: standard test functions with
// reference zeros, a counting C user function, and a driver that answers the
// requests of the reverse-communication routine.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kor.h"
#include "support/numbers.hpp"

namespace roots_test {

// A test function with its bracket and the zero rounded to double.  The
// reference zeros come from closed forms or from bisection in 60-digit
// Python decimal arithmetic (cross-checked with an independent root solver):
//   sqrt(2)                 1.41421356237309504880168872420969807857
//   x^3 - 2x - 5 (Wallis)   2.09455148154232659148238654057930296386
//   cos x = x (Dottie)      0.73908513321516064165531208767387340401
//   exp(-x) = x (omega)     0.56714329040978387299996866221035554975
//   x^3 - x - 1 (plastic)   1.32471795724474602596090885447809734073
//   log1p(1e-8)             9.99999995000000033333333083333335333333e-9
//   sqrt(2e12)              1414213.56237309504880168872420969807857
struct Case {
    const char *name;
    double (*f)(double);
    double a, b;
    double zero;
    double scale;  // the size of a sensible absolute accuracy near the zero
};

inline const std::vector<Case> &cases() {
    static const std::vector<Case> table = {
        {"square_minus_2", [](double x) { return x * x - 2.0; }, 0.0, 2.0, 1.41421356237309504880,
         1.0},
        {"wallis", [](double x) { return (x * x - 2.0) * x - 5.0; }, 2.0, 3.0,
         2.09455148154232659148, 1.0},
        {"dottie", [](double x) { return std::cos(x) - x; }, 0.0, 1.0, 0.73908513321516064166, 1.0},
        {"omega", [](double x) { return std::exp(-x) - x; }, 0.0, 1.0, 0.56714329040978387300, 1.0},
        {"plastic", [](double x) { return (x * x - 1.0) * x - 1.0; }, 2.0, 1.0,
         1.32471795724474602596, 1.0},
        {"three_simple_zeros", [](double x) { return (x - 1.0) * (x - 2.0) * (x - 3.0); }, 1.5, 2.8,
         2.0, 1.0},
        {"steep_tanh", [](double x) { return std::tanh(50.0 * (x - 0.3)); }, 0.0, 1.0, 0.3, 1.0},
        {"zero_near_0", [](double x) { return std::expm1(x) - 1e-8; }, -1.0, 1.0,
         9.99999995000000033333e-9, 1.0},
        {"zero_at_0", [](double x) { return std::sin(x); }, -1.0, 3.0, 0.0, 1.0},
        {"zero_near_1e6", [](double x) { return x * x - 2e12; }, 5e5, 2e6, 1414213.56237309504880,
         1e6},
    };
    return table;
}

// The user function handed to c05ayc: comm->data points to a Counted, so
// that calls are counted per search and the tests stay thread-safe.
struct Counted {
    double (*f)(double);
    int64_t calls = 0;
};

inline double counted(double x, Kor_Comm *comm) {
    auto *c = static_cast<Counted *>(comm->data);
    ++c->calls;
    return c->f(x);
}

// Bound on the number of requests a search may make before a test calls it
// a hang.
inline constexpr long request_limit = 100000;

// The state and outcome of one reverse-communication search.
struct Search {
    double x = 0.0, y = 0.0;
    int64_t ind = 0;
    KorError fail = KOR_ERROR_INIT;
    long requests = 0;
    std::vector<int64_t> codes;  // every ind returned, in order
    std::vector<double> asked;   // every x at which a value was requested
};

// Runs c05azc to the end, answering each request with f(x).  start is 1, or
// -1 with f(x) supplied on the initial entry.
using Rcomm = void (*)(double *, double *, double, double, Kor_ErrorTest, double *, int64_t *,
                       KorError *);

template <class F>
Search drive(F f, double x, double y, double tolx, Kor_ErrorTest ir, int64_t start = 1,
             Rcomm routine = c05azc) {
    Search s;
    s.x = x;
    s.y = y;
    s.ind = start;
    double c[KOR_C05AZ_LC] = {};
    double fx = start == -1 ? f(x) : 0.0;
    for (;;) {
        routine(&s.x, &s.y, fx, tolx, ir, c, &s.ind, &s.fail);
        if (s.fail.code != 0 && s.fail.code != NW_TOO_MUCH_ACC_REQUESTED &&
            s.fail.code != NE_PROBABLE_POLE && s.fail.code != NE_NOT_SIGN_CHANGE)
            return s;  // an argument error: nothing more will come
        s.codes.push_back(s.ind);
        if (s.ind == 0) return s;
        if (++s.requests > request_limit) {
            ADD_FAILURE() << "the search made more than " << request_limit << " requests";
            return s;
        }
        s.asked.push_back(s.x);
        fx = f(s.x);
    }
}

using kor::test::same_bits;
using kor::test::ulp;

}  // namespace roots_test
