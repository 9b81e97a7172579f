// The uniform and normal variates: one uniform stage for the whole array,
// then the transform in place.
#include <cmath>

#include "g05sa_def.hpp"
#include "g05sk_def.hpp"
#include "rng/state.hpp"
#include "specfun/inverse_normal.hpp"

namespace kor {

void g05sa::engine(frame::Record &rec, int64_t n, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    rng::uniforms(state, n, x);
}

void g05sk::engine(frame::Record &rec, int64_t n, double xmu, double var, int64_t *state, double *x) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    if (!(var >= 0.0)) return rec.raise<Exit::var_negative>(var);
    if (var == 0.0) {
        for (int64_t i = 0; i < n; ++i) x[i] = xmu;
        return;
    }
    rng::uniforms(state, n, x);
    const double sd = std::sqrt(var);
    for (int64_t i = 0; i < n; ++i) x[i] = xmu + sd * specfun::inverse_normal(x[i]);
}

}  // namespace kor
