// Stream partitioning: the state check, the argument checks, and the
// generator's own leap-frog or skip.
#include "g05kh_def.hpp"
#include "g05kj_def.hpp"
#include "g05kk_def.hpp"
#include "rng/state.hpp"

namespace kor {

void g05kh::engine(frame::Record &rec, int64_t n, int64_t k, int64_t *state) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 1) return rec.raise<Exit::n_invalid>(n);
    if (k < 1 || k > n) return rec.raise<Exit::k_invalid>(k, n);
    const rng::Generator *g = rng::find_generator(state[rng::at_genid]);
    if (g->leapfrog(state, n, k) != rng::PartitionStatus::ok) return rec.raise<Exit::unsupported>();
}

void g05kj::engine(frame::Record &rec, int64_t n, int64_t *state) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    const rng::Generator *g = rng::find_generator(state[rng::at_genid]);
    if (g->skip(state, n) != rng::PartitionStatus::ok) return rec.raise<Exit::state_too_small>();
}

void g05kk::engine(frame::Record &rec, int64_t n, int64_t *state) {
    if (rng::check_state(state) != 0) return rec.raise<Exit::state_corrupt>();
    if (n < 0) return rec.raise<Exit::n_invalid>(n);
    const rng::Generator *g = rng::find_generator(state[rng::at_genid]);
    if (g->skip_power_of_two(state, n) != rng::PartitionStatus::ok)
        return rec.raise<Exit::state_too_small>();
}

}  // namespace kor
