// Linear programs on the handle: the translation of a handle's problem into
// the column-compressed form LP engines take, and the solve that the LP
// solvers (e04mk simplex, e04mt interior point) share.
#pragma once

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>
#include <exception>
#include <string_view>
#include <vector>

#include "frame/adapters.hpp"
#include "frame/callbacks.hpp"
#include "frame/record.hpp"
#include "opt/problem.hpp"

namespace kor::opt {

// minimize cost'x + constant subject to col_lower <= x <= col_upper and
// row_lower <= A x <= row_upper; infinite bounds are +-infinity.  A is
// column-compressed: the entries of column j are start[j] .. start[j+1]-1,
// row indices 0-based.
struct LpModel {
    int64_t ncol = 0, nrow = 0;
    std::vector<int64_t> start, index;
    std::vector<double> value;
    std::vector<double> col_lower, col_upper, row_lower, row_upper, cost;
    double constant = 0.0;
    // The caller's sense: the model is always a minimization, of -c'x for
    // a maximization, and results are turned back.
    bool maximize = false;
};

// Fills the model from the handle, O(nvar + nclin + nnz); false when the
// handle holds more than a linear program.
bool translate(const Problem &p, LpModel &model);

// What the engine is asked to do.
enum class LpMethod { simplex, interior_point };

// Scaling of the matrix before the solve.
enum class LpScaling { automatic, none, geometric, by_largest_element };

inline double seconds_since(std::chrono::steady_clock::time_point started) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
}

// How a solve ended.
enum class LpEnd {
    optimal,
    infeasible,
    unbounded,
    iteration_limit,
    time_limit,
    user_stop,
    numerical,
};

struct LpResult {
    LpEnd end = LpEnd::numerical;
    std::vector<double> x;       // ncol
    std::vector<double> u;       // ncol reduced costs, then nrow row multipliers
    double objective = 0.0;      // in the caller's sense, with the constant
    double primal_infeasibility = 0.0, dual_infeasibility = 0.0;  // as the engine sums them
    int64_t iterations = 0;
    double seconds = 0.0;
    bool has_point = false;      // x and u hold an iterate
    std::exception_ptr user_exception;  // the monitor's own, rethrown after the engine returned
};

// The monitor as a solve calls it: the handle and the solver's rinfo/stats.
using Monitor = frame::UserFunction<frame::Monitor>;

// The monitor's calls during one solve: every `frequency` iterations, with
// rinfo/stats laid out as the solver's own.  A stop asked for by the
// monitor, and an exception thrown from it, end the engine's run; the
// exception is kept to be thrown on once the engine has returned (it must
// not unwind through the engine's frames).
class MonitorCalls {
public:
    MonitorCalls(Monitor &monit, void *handle, int64_t frequency, const LpModel &model);
    bool active() const { return frequency_ > 0 && monit_.present(); }
    // False when the solve is to stop.
    bool at_iteration(int64_t iterations, double objective, double primal_infeasibility,
                      double dual_infeasibility);
    bool stopped() const { return stopped_; }
    std::exception_ptr exception() const { return exception_; }

private:
    Monitor &monit_;
    void *handle_;
    int64_t frequency_;
    const LpModel &model_;
    std::chrono::steady_clock::time_point started_;
    bool stopped_ = false;
    std::exception_ptr exception_;
};

// What the engine is told, read from the handle's options.
struct LpSettings {
    LpMethod method = LpMethod::simplex;
    bool primal = false;      // simplex: primal instead of dual
    bool crossover = true;    // interior point: finish at a vertex
    bool presolve = true;
    int64_t iteration_limit = 0;
    double time_limit = 0.0;
    double infinite_bound = 1e20;  // 'Infinite Bound Size'
    double primal_tolerance = 0.0, dual_tolerance = 0.0;  // 0: the engine's own
    LpScaling scaling = LpScaling::automatic;
    int64_t random_seed = 0;
    int64_t factorization_frequency = 0;
    int dual_pricing = -1, primal_pricing = -1;  // -1 auto, 0 Dantzig, 1 devex, 2 steepest edge
    int64_t monitor_frequency = 0;
    int64_t log_unit = -1;    // the engine's own iteration log, or -1
};

// Reads the options of the solver's group; `unused` receives the registry
// rows of the group's options that have no counterpart in the engine.
LpSettings lp_settings(const OptionStore &options, LpMethod method, std::vector<int> &listed,
                       std::vector<int> &unused);

