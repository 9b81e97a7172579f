// Zero finders: c05ayc against GSL's Brent solver (gsl_root_fsolver_brent,
// iterated to the same absolute tolerance) per solve on the same six
// problems, what the interface frame costs per call, and how many function
// evaluations c05ay spends against a textbook Brent (zeroin, from Brent's
// "Algorithms for Minimization without Derivatives", ch. 4).
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_roots.h>

#include <cmath>
#include <cstring>

#include "c05ay_def.hpp"
#include "cpu_time.hpp"
#include "frame/interface.hpp"

namespace {

struct Problem {
    const char *name;
    double (*f)(double, Kor_Comm *);
    double a, b;
};

long evaluations = 0;

double cheap(double x, Kor_Comm *) { return ++evaluations, x - 0.3; }
double kepler(double x, Kor_Comm *) { return ++evaluations, x - 0.6 * std::sin(x) - 1.0; }
double cubic(double x, Kor_Comm *) { return ++evaluations, (x * x - 2.0) * x - 5.0; }
double steep(double x, Kor_Comm *) { return ++evaluations, std::tanh(50.0 * (x - 0.3)); }
double flat(double x, Kor_Comm *) { return ++evaluations, std::pow(x - 1.0, 5); }
double expm(double x, Kor_Comm *) { return ++evaluations, std::exp(-x) - x; }

const Problem problems[] = {{"linear", cheap, 0.0, 1.0},   {"kepler", kepler, 0.0, 3.0},
                            {"wallis", cubic, 2.0, 3.0},   {"tanh", steep, 0.0, 1.0},
                            {"quintic", flat, 0.0, 3.0},   {"exp", expm, 0.0, 1.0}};

// Brent's zeroin with the absolute tolerance t and machine precision 2^-53.
double zeroin(double a, double b, double t, double (*f)(double, Kor_Comm *)) {
    const double macheps = 0x1p-53;
    double fa = f(a, nullptr), fb = f(b, nullptr), c = a, fc = fa, d = b - a, e = d;
    for (;;) {
        if ((fb > 0) == (fc > 0)) c = a, fc = fa, d = e = b - a;
        if (std::fabs(fc) < std::fabs(fb)) a = b, b = c, c = a, fa = fb, fb = fc, fc = fa;
        const double tol = 2 * macheps * std::fabs(b) + t, m = 0.5 * (c - b);
        if (std::fabs(m) <= tol || fb == 0) return b;
        if (std::fabs(e) < tol || std::fabs(fa) <= std::fabs(fb)) {
            d = e = m;
        } else {
            double s = fb / fa, p, q;
            if (a == c) {
                p = 2 * m * s, q = 1 - s;
            } else {
                const double qa = fa / fc, r = fb / fc;
                p = s * (2 * m * qa * (qa - r) - (b - a) * (r - 1));
                q = (qa - 1) * (r - 1) * (s - 1);
            }
            if (p > 0) q = -q; else p = -p;
            if (2 * p < 3 * m * q - std::fabs(tol * q) && p < std::fabs(0.5 * e * q))
                e = d, d = p / q;
            else
                d = e = m;
        }
        a = b, fa = fb;
        b += std::fabs(d) > tol ? d : (m > 0 ? tol : -tol);
        fb = f(b, nullptr);
    }
}

// The whole C interface: clearing the record, the layers, the closing report.
void BM_c05ayc(benchmark::State &state) {
    const Problem &p = problems[state.range(0)];
    KorError fail = KOR_ERROR_INIT;
    double x;
    for (auto _ : state) {
        c05ayc(p.a, p.b, 1e-10, 0.0, p.f, &x, nullptr, &fail);
        benchmark::DoNotOptimize(x);
    }
    state.SetLabel(p.name);
}

// The engine layer alone, called as the interface calls it.
void BM_engine(benchmark::State &state) {
    const Problem &p = problems[state.range(0)];
    const double eps = 1e-10, eta = 0.0;
    double x;
    char record[kor::frame::record_length];
    int64_t outcome;
    for (auto _ : state) {
        CallbackContext ctx;
        y90haan_(&ctx);
        outcome = 1;
        c05ayfn_(&ctx, &p.a, &p.b, &eps, &eta, reinterpret_cast<KorUserFn>(p.f), c05ayc_f_helper,
                 nullptr, nullptr, &x, record, &outcome, kor::frame::record_length);
        benchmark::DoNotOptimize(x);
    }
    state.SetLabel(p.name);
}

// GSL's Brent solver to |b - a| < 1e-10, the user function called through
// a gsl_function as GSL users write it.
double gsl_call(double x, void *params) {
    return reinterpret_cast<double (*)(double, Kor_Comm *)>(params)(x, nullptr);
}

double gsl_solve(gsl_root_fsolver *s, gsl_function &F, const Problem &p) {
    gsl_root_fsolver_set(s, &F, p.a, p.b);
    int status = GSL_CONTINUE;
    for (int i = 0; i < 200 && status == GSL_CONTINUE; ++i) {
        gsl_root_fsolver_iterate(s);
        status = gsl_root_test_interval(gsl_root_fsolver_x_lower(s), gsl_root_fsolver_x_upper(s),
                                        1e-10, 0.0);
    }
    return gsl_root_fsolver_root(s);
}

void BM_gsl_brent(benchmark::State &state) {
    const Problem &p = problems[state.range(0)];
    gsl_set_error_handler_off();
    gsl_root_fsolver *s = gsl_root_fsolver_alloc(gsl_root_fsolver_brent);
    gsl_function F{gsl_call, reinterpret_cast<void *>(p.f)};
    for (auto _ : state) benchmark::DoNotOptimize(gsl_solve(s, F, p));
    gsl_root_fsolver_free(s);
    state.SetLabel(p.name);
}

// c05ayc and GSL's Brent on the same problem in alternating rounds (CPU
// time), so that both see the same machine: kor/gsl is the ratio per solve.
void BM_Ratio(benchmark::State &state) {
    const Problem &p = problems[state.range(0)];
    gsl_set_error_handler_off();
    gsl_root_fsolver *s = gsl_root_fsolver_alloc(gsl_root_fsolver_brent);
    gsl_function F{gsl_call, reinterpret_cast<void *>(p.f)};
    KorError fail = KOR_ERROR_INIT;
    double x = 0, kor_seconds = 0, gsl_seconds = 0, sum = 0;
    constexpr int reps = 200;
    for (auto _ : state) {
        const double t0 = kor::bench::cpu_seconds();
        for (int i = 0; i < reps; ++i) {
            c05ayc(p.a, p.b, 1e-10, 0.0, p.f, &x, nullptr, &fail);
            sum += x;
        }
        const double t1 = kor::bench::cpu_seconds();
        for (int i = 0; i < reps; ++i) sum += gsl_solve(s, F, p);
        const double t2 = kor::bench::cpu_seconds();
        kor_seconds += t1 - t0;
        gsl_seconds += t2 - t1;
    }
    gsl_root_fsolver_free(s);
    benchmark::DoNotOptimize(sum);
    const double solves = double(state.iterations()) * reps;
    state.counters["kor_ns"] = 1e9 * kor_seconds / solves;
    state.counters["gsl_ns"] = 1e9 * gsl_seconds / solves;
    state.counters["kor/gsl"] = kor_seconds / gsl_seconds;
    state.SetLabel(p.name);
}

void BM_zeroin(benchmark::State &state) {
    const Problem &p = problems[state.range(0)];
    for (auto _ : state) benchmark::DoNotOptimize(zeroin(p.a, p.b, 1e-10, p.f));
    state.SetLabel(p.name);
}

// Function evaluations per solve, as counters: c05ay against zeroin.
void BM_evaluations(benchmark::State &state) {
    const Problem &p = problems[state.range(0)];
    long ours = 0, textbook = 0;
    for (auto _ : state) {
        KorError fail = KOR_ERROR_INIT;
        double x;
        evaluations = 0;
        c05ayc(p.a, p.b, 1e-10, 0.0, p.f, &x, nullptr, &fail);
        ours = evaluations;
        evaluations = 0;
        benchmark::DoNotOptimize(zeroin(p.a, p.b, 1e-10, p.f));
        textbook = evaluations;
    }
    state.counters["c05ay_evals"] = double(ours);
    state.counters["zeroin_evals"] = double(textbook);
    state.SetLabel(p.name);
}

constexpr int count = int(sizeof problems / sizeof problems[0]);
BENCHMARK(BM_c05ayc)->DenseRange(0, count - 1);
BENCHMARK(BM_gsl_brent)->DenseRange(0, count - 1);
BENCHMARK(BM_Ratio)->DenseRange(0, count - 1);
BENCHMARK(BM_engine)->DenseRange(0, count - 1);
BENCHMARK(BM_zeroin)->DenseRange(0, count - 1);
BENCHMARK(BM_evaluations)->DenseRange(0, count - 1);

}  // namespace

BENCHMARK_MAIN();
