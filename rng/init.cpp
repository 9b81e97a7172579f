// Initialisation: a generator's seeding function fills its block, and the
// common frame appends the stream words and the closing check value.
#include <chrono>
#include <cmath>
#include <ctime>
#include <random>

#include "g05kf_def.hpp"
#include "g05kg_def.hpp"
#include "rng/state.hpp"

namespace kor {

namespace {

struct Seeding {
    rng::SeedStatus status;
    int64_t needed;  // the state length the generator needs
};

Seeding seed_state(const rng::Generator &g, int64_t subid, const int64_t *seed, int64_t lseed,
                   int64_t *state, int64_t &lstate) {
    const int64_t room = lstate <= 0 ? -1 : std::max<int64_t>(lstate - rng::frame_words, 0);
    int64_t block = 0;
    const rng::SeedStatus status = g.seed(subid, seed, lseed, state, room, &block);
    const int64_t needed = block + rng::frame_words;
    if (status == rng::SeedStatus::query) lstate = needed;
    if (status == rng::SeedStatus::ok) {
        state[block] = 1;
        state[block + 1] = 1;
        state[block + 2] = state[rng::at_check];
        state[rng::at_length] = needed;
    }
    return {status, needed};
}

// Two seeds that differ from call to call: the first from the date, the
// time, the CPU time and a runtime random source, folded into 1..16909320;
// the second from the clock count and the runtime source.
void clock_seeds(int64_t seed[2]) {
    std::random_device device;
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    std::mt19937_64 runtime(device());
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    const int64_t t = ((((int64_t(parts.tm_year % 10) * 12 + parts.tm_mon + 1) * 31 + parts.tm_mday) * 24 +
                        parts.tm_hour) * 60 + parts.tm_min) * 60 + parts.tm_sec;
    const double v = uniform(runtime);
    const double cpu = double(std::clock()) / CLOCKS_PER_SEC;
    const double w = std::fmod(v * 2147483647.0 + std::fmod(std::fabs(1e6 * cpu), 2147483647.0), 2147483647.0);
    // The digits of w reversed, so that its fast-changing low digits lead.
    int64_t digits = int64_t(w), reversed = 0;
    while (digits > 0) reversed = reversed * 10 + digits % 10, digits /= 10;
    int64_t value = 4 * (reversed * 10000 + t % 10000);
    if (value < 1 || value > 16909320) value = (value < 0 ? -value : value) % 16909320 + 1;
    seed[0] = value;

    const double u = uniform(runtime);
    const int64_t count = std::chrono::steady_clock::now().time_since_epoch().count();
    seed[1] = std::max<int64_t>(1, count % ((int64_t(1) << 30) - 1) + int64_t(2147483647.0 * (0.5 * u)));
}

}  // namespace

void g05kf::engine(frame::Record &rec, int64_t genid, int64_t subid, const int64_t *seed,
                   int64_t lseed, int64_t *state, int64_t &lstate) {
    const rng::Generator *g = rng::find_generator(genid);
    if (!g) return rec.raise<Exit::genid_invalid>(genid);
    if (lstate > 0 && !state) return rec.raise<Exit::state_null>();
    const Seeding s = seed_state(*g, subid, seed, lseed, state, lstate);
    switch (s.status) {
    case rng::SeedStatus::ok: return;
    case rng::SeedStatus::query: return rec.raise<Exit::query>();
    case rng::SeedStatus::genid_mismatch: return rec.raise<Exit::genid_invalid>(genid);
    case rng::SeedStatus::invalid_seed: return rec.raise<Exit::invalid_seed>();
    case rng::SeedStatus::lseed_too_small: return rec.raise<Exit::lseed_too_small>(lseed);
    case rng::SeedStatus::lstate_too_small: return rec.raise<Exit::lstate_too_small>(lstate, s.needed);
    }
}

void g05kg::engine(frame::Record &rec, int64_t genid, int64_t subid, int64_t *state, int64_t &lstate) {
    const rng::Generator *g = rng::find_generator(genid);
    if (!g) return rec.raise<Exit::genid_invalid>(genid);
    if (lstate > 0 && !state) return rec.raise<Exit::state_null>();
    int64_t seed[2];
    clock_seeds(seed);
    const Seeding s = seed_state(*g, subid, seed, 2, state, lstate);
    switch (s.status) {
    case rng::SeedStatus::query: return rec.raise<Exit::query>();
    case rng::SeedStatus::lstate_too_small: return rec.raise<Exit::lstate_too_small>(lstate, s.needed);
    case rng::SeedStatus::genid_mismatch: return rec.raise<Exit::genid_invalid>(genid);
    default: return;  // the clock's seeds are valid by construction
    }
}

}  // namespace kor
