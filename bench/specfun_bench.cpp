// Special functions side by side with glibc and GSL on the same 10^6
// arguments: ns per call of the C interfaces (with a KorError record, as
// callers use them) against lgamma, tgamma, gsl_sf_lngamma and
// gsl_cdf_ugaussian_Pinv; and what the interface frame adds to a call, the
// C interface against its own engine on the same arguments.
#include <benchmark/benchmark.h>
#include <gsl/gsl_cdf.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_sf_gamma.h>

#include <cmath>
#include <random>
#include <vector>

#include "cpu_time.hpp"
#include "frame/interface.hpp"
#include "kor.h"
#include "specfun/log_gamma.hpp"
#include "specfun/normal.hpp"

namespace {

constexpr size_t count = 1000000;

std::vector<double> arguments(double lo, double hi) {
    std::mt19937_64 engine(12345);
    std::uniform_real_distribution<double> uniform(lo, hi);
    std::vector<double> xs(count);
    for (double &x : xs) {
        do x = uniform(engine);
        while (x <= lo);
    }
    return xs;
}

const std::vector<double> &lgamma_args() { static auto xs = arguments(0.0, 100.0); return xs; }
const std::vector<double> &gamma_args() { static auto xs = arguments(0.0, 170.0); return xs; }
const std::vector<double> &probabilities() { static auto xs = arguments(0.0, 1.0); return xs; }

template <class F>
void run(benchmark::State &state, const std::vector<double> &xs, F f) {
    double sum = 0.0;
    for (auto _ : state)
        for (double x : xs) sum += f(x);
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(xs.size()));
    state.counters["ns_per_call"] = benchmark::Counter(
        double(state.iterations()) * double(xs.size()),
        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

KorError fail = KOR_ERROR_INIT;

void BM_s14abc(benchmark::State &s) { run(s, lgamma_args(), [](double x) { return s14abc(x, &fail); }); }
void BM_glibc_lgamma(benchmark::State &s) { run(s, lgamma_args(), [](double x) { return std::lgamma(x); }); }
void BM_gsl_sf_lngamma(benchmark::State &s) { run(s, lgamma_args(), [](double x) { return gsl_sf_lngamma(x); }); }
void BM_s14aac(benchmark::State &s) { run(s, gamma_args(), [](double x) { return s14aac(x, &fail); }); }
void BM_glibc_tgamma(benchmark::State &s) { run(s, gamma_args(), [](double x) { return std::tgamma(x); }); }
void BM_g01fac(benchmark::State &s) { run(s, probabilities(), [](double p) { return g01fac(Kor_TailLower, p, &fail); }); }
void BM_gsl_cdf_ugaussian_Pinv(benchmark::State &s) { run(s, probabilities(), [](double p) { return gsl_cdf_ugaussian_Pinv(p); }); }

double cpu_ns() { return 1e9 * kor::bench::cpu_seconds(); }

// Two codes on the same arguments, timed in alternating rounds of CPU time
// so that both see the same machine: ns per call of each, their ratio and
// their difference.
template <class First, class Second>
void compare(benchmark::State &state, const std::vector<double> &xs, const char *first_name,
             First first, const char *second_name, Second second) {
    double first_ns = 0, second_ns = 0, sum = 0;
    for (auto _ : state) {
        const double t0 = cpu_ns();
        for (double x : xs) sum += first(x);
        const double t1 = cpu_ns();
        for (double x : xs) sum += second(x);
        const double t2 = cpu_ns();
        first_ns += t1 - t0;
        second_ns += t2 - t1;
    }
    benchmark::DoNotOptimize(sum);
    const double calls = double(state.iterations()) * double(xs.size());
    state.counters[first_name] = first_ns / calls;
    state.counters[second_name] = second_ns / calls;
    state.counters["ratio"] = first_ns / second_ns;
    state.counters["difference_ns"] = (first_ns - second_ns) / calls;
}

// The engine alone, as the engine layer calls it.
template <class Engine>
double through_engine(Engine engine, double x) {
    CallbackContext ctx;
    y90haan_(&ctx);
    char text[kor::frame::record_length];
    int64_t outcome = 1;
    kor::frame::Record rec(kor::s15ad::info, &ctx, text, kor::frame::record_length, &outcome);
    return engine(rec, x);
}

// What the frame adds to a successful call with a KorError: the C
// interface against its engine (difference_ns).
void BM_FrameCost_s15adc(benchmark::State &s) {
    compare(s, lgamma_args(), "interface_ns", [](double x) { return s15adc(x, &fail); },
            "engine_ns", [](double x) { return through_engine(kor::s15ad::engine, x); });
}
void BM_FrameCost_s14abc(benchmark::State &s) {
    compare(s, lgamma_args(), "interface_ns", [](double x) { return s14abc(x, &fail); },
            "engine_ns", [](double x) { return through_engine(kor::s14ab::engine, x); });
}
// The routines against their peers (ratio).
void BM_Ratio_s14abc_lgamma(benchmark::State &s) {
    compare(s, lgamma_args(), "kor_ns", [](double x) { return s14abc(x, &fail); }, "glibc_ns",
            [](double x) { return std::lgamma(x); });
}
void BM_Ratio_g01fac_gsl(benchmark::State &s) {
    compare(s, probabilities(), "kor_ns", [](double p) { return g01fac(Kor_TailLower, p, &fail); },
            "gsl_ns", [](double p) { return gsl_cdf_ugaussian_Pinv(p); });
}
BENCHMARK(BM_FrameCost_s15adc)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FrameCost_s14abc)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ratio_s14abc_lgamma)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ratio_g01fac_gsl)->Unit(benchmark::kMillisecond);

BENCHMARK(BM_s14abc)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_glibc_lgamma)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_gsl_sf_lngamma)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_s14aac)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_glibc_tgamma)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_g01fac)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_gsl_cdf_ugaussian_Pinv)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char **argv) {
    gsl_set_error_handler_off();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
