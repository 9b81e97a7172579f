// ln Γ(x) by Cody and Stoltz's rational Chebyshev approximations.
#pragma once
#include <cmath>

#include "frame/machine.hpp"
#include "s14ab_def.hpp"
#include "tables/lgamma_cody.hpp"

namespace kor {

namespace log_gamma_detail {

namespace cody = data::lgamma_cody;

// Below this ln Γ(x) = -ln x to working precision.
inline constexpr double tiny = frame::machine::precision;
// Beyond this the correction series no longer changes the result.  The
// value is held one unit in the second digit below the published 2.25e76,
// and kept so that results stay as they have always been.
inline constexpr double series_limit = 2.24e76;

// P(u)/Q(u) of one of the published pairs, both by Horner's rule over the
// eight coefficients; the denominator's recurrence starts at `den0`.
inline double ratio(const double (&p)[8], const double (&q)[8], double u, double den0) {
    double num = 0.0, den = den0;
    for (int i = 0; i < 8; ++i) {
        num = num * u + p[i];
        den = den * u + q[i];
    }
    return num / den;
}

}  // namespace log_gamma_detail

inline double s14ab::engine(frame::Record &rec, double x) {
    using namespace log_gamma_detail;
    constexpr double x_big = cody::XBIG;
    if (std::isnan(x)) return x;  // propagated, as the C library does
    if (!(x <= x_big)) {
        rec.raise<Exit::too_large>(x, x_big);
        return frame::machine::largest;
    }
    if (!(x > 0.0)) {
        rec.raise<Exit::not_positive>(x);
        return x == 0.0 ? frame::machine::largest : 0.0;
    }
    if (x <= tiny) return -std::log(x);
    if (x <= 1.5) {
        double corr, y;
        if (x < cody::PNT68) {
            corr = -std::log(x);
            y = x;
        } else {
            corr = 0.0;
            y = (x - 0.5) - 0.5;
        }
        if (x <= 0.5 || x >= cody::PNT68) return corr + y * (cody::D1 + y * ratio(cody::P1, cody::Q1, y, 1.0));
        const double y2 = (x - 0.5) - 0.5;
        return corr + y2 * (cody::D2 + y2 * ratio(cody::P2, cody::Q2, y2, 1.0));
    }
    if (x <= 4.0) {
        const double y = x - 2.0;
        return y * (cody::D2 + y * ratio(cody::P2, cody::Q2, y, 1.0));
    }
    if (x <= 12.0) {
        const double y = x - 4.0;
        return cody::D4 + y * ratio(cody::P4, cody::Q4, y, -1.0);
    }
    double s = 0.0;
    if (x <= series_limit) {
        const double x2 = x * x;
        s = cody::C[6];
        for (int i = 0; i < 6; ++i) s = s / x2 + cody::C[i];
    }
    s /= x;
    const double lnx = std::log(x);
    return s + cody::SQRTPI - 0.5 * lnx + x * (lnx - 1.0);
}

}  // namespace kor
