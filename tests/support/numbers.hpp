// Comparisons of doubles the numerical tests share.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

namespace kor::test {

// Same value and same sign of zero; two NaNs count as the same.
inline bool same_bits(double a, double b) {
    if (std::isnan(a) && std::isnan(b)) return true;
    uint64_t x, y;
    std::memcpy(&x, &a, sizeof x);
    std::memcpy(&y, &b, sizeof y);
    return x == y;
}

// The spacing of doubles just above |x|.
inline double ulp(double x) { return std::nextafter(std::fabs(x), INFINITY) - std::fabs(x); }

}  // namespace kor::test
