#include "rng/state.hpp"

namespace kor::rng {

#define KOR_GENERATOR(record) extern const Generator record;
#include "rng/generators.def"
#undef KOR_GENERATOR

namespace {
const Generator *const registry[] = {
#define KOR_GENERATOR(record) &record,
#include "rng/generators.def"
#undef KOR_GENERATOR
};
}  // namespace

const Generator *find_generator(int64_t genid) {
    for (const Generator *g : registry)
        if (g->genid == genid) return g;
    return nullptr;
}

int check_state(const int64_t *state) {
    if (!state) return 1;
    // The first word is read alone first: a short array announces itself
    // there, before any word beyond it is touched.
    const int64_t length = state[at_length];
    if (length < at_words + frame_words + 1) return 2;
    const Generator *g = find_generator(state[at_genid]);
    if (!g) return 1;
    // The length must be one this generator uses before any word beyond the
    // header is trusted.
    if (!g->length_ok(state, length)) return 2;
    if (state[at_check] != g->check || state[length - 1] != state[at_check] ||
        state[length - 4] != state[at_check])
        return 1;
    if (state[length - 3] < 1 || state[length - 2] < 1) return 1;
    return 0;
}

void uniforms(int64_t *state, int64_t n, double *x) {
    if (n > 0) find_generator(state[at_genid])->uniforms(state, n, x);
}

}  // namespace kor::rng
