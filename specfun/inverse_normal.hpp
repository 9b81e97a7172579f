// The inverse of the standard normal distribution by Wichura's algorithm
// AS 241 (PPND16), relative accuracy about 1e-16.  One implementation serves
// the normal deviates and the normal variate generator.
#pragma once

#include <algorithm>
#include <cmath>

#include "tables/inverse_normal_as241.hpp"

namespace kor::specfun {

namespace detail {

// c[0] + c[1] r + ... + c[7] r^7 by Horner's rule.
inline double numerator(const double (&c)[8], double r) {
    double s = c[7];
    for (int i = 6; i >= 0; --i) s = s * r + c[i];
    return s;
}

// 1 + d[0] r + ... + d[6] r^7 (the published d1..d7; d0 = 1).
inline double denominator(const double (&d)[7], double r) {
    double s = d[6];
    for (int i = 5; i >= 0; --i) s = s * r + d[i];
    return s * r + 1.0;
}

}  // namespace detail

// z with Φ(z) = 0.5 + q, from q and r = min(0.5 + q, 0.5 - q) given
// separately, so that callers who know them exactly lose nothing to
// forming 0.5 + q.
inline double inverse_normal(double q, double r) {
    namespace t = data::inverse_normal_as241;
    if (std::fabs(q) <= t::SPLIT1) {
        const double s = t::CONST1 - q * q;
        return q * detail::numerator(t::a, s) / detail::denominator(t::b, s);
    }
    // A uniform of exactly 0 or 1 (which some generators can return) still
    // gives a finite deviate.
    if (r <= 0.0) r = 0x1p-1022;
    r = std::sqrt(-std::log(r));
    double z;
    if (r <= t::SPLIT2) {
        r -= t::CONST2;
        z = detail::numerator(t::c, r) / detail::denominator(t::d, r);
    } else {
        r -= t::SPLIT2;
        z = detail::numerator(t::e, r) / detail::denominator(t::f, r);
    }
    return q < 0.0 ? -z : z;
}

// z with Φ(z) = p, for 0 < p < 1; p = 0 and p = 1 are taken as the smallest
// normalised double away from the end.
inline double inverse_normal(double p) { return inverse_normal(p - 0.5, std::min(p, 1.0 - p)); }

}  // namespace kor::specfun
