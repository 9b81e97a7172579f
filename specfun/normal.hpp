// The error functions and the normal distribution: thin compositions of
// the C library's erf and erfc and the shared inverse normal.
#pragma once
#include <cmath>

#include "g01ea_def.hpp"
#include "g01fa_def.hpp"
#include "s15ab_def.hpp"
#include "s15ac_def.hpp"
#include "s15ad_def.hpp"
#include "s15ae_def.hpp"
#include "specfun/inverse_normal.hpp"

namespace kor {

namespace normal_detail {

// s15ab/s15ac divide by the rounded √2 and g01ea multiplies by the rounded
// 1/√2: the two may differ in the last bit, and each keeps its own formula.
inline constexpr double sqrt2 = 1.4142135623730951;
inline constexpr double rsqrt2 = 0.7071067811865475;

// The tail letter in upper case, or 0 when it is none of L, U, S, C.
inline char tail_letter(char tail) {
    switch (tail) {
    case 'L': case 'l': return 'L';
    case 'U': case 'u': return 'U';
    case 'S': case 's': return 'S';
    case 'C': case 'c': return 'C';
    default: return 0;
    }
}

inline std::string_view shown(const char &letter) { return std::string_view(&letter, 1); }

}  // namespace normal_detail

inline double s15ab::engine(frame::Record &, double x) { return 0.5 * std::erfc(-(x / normal_detail::sqrt2)); }
inline double s15ac::engine(frame::Record &, double x) { return 0.5 * std::erfc(x / normal_detail::sqrt2); }
inline double s15ad::engine(frame::Record &, double x) { return std::erfc(x); }
inline double s15ae::engine(frame::Record &, double x) { return std::erf(x); }

inline double g01ea::engine(frame::Record &rec, char tail, double x) {
    using namespace normal_detail;
    switch (tail_letter(tail)) {
    case 'L': return 0.5 * std::erfc(-x * rsqrt2);
    case 'U': return 0.5 * std::erfc(x * rsqrt2);
    case 'C': return std::erf(std::fabs(x) * rsqrt2);
    case 'S': return std::erfc(std::fabs(x) * rsqrt2);
    default:
        rec.raise<Exit::tail_invalid>(shown(tail));
        return 0.0;
    }
}

inline double g01fa::engine(frame::Record &rec, char tail, double p) {
    using namespace normal_detail;
    const char letter = tail_letter(tail);
    if (!letter) {
        rec.raise<Exit::tail_invalid>(shown(tail));
        return 0.0;
    }
    if (std::isnan(p)) return p;  // propagated, as the C library does
    if (!(p > 0.0)) {
        rec.raise<Exit::p_not_positive>(p);
        return 0.0;
    }
    if (!(p < 1.0)) {
        rec.raise<Exit::p_not_below_one>(p);
        return 0.0;
    }
    switch (letter) {
    case 'L': return specfun::inverse_normal(p);
    case 'U': return -specfun::inverse_normal(p);
    // z(0.5p + 0.5), with q = 0.5p and 1 - (0.5p + 0.5) = 0.5(1 - p) kept
    // exact instead of rounding 0.5p + 0.5 (which loses p's low bits, and
    // reaches 1.0 at p = 1 - 2^-53).
    case 'C': return specfun::inverse_normal(0.5 * p, 0.5 * (1.0 - p));
    default: return -specfun::inverse_normal(0.5 * p);
    }
}

}  // namespace kor
