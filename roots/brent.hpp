// Brent's method for a zero of f in a bracketing interval, driven by reverse
// communication: all state lives in the caller's array c, so the search can
// be suspended after every request for a function value.
#pragma once

#include <cstdint>

namespace kor::roots {

// What a step asks of its caller, or why the search ended.
enum class BrentStatus {
    evaluate,           // evaluate f at x and call again with the same ind
    finished,           // x is the zero (ind = 0)
    no_sign_change,     // f(x) and f(y) have the same sign, neither 0.0
    ind_initial,        // ind is not a code of any entry
    ind_intermediate,   // ind is not what the routine asked for, or c changed
    tolx_not_positive,
    ir_invalid,
    ends_not_finite,
    probable_pole,      // finished, but |f(x)| grew beyond the end values
    too_much_accuracy,  // finished at rounding level before the tolerance test held
};

// The length of c that the search needs (the public constant may be larger).
inline constexpr int brent_state_length = 13;

// f(x) and f(y) enclose a zero: one is 0.0, or they lie on opposite sides of
// it.  A NaN establishes nothing.
inline bool brackets_zero(double fx, double fy) {
    return fx == 0.0 || fy == 0.0 || (fx < 0.0 && fy > 0.0) || (fx > 0.0 && fy < 0.0);
}

// One entry of the reverse-communication search.  ind: 1 or -1 on the first
// entry (with -1, fx = f(x) already), then the code returned (2, 3 or 4)
// with fx = f(x); 0 on return once the search has ended.  ir: 0 mixed,
// 1 absolute, 2 relative error test.
BrentStatus brent_step(double &x, double &y, double fx, double tolx, int64_t ir, double *c,
                       int64_t &ind);

// f at the first end, for reporting a missing sign change.
double brent_first_end_value(const double *c);

}  // namespace kor::roots
