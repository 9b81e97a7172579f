// Γ(x): Γ(1 + t) by a polynomial on [0, 1), the argument brought there by
// the recurrence Γ(x + 1) = xΓ(x).
#pragma once
#include <cmath>

#include "frame/machine.hpp"
#include "s14aa_def.hpp"

namespace kor {

namespace gamma_detail {

// Γ(1 + t) as a polynomial in u = 2t - 1, for 13 to 15 decimal digits, from
// the highest power (u^21) down to the constant term Γ(3/2).  The u^21
// coefficient is negative: printed positive it makes Γ wrong by 2.5e-10
// near every integer.
inline constexpr double gamma_poly_15[22] = {
    -1.2431917056e-10,   3.6228825088e-10,    -4.0309096448e-10,  1.26523670528e-09,
    -5.41946609664e-09,  1.61313357824e-08,   -4.62092034048e-08, 1.3876034404352e-07,
    -4.1796527845376e-07, 1.25314824777728e-06, -3.75493050232832e-06, 1.125234962812416e-05,
    -3.363759801664768e-05, 0.0001009281733953869, -0.0002968901194293069, 0.0009157859942174304,
    -0.00242259538454634, 0.009040334940477911, -0.01341185057058971, 0.1037033634220705,
    0.01616919872444243, 0.886226925452758};

// The polynomial is chosen by the machine's decimal digits; only the set for
// 13-15 digits is carried, as this library computes in IEEE double.
static_assert(frame::machine::decimal_digits >= 13 && frame::machine::decimal_digits <= 15,
              "Γ's polynomial set does not match the arithmetic");

inline constexpr double limit = 170.0;
inline constexpr double value_at_limit = 4.3e+304;
inline constexpr double reciprocal_cutoff = 1e-17;
inline constexpr double smallest = 2.23e-308;
inline constexpr double value_near_zero = 4.4843049327354256e+307;  // 1 / 2.23e-308

}  // namespace gamma_detail

inline double s14aa::engine(frame::Record &rec, double x) {
    using namespace gamma_detail;
    if (std::isnan(x)) return x;
    if (!(std::fabs(x) <= limit)) {
        if (x > 0.0) {
            rec.raise<Exit::too_large>(x, limit);
            return value_at_limit;
        }
        rec.raise<Exit::too_large_negative>(x, -limit);
        return 0.0;
    }
    if (std::fabs(x) <= reciprocal_cutoff) {
        if (std::fabs(x) < smallest) {
            rec.raise<Exit::too_close_to_zero>(x, smallest);
            return x < 0.0 ? -value_near_zero : value_near_zero;
        }
        return 1.0 / x;
    }
    // A negative integer is recognised exactly: the shifted test
    // x - (trunc(x) - 1) = 1 also fires for tiny negative x, where x + 1
    // rounds to 1.
    const double n = std::trunc(x);
    if (x < 0.0 && x == n) {
        rec.raise<Exit::negative_integer>(x);
        return value_at_limit;
    }

    double t, scale;
    if (x < 0.0) {
        // 1 / (x (x + 1) ... (x + (1 - n))), the 2 - n factors from the left.
        t = x - (n - 1.0);
        double product = x;
        for (double k = 1.0; k <= 1.0 - n; k += 1.0) product *= x + k;
        scale = 1.0 / product;
    } else if (n == 0.0) {
        t = x;
        scale = 1.0 / x;
    } else if (n == 1.0) {
        t = x - 1.0;
        scale = 1.0;
    } else {
        // (x - 1)(x - 2) ... (x - (n - 1)), from the left.
        t = x - n;
        scale = x - 1.0;
        for (double k = 2.0; k <= n - 1.0; k += 1.0) scale *= x - k;
    }
    const double u = 2.0 * t - 1.0;
    double poly = gamma_poly_15[0];
    for (int i = 1; i < 22; ++i) poly = poly * u + gamma_poly_15[i];
    return scale * poly;
}

}  // namespace kor
