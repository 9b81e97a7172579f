// Adaptive quadrature: d01rjc with a vectorised integrand against GSL's
// gsl_integration_qags (the same QUADPACK method, one value per call) on
// cheap integrands at epsrel = 1e-10.  Both make the same evaluations on
// these problems (checked below), so the times compare the per-value call
// overhead and the per-subinterval bookkeeping.  The Ratio benchmarks time
// both on the same problem in alternating rounds (CPU time) and report
// d01rjc's time over GSL's.
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_integration.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "cpu_time.hpp"
#include "kor.h"

namespace {

struct Problem {
    const char *name;
    double (*f)(double);
    double a, b;
};

double polynomial(double x) { return ((0.5 * x - 1.0) * x + 3.0) * x * x + 1.0; }
double exponential(double x) { return std::exp(x); }
double xlog(double x) { return std::log(x) / std::sqrt(x); }
double oscillating(double x) { return std::cos(100.0 * x); }

const Problem problems[] = {{"polynomial", polynomial, 0.0, 1.0},
                            {"exp", exponential, 0.0, 1.0},
                            {"x^-0.5*log(x)", xlog, 0.0, 1.0},
                            {"cos(100x)", oscillating, 0.0, 1.0}};

constexpr double epsrel = 1e-10;
// Both at most 50 subintervals.  d01rjc writes all of rinfo and iinfo on
// every call (4·maxsub + maxsub words), so its cost grows with maxsub.
constexpr int64_t limit = 50;

struct Counted {
    const Problem *p;
    long values = 0;
};

void vectorised(const double x[], int64_t nx, double fv[], int64_t *, Kor_Comm *comm) {
    auto *c = static_cast<Counted *>(comm->data);
    c->values += nx;
    const auto f = c->p->f;
    for (int64_t i = 0; i < nx; ++i) fv[i] = f(x[i]);
}

double scalar(double x, void *data) {
    auto *c = static_cast<Counted *>(data);
    ++c->values;
    return c->p->f(x);
}

struct Kor {
    std::vector<double> rinfo = std::vector<double>(4 * limit);
    std::vector<int64_t> iinfo = std::vector<int64_t>(limit);
    double result = 0, abserr = 0;
    long run(Counted &c) {
        Kor_Comm comm{&c, nullptr, nullptr};
        KorError fail = KOR_ERROR_INIT;
        d01rjc(vectorised, c.p->a, c.p->b, 0.0, epsrel, limit, &result, &abserr, rinfo.data(),
               iinfo.data(), &comm, &fail);
        if (fail.code != NE_NOERROR) std::abort();
        return c.values;
    }
};

struct Gsl {
    gsl_integration_workspace *w = gsl_integration_workspace_alloc(limit);
    double result = 0, abserr = 0;
    Gsl() { gsl_set_error_handler_off(); }
    ~Gsl() { gsl_integration_workspace_free(w); }
    long run(Counted &c) {
        gsl_function F{scalar, &c};
        if (gsl_integration_qags(&F, c.p->a, c.p->b, 0.0, epsrel, limit, w, &result, &abserr) != 0)
            std::abort();
        return c.values;
    }
};

// One integrator (Kor or Gsl) alone on the problem the state names.
template <class Integrator>
void time_alone(benchmark::State &state) {
    const Problem &p = problems[state.range(0)];
    state.SetLabel(p.name);
    Integrator integrator;
    Counted c{&p};
    for (auto _ : state) {
        integrator.run(c);
        benchmark::DoNotOptimize(integrator.result);
    }
    state.counters["values"] = double(c.values) / double(state.iterations());
}

void BM_d01rjc(benchmark::State &state) { time_alone<Kor>(state); }
void BM_gsl_qags(benchmark::State &state) { time_alone<Gsl>(state); }

// Both on the same problem, interleaved in rounds so that both see the same
// machine state; reports the time per integral of each and GSL/d01rjc.
void BM_Ratio(benchmark::State &state) {
    const Problem &p = problems[state.range(0)];
    state.SetLabel(p.name);
    Kor k;
    Gsl g;
    double kor_seconds = 0, gsl_seconds = 0;
    long kor_values = 0, gsl_values = 0, rounds = 0;
    for (auto _ : state) {
        constexpr int reps = 50;
        Counted ck{&p}, cg{&p};
        const double t0 = kor::bench::cpu_seconds();
        for (int i = 0; i < reps; ++i) k.run(ck);
        const double t1 = kor::bench::cpu_seconds();
        for (int i = 0; i < reps; ++i) g.run(cg);
        const double t2 = kor::bench::cpu_seconds();
        kor_seconds += (t1 - t0) / reps;
        gsl_seconds += (t2 - t1) / reps;
        kor_values = ck.values / reps;
        gsl_values = cg.values / reps;
        ++rounds;
    }
    if (kor_values != gsl_values || std::fabs(k.result - g.result) > 1e-12 * std::fabs(g.result))
        state.SkipWithError("d01rjc and qags differ on this problem");
    state.counters["kor_us"] = 1e6 * kor_seconds / double(rounds);
    state.counters["gsl_us"] = 1e6 * gsl_seconds / double(rounds);
    state.counters["kor/gsl"] = kor_seconds / gsl_seconds;
    state.counters["values"] = double(kor_values);
}

BENCHMARK(BM_d01rjc)->DenseRange(0, 3);
BENCHMARK(BM_gsl_qags)->DenseRange(0, 3);
BENCHMARK(BM_Ratio)->DenseRange(0, 3);

}  // namespace

BENCHMARK_MAIN();
