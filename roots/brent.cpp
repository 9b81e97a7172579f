#include "roots/brent.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/machine.hpp"

namespace kor::roots {

namespace {

// Slots of the communication array.
enum Slot {
    s_b, s_fb,          // the best point so far and its value
    s_c, s_fc,          // the other end of the bracket
    s_a, s_fa,          // the previous point
    s_d, s_e,           // the last step and the one before it
    s_fmax,             // the larger |f| at the two initial ends, for the pole test
    s_first,            // the first end, kept between the first two requests
    s_converged,        // 1: only the final function value is outstanding
    s_expected,         // the ind the routine returned last
    s_check,            // a check word over all slots above
};
static_assert(s_check + 1 == brent_state_length);

// A digest of the state, held as an exactly representable integer so that
// copying c as doubles keeps it intact.  The slots are folded independently
// (rotate and xor) and mixed once, so the check costs little per step.
double check_word(const double *c) {
    uint64_t h = 0x9e3779b97f4a7c15ull;
    for (int i = 0; i < s_check; ++i) {
        uint64_t bits;
        std::memcpy(&bits, &c[i], sizeof bits);
        const int turn = 5 * i + 1;
        h ^= (bits << turn) | (bits >> (64 - turn));
    }
    h = (h ^ (h >> 31)) * 0xbf58476d1ce4e5b9ull;
    return double(h >> 11);
}

BrentStatus ask(double *c, int64_t code, int64_t &ind) {
    c[s_expected] = double(code);
    c[s_check] = check_word(c);
    ind = code;
    return BrentStatus::evaluate;
}

BrentStatus finish(BrentStatus status, int64_t &ind) {
    ind = 0;
    return status;
}

// Steps 1-8 of Brent's iteration from the state in c, with f(b) known.
BrentStatus iterate(double &x, double &y, double tolx, int64_t ir, double *c, int64_t &ind) {
    double a = c[s_a], fa = c[s_fa], b = c[s_b], fb = c[s_fb];
    double cc = c[s_c], fc = c[s_fc], d = c[s_d], e = c[s_e];

    if ((fb > 0.0) == (fc > 0.0)) {
        cc = a;
        fc = fa;
        d = e = b - a;
    }
    if (std::fabs(fc) < std::fabs(fb)) {
        a = b;
        b = cc;
        cc = a;
        fa = fb;
        fb = fc;
        fc = fa;
    }
    const double relative = ir == 1 ? 0.0 : 1.0;
    const double absolute = ir == 2 ? 0.0 : 1.0;
    const double tol = tolx * std::max(relative * std::fabs(b), absolute);
    const double m = 0.5 * (cc - b);

    auto save = [&] {
        c[s_a] = a, c[s_fa] = fa, c[s_b] = b, c[s_fb] = fb;
        c[s_c] = cc, c[s_fc] = fc, c[s_d] = d, c[s_e] = e;
    };
    if (std::fabs(m) <= tol || fb == 0.0) {
        save();
        c[s_converged] = 1.0;
        x = b;
        y = cc;
        return ask(c, 4, ind);
    }
    if (std::fabs(m) <= frame::machine::precision * std::fabs(b)) {
        save();
        x = b;
        y = cc;
        return finish(BrentStatus::too_much_accuracy, ind);
    }

    if (std::fabs(e) >= tol && std::fabs(fa) > std::fabs(fb)) {
        const double s = fb / fa;
        double p, q;
        if (a == cc) {
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
    save();
    x = b;
    y = cc;
    return ask(c, 4, ind);
}

}  // namespace

double brent_first_end_value(const double *c) { return c[s_fa]; }

BrentStatus brent_step(double &x, double &y, double fx, double tolx, int64_t ir, double *c,
                       int64_t &ind) {
    const bool initial = ind == 1 || ind == -1;
    if (!initial) {
        if (ind != 2 && ind != 3 && ind != 4) return BrentStatus::ind_initial;
        if (c[s_expected] != double(ind) || c[s_check] != check_word(c))
            return BrentStatus::ind_intermediate;
    }
    if (!(tolx > 0.0)) return BrentStatus::tolx_not_positive;
    if (ir < 0 || ir > 2) return BrentStatus::ir_invalid;
    if (initial && !(std::isfinite(x) && std::isfinite(y))) return BrentStatus::ends_not_finite;

    switch (ind) {
    case 1:
        std::fill(c, c + brent_state_length, 0.0);
        return ask(c, 2, ind);
    case -1:
        std::fill(c, c + brent_state_length, 0.0);
        [[fallthrough]];
    case 2: {
        // Keep the first end with its value; ask for the second.
        c[s_first] = x;
        c[s_fa] = fx;
        std::swap(x, y);
        return ask(c, 3, ind);
    }
    case 3: {
        const double first = c[s_first], f_first = c[s_fa];
        if (fx == 0.0) {
            y = first;
            return finish(BrentStatus::finished, ind);
        }
        if (f_first == 0.0) {
            y = x;
            x = first;
            return finish(BrentStatus::finished, ind);
        }
        if (!brackets_zero(fx, f_first)) return finish(BrentStatus::no_sign_change, ind);
        c[s_fmax] = std::max(std::fabs(fx), std::fabs(f_first));
        c[s_a] = first;
        c[s_b] = x;
        c[s_fb] = fx;
        // c starts on b's side, so the first step takes the first end as c.
        c[s_c] = x;
        c[s_fc] = fx;
        c[s_converged] = 0.0;
        return iterate(x, y, tolx, ir, c, ind);
    }
    default: {  // 4
        if (c[s_converged] != 0.0) {
            x = c[s_b];
            y = c[s_c];
            // A value that is not at most the larger end value -- NaN
            // included -- is no zero of a continuous function.
            const bool pole = fx != 0.0 && !(std::fabs(fx) <= c[s_fmax]);
            return finish(pole ? BrentStatus::probable_pole : BrentStatus::finished, ind);
        }
        c[s_fb] = fx;
        return iterate(x, y, tolx, ir, c, ind);
    }
    }
}

}  // namespace kor::roots
