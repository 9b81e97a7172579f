// c05ay's engine, defined inline: the routine's interfaces fold it in, with
// the chain of adapters to the user function, so that a solve costs little
// more than its evaluations.
#pragma once

#include <cmath>

#include "c05ay_def.hpp"
#include "roots/brent.hpp"

namespace kor::c05ay {

// Drives Brent's search with the absolute error test, answering each
// request with a call of f: the evaluations c05az would ask for.
inline void engine(frame::Record &rec, double a, double b, double eps, double eta,
            frame::UserFunction<frame::RealOfReal> &f, double &x) {
    if (!(eps > 0.0)) return rec.raise<Exit::eps_not_positive>(eps);
    if (a == b) return rec.raise<Exit::empty_interval>(a, b);
    if (!(std::isfinite(a) && std::isfinite(b))) return rec.raise<Exit::ends_not_finite>(a, b);
    const double fa = f(a), fb = f(b);
    if (!roots::brackets_zero(fa, fb)) return rec.raise<Exit::no_sign_change>(fa, fb);

    // The reverse-communication search's requests, answered at once: its
    // state stays in a local instead of the caller's array.
    roots::Brent search;
    double y = b, fx = fa;
    int64_t ind = -1;
    x = a;
    for (;;) {
        switch (search.advance(x, y, fx, eps, 1, ind)) {
        case roots::BrentStatus::evaluate:
            fx = f(x);
            if (std::fabs(fx) < eta || fx == 0.0) return;
            break;
        case roots::BrentStatus::probable_pole:
            return rec.raise<Exit::probable_pole>();
        case roots::BrentStatus::too_much_accuracy:
            return rec.raise<Exit::eps_too_small>(eps);
        default:  // finished: the arguments were checked above
            return;
        }
    }
}

}  // namespace kor::c05ay
