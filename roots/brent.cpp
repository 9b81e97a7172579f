#include "roots/brent.hpp"

#include <cstring>

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

Brent load(const double *c) {
    Brent s;
    s.b = c[s_b], s.fb = c[s_fb], s.c = c[s_c], s.fc = c[s_fc], s.a = c[s_a], s.fa = c[s_fa];
    s.d = c[s_d], s.e = c[s_e], s.fmax = c[s_fmax], s.first = c[s_first];
    s.converged = c[s_converged] != 0.0;
    return s;
}

void store(const Brent &s, double *c) {
    c[s_b] = s.b, c[s_fb] = s.fb, c[s_c] = s.c, c[s_fc] = s.fc, c[s_a] = s.a, c[s_fa] = s.fa;
    c[s_d] = s.d, c[s_e] = s.e, c[s_fmax] = s.fmax, c[s_first] = s.first;
    c[s_converged] = s.converged ? 1.0 : 0.0;
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

    Brent s = initial ? Brent{} : load(c);
    const BrentStatus status = s.advance(x, y, fx, tolx, ir, ind);
    // Only a request seals the state for the next entry; a search that has
    // ended leaves its last state unsealed, so no entry can continue it.
    if (status == BrentStatus::evaluate || status == BrentStatus::too_much_accuracy) store(s, c);
    if (status == BrentStatus::evaluate) {
        c[s_expected] = double(ind);
        c[s_check] = check_word(c);
    }
    return status;
}

}  // namespace kor::roots
