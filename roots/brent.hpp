// Brent's method for a zero of f in a bracketing interval, as a state
// machine that asks for one function value at a time.  The reverse-
// communication routine keeps the state in the caller's array c between
// requests; the direct routine keeps it in a local and answers each request
// at once, so both make the same evaluations.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "frame/machine.hpp"

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

// The search between two requests.
struct Brent {
    double b = 0, fb = 0;       // the best point so far and its value
    double c = 0, fc = 0;       // the other end of the bracket
    double a = 0, fa = 0;       // the previous point
    double d = 0, e = 0;        // the last step and the one before it
    double fmax = 0;            // the larger |f| at the two initial ends, for the pole test
    double first = 0;           // the first end, kept between the first two requests
    bool converged = false;     // only the final function value is outstanding

    // Answers request ind (1 or -1 to start, with fx = f(x) for -1; then the
    // code last returned, with fx = f(x)); sets ind to the next request, or
    // 0 when the search has ended.  ir: 0 mixed, 1 absolute, 2 relative
    // error test.  The arguments are assumed checked.
    BrentStatus advance(double &x, double &y, double fx, double tolx, int64_t ir, int64_t &ind) {
        switch (ind) {
        case 1:
            *this = Brent{};
            return ask(2, ind);
        case -1:
            *this = Brent{};
            [[fallthrough]];
        case 2:
            // Keep the first end with its value; ask for the second.
            first = x;
            fa = fx;
            std::swap(x, y);
            return ask(3, ind);
        case 3:
            if (fx == 0.0) {
                y = first;
                return finish(BrentStatus::finished, ind);
            }
            if (fa == 0.0) {
                y = x;
                x = first;
                return finish(BrentStatus::finished, ind);
            }
            if (!brackets_zero(fx, fa)) return finish(BrentStatus::no_sign_change, ind);
            fmax = std::max(std::fabs(fx), std::fabs(fa));
            a = first;
            b = x;
            fb = fx;
            // c starts on b's side, so the first step takes the first end as c.
            c = x;
            fc = fx;
            converged = false;
            return iterate(x, y, tolx, ir, ind);
        default:  // 4
            if (converged) {
                x = b;
                y = c;
                // A value that is not at most the larger end value -- NaN
                // included -- is no zero of a continuous function.
                const bool pole = fx != 0.0 && !(std::fabs(fx) <= fmax);
                return finish(pole ? BrentStatus::probable_pole : BrentStatus::finished, ind);
            }
            fb = fx;
            return iterate(x, y, tolx, ir, ind);
        }
    }

private:
    static BrentStatus ask(int64_t code, int64_t &ind) {
        ind = code;
        return BrentStatus::evaluate;
    }
    static BrentStatus finish(BrentStatus status, int64_t &ind) {
        ind = 0;
        return status;
    }

    // Steps 1-8 of Brent's iteration, with f(b) known.
    BrentStatus iterate(double &x, double &y, double tolx, int64_t ir, int64_t &ind) {
        if ((fb > 0.0) == (fc > 0.0)) {
            c = a;
            fc = fa;
            d = e = b - a;
        }
        if (std::fabs(fc) < std::fabs(fb)) {
            a = b;
            b = c;
            c = a;
            fa = fb;
            fb = fc;
            fc = fa;
        }
        const double relative = ir == 1 ? 0.0 : 1.0;
        const double absolute = ir == 2 ? 0.0 : 1.0;
        const double tol = tolx * std::max(relative * std::fabs(b), absolute);
        const double m = 0.5 * (c - b);
        x = b;
        y = c;
        if (std::fabs(m) <= tol || fb == 0.0) {
            converged = true;
            return ask(4, ind);
        }
        if (std::fabs(m) <= frame::machine::precision * std::fabs(b))
            return finish(BrentStatus::too_much_accuracy, ind);

        if (std::fabs(e) >= tol && std::fabs(fa) > std::fabs(fb)) {
            const double s = fb / fa;
            double p, q;
            if (a == c) {
                p = 2.0 * m * s;
                q = 1.0 - s;
            } else {
                const double q1 = fa / fc, r = fb / fc;
                p = s * (2.0 * m * q1 * (q1 - r) - (b - a) * (r - 1.0));
                q = (q1 - 1.0) * (r - 1.0) * (s - 1.0);
            }
            if (p > 0.0)
                q = -q;
            else
                p = -p;
            if (2.0 * p < 3.0 * m * q - std::fabs(tol * q) && p < std::fabs(0.5 * e * q)) {
                e = d;
                d = p / q;
            } else {
                d = e = m;
            }
        } else {
            d = e = m;
        }
        a = b;
        fa = fb;
        // A NaN tolerance must not poison the iterate: then the step is always d.
        if (std::fabs(d) <= tol)
            b += m > 0.0 ? tol : -tol;
        else
            b += d;
        x = b;
        return ask(4, ind);
    }
};

// One entry of the reverse-communication search, the state in c: checks
// ind, c and the arguments, then advances (see Brent::advance).
BrentStatus brent_step(double &x, double &y, double fx, double tolx, int64_t ir, double *c,
                       int64_t &ind);

// f at the first end, for reporting a missing sign change.
double brent_first_end_value(const double *c);

}  // namespace kor::roots
