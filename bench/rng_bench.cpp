// Random numbers side by side with GSL, the C++ standard library and Boost
// in one process on the same sizes: uniforms per value for every base
// generator against a plain store loop (the memory-bandwidth floor), normal
// variates by inversion against GSL's ziggurat, and the Mersenne Twister's
// skip-ahead against Boost.Random's discard.
#include <benchmark/benchmark.h>
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>

#include <boost/random/mersenne_twister.hpp>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "kor.h"

namespace {

constexpr int64_t count = 10000000;

std::vector<int64_t> make_state(Kor_BaseGenerator genid) {
    KorError fail = KOR_ERROR_INIT;
    int64_t seed[6] = {1762543, 9324, 74532, 1234, 5678, 91011}, lstate = 0;
    g05kfc(genid, 1, seed, 6, nullptr, &lstate, &fail);
    std::vector<int64_t> state(size_t(lstate > 0 ? lstate : 1));
    g05kfc(genid, 1, seed, 6, state.data(), &lstate, &fail);
    return state;
}

void per_value(benchmark::State &state) {
    state.counters["ns_per_value"] = benchmark::Counter(double(state.iterations()) * double(count),
                                                        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_store_floor(benchmark::State &state) {
    std::vector<double> x(count);
    for (auto _ : state) {
        double v = 0.5;
        for (double &e : x) e = v, v += 1e-9;
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
    per_value(state);
}

void BM_g05sac(benchmark::State &state) {
    const auto genid = Kor_BaseGenerator(state.range(0));
    std::vector<int64_t> s = make_state(genid);
    std::vector<double> x(count);
    KorError fail = KOR_ERROR_INIT;
    for (auto _ : state) {
        g05sac(count, s.data(), x.data(), &fail);
        benchmark::DoNotOptimize(x.data());
    }
    if (fail.code != NE_NOERROR) state.SkipWithError(fail.message);
    per_value(state);
}

void BM_gsl_mt19937_uniform_pos(benchmark::State &state) {
    gsl_rng *r = gsl_rng_alloc(gsl_rng_mt19937);
    std::vector<double> x(count);
    for (auto _ : state) {
        for (double &e : x) e = gsl_rng_uniform_pos(r);
        benchmark::DoNotOptimize(x.data());
    }
    gsl_rng_free(r);
    per_value(state);
}

void BM_std_mt19937(benchmark::State &state) {
    std::mt19937 engine(5489u);
    std::vector<double> x(count);
    for (auto _ : state) {
        for (double &e : x) e = (double(engine()) + 0.5) * 0x1p-32;
        benchmark::DoNotOptimize(x.data());
    }
    per_value(state);
}

// MRG32k3a in the published double-precision formulation, as a plain loop.
void BM_mrg32k3a_published(benchmark::State &state) {
    const double m1 = 4294967087.0, m2 = 4294944443.0, norm = 2.328306549295727688e-10;
    double s10 = 12345, s11 = 12345, s12 = 12345, s20 = 12345, s21 = 12345, s22 = 12345;
    std::vector<double> x(count);
    for (auto _ : state) {
        for (double &e : x) {
            double p1 = 1403580.0 * s11 - 810728.0 * s10;
            p1 -= double(int64_t(p1 / m1)) * m1;
            if (p1 < 0.0) p1 += m1;
            s10 = s11, s11 = s12, s12 = p1;
            double p2 = 527612.0 * s22 - 1370589.0 * s20;
            p2 -= double(int64_t(p2 / m2)) * m2;
            if (p2 < 0.0) p2 += m2;
            s20 = s21, s21 = s22, s22 = p2;
            e = (p1 > p2 ? p1 - p2 : p1 - p2 + m1) * norm;
        }
        benchmark::DoNotOptimize(x.data());
    }
    per_value(state);
}

void BM_g05skc(benchmark::State &state) {
    std::vector<int64_t> s = make_state(Kor_MersenneTwister);
    std::vector<double> x(count);
    KorError fail = KOR_ERROR_INIT;
    for (auto _ : state) {
        g05skc(count, 0.0, 1.0, s.data(), x.data(), &fail);
        benchmark::DoNotOptimize(x.data());
    }
    per_value(state);
}

void BM_gsl_ran_gaussian_ziggurat(benchmark::State &state) {
    gsl_rng *r = gsl_rng_alloc(gsl_rng_mt19937);
    std::vector<double> x(count);
    for (auto _ : state) {
        for (double &e : x) e = gsl_ran_gaussian_ziggurat(r, 1.0);
        benchmark::DoNotOptimize(x.data());
    }
    gsl_rng_free(r);
    per_value(state);
}

void BM_g05kjc_mersenne(benchmark::State &state) {
    const std::vector<int64_t> start = make_state(Kor_MersenneTwister);
    KorError fail = KOR_ERROR_INIT;
    for (auto _ : state) {
        std::vector<int64_t> s = start;
        g05kjc(state.range(0), s.data(), &fail);
        benchmark::DoNotOptimize(s.data());
    }
    if (fail.code != NE_NOERROR) state.SkipWithError(fail.message);
}

void BM_boost_mt19937_discard(benchmark::State &state) {
    boost::random::mt19937 engine(5489u);
    for (auto _ : state) {
        boost::random::mt19937 e = engine;
        e.discard(uint64_t(state.range(0)));
        benchmark::DoNotOptimize(e());
    }
}

BENCHMARK(BM_store_floor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_g05sac)->DenseRange(Kor_Basic, Kor_MRG32k3a)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_gsl_mt19937_uniform_pos)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_std_mt19937)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_mrg32k3a_published)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_g05skc)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_gsl_ran_gaussian_ziggurat)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_g05kjc_mersenne)->Arg(1000000)->Arg(1000000000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_boost_mt19937_discard)->Arg(1000000)->Arg(1000000000000)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