// Runs the engine on the model; output goes through the library's units only.
LpResult solve_lp(const LpModel &model, const LpSettings &settings, MonitorCalls &calls);

// The largest violation of bounds and constraints by x, and the largest
// residual of c = A'y + z: KKT measures computed from the returned values
// rather than trusted from the engine.
double primal_violation(const LpModel &model, const std::vector<double> &x);
double dual_residual(const LpModel &model, const std::vector<double> &u);

// The 32-bit engines' limit: the name of the first of the sizes above
// INT_MAX (and the size), or null.  Checked before the model is built.
const char *too_large_for_engine(int64_t nvar, int64_t nclin, int64_t nnz, int64_t &size);

// The solver's lines on the 'Print File' unit: the problem's size and its
// options at the start, the status and measures at the end.
void print_lp_start(const Problem &p, const LpModel &model, const char *title,
                    const std::vector<int> &listed, const std::vector<int> &unused);
void print_lp_end(const Problem &p, const LpResult &r, double violation, double residual);

// The part of e04mk/e04mt after the handle check: the checks, translate,
// solve, fill the outputs and the handle, and raise the exit the end calls for.
template <class Exit>
void run_lp_solver(frame::Record &rec, void *handle, Problem &p, int64_t nvar, double *x, int64_t nu,
                   double *u, double *rinfo, double *stats, Monitor &monit, LpMethod method,
                   const char *title) {
    if (p.solver_running) return rec.raise<typename Exit::already_solving>();
    if (nvar != p.nvar) return rec.raise<typename Exit::nvar_mismatch>(nvar, p.nvar);
    const int64_t nu_full = p.nvar + p.linear.rows();
    if (nu != 0 && nu != nu_full) return rec.raise<typename Exit::nu_invalid>(nu, nu_full);
    int64_t size = 0;
    if (const char *what = too_large_for_engine(p.nvar, p.linear.rows(), int64_t(p.linear.b.size()), size))
        return rec.raise<typename Exit::too_large>(std::string_view(what), size, int64_t(INT_MAX));
    LpModel model;
    if (!translate(p, model)) return rec.raise<typename Exit::setup_error>();

    std::vector<int> listed, unused;
    const LpSettings settings = lp_settings(*p.options, method, listed, unused);
    p.results.clear();
    print_lp_start(p, model, title, listed, unused);
    MonitorCalls calls(monit, handle, settings.monitor_frequency, model);
    p.solver_running = true;
    LpResult r;
    try {
        r = solve_lp(model, settings, calls);
    } catch (...) {
        p.solver_running = false;
        throw;
    }
    p.solver_running = false;
    if (r.user_exception) std::rethrow_exception(r.user_exception);

    std::fill(rinfo, rinfo + frame::Monitor::info_size, 0.0);
    std::fill(stats, stats + frame::Monitor::info_size, 0.0);
    stats[0] = double(r.iterations);
    stats[1] = r.seconds;
    double violation = 0.0, residual = 0.0;
    if (r.has_point) {
        violation = primal_violation(model, r.x);
        residual = dual_residual(model, r.u);
        std::copy(r.x.begin(), r.x.end(), x);
        if (nu > 0) std::copy(r.u.begin(), r.u.end(), u);
        rinfo[0] = r.objective;
        rinfo[1] = r.primal_infeasibility;
        rinfo[2] = r.dual_infeasibility;
        rinfo[3] = violation;
        rinfo[4] = residual;
        store_result(p, ResultItem::primal_variables, r.x);
        store_result(p, ResultItem::dual_variables, r.u);
    }
    print_lp_end(p, r, violation, residual);
    switch (r.end) {
    case LpEnd::optimal: return;
    case LpEnd::infeasible: return rec.raise<typename Exit::infeasible>();
    case LpEnd::unbounded: return rec.raise<typename Exit::unbounded>();
    case LpEnd::iteration_limit: return rec.raise<typename Exit::iteration_limit>(r.iterations);
    case LpEnd::time_limit: return rec.raise<typename Exit::time_limit>(settings.time_limit);
    case LpEnd::user_stop: return rec.raise<typename Exit::user_stop>();
    case LpEnd::numerical: return rec.raise<typename Exit::numerical>();
    }
}

}  // namespace kor::opt
