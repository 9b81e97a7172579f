// Machine characteristics of IEEE binary64 arithmetic.  The x02 routines
// report these values and engines use them, so both read them from here.
#pragma once

#include <cstdint>
#include <limits>

namespace kor::frame::machine {

inline constexpr double precision = 0x1p-53;               // unit roundoff
inline constexpr double smallest_normal = 0x1p-1022;
inline constexpr double above_smallest_normal = 0x1.0000000000001p-1022;
inline constexpr double largest = std::numeric_limits<double>::max();
inline constexpr double large_constant = 0x1p150;
inline constexpr int64_t largest_integer = std::numeric_limits<int64_t>::max();
inline constexpr int64_t base = 2;
inline constexpr int64_t digits = 53;
inline constexpr int64_t min_exponent = -1021;
inline constexpr int64_t max_exponent = 1024;
inline constexpr int64_t decimal_digits = 15;

namespace single {
inline constexpr double smallest_normal = 0x1p-126;
inline constexpr int64_t digits = 24;
inline constexpr int64_t min_exponent = -125;
inline constexpr int64_t max_exponent = 128;
inline constexpr int64_t decimal_digits = 16;
}  // namespace single

}  // namespace kor::frame::machine
