#include "opt/lp.hpp"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cmath>
#include <limits>

#include "frame/units.hpp"
#include "opt/engine.hpp"
#include "tables/option_table.hpp"

namespace kor::opt {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// Bounds at or beyond 'Infinite Bound Size' mean none.
double lower_of(double v, double big) { return v <= -big ? -infinity : v; }
double upper_of(double v, double big) { return v >= big ? infinity : v; }

}  // namespace

bool translate(const Problem &p, LpModel &model) {
    const Objective &o = p.objective;
    const bool linear_objective =
        o.kind == ObjectiveKind::none || o.kind == ObjectiveKind::linear ||
        (o.kind == ObjectiveKind::quadratic && o.h.size() == 0 && !o.factorized);
    bool integers = false;
    for (const VariableProperty &v : p.properties)
        integers = integers || v.integrality != Integrality::continuous;
    if (!linear_objective || p.nonlinear.defined || !p.hessians.empty() || !p.cones.empty() ||
        !p.quadratic.empty() || !p.matrices.empty() || integers)
        return false;

    const double big = infinite_bound(p);
    const int64_t n = p.nvar, m = p.linear.rows();
    model.ncol = n;
    model.nrow = m;
    model.maximize = p.options->code(slot::task) < 0;
    const bool feasibility_only = p.options->code(slot::task) == 0;

    model.cost.assign(size_t(n), 0.0);
    model.constant = feasibility_only ? 0.0 : o.constant;
    if (!feasibility_only) {
        if (o.dense)
            std::copy(o.cvec.begin(), o.cvec.end(), model.cost.begin());
        else
            for (size_t k = 0; k < o.idxc.size(); ++k) model.cost[size_t(o.idxc[k] - 1)] = o.c[k];
    }

    model.col_upper.assign(size_t(n), infinity);
    model.col_lower.assign(size_t(n), -infinity);
    if (p.bounds) {
        for (int64_t j = 0; j < n; ++j) {
            model.col_lower[size_t(j)] = lower_of(p.bounds->first[size_t(j)], big);
            model.col_upper[size_t(j)] = upper_of(p.bounds->second[size_t(j)], big);
        }
    }
    model.row_lower.resize(size_t(m));
    model.row_upper.resize(size_t(m));
    for (int64_t i = 0; i < m; ++i) {
        model.row_lower[size_t(i)] = lower_of(p.linear.bl[size_t(i)], big);
        model.row_upper[size_t(i)] = upper_of(p.linear.bu[size_t(i)], big);
    }

    // Coordinates to columns by counting: one pass to count, one to place.
    const Coordinates &b = p.linear.b;
    const size_t nnz = b.size();
    model.start.assign(size_t(n) + 1, 0);
    for (size_t k = 0; k < nnz; ++k) ++model.start[size_t(b.col[k])];
    for (int64_t j = 0; j < n; ++j) model.start[size_t(j) + 1] += model.start[size_t(j)];
    model.index.resize(nnz);
    model.value.resize(nnz);
    std::vector<int64_t> next(model.start.begin(), model.start.end() - 1);
    for (size_t k = 0; k < nnz; ++k) {
        const int64_t at = next[size_t(b.col[k] - 1)]++;
        model.index[size_t(at)] = b.row[k] - 1;
        model.value[size_t(at)] = b.value[k];
    }
    if (model.maximize)
        for (double &c : model.cost) c = -c;
    return true;
}

double primal_violation(const LpModel &model, const std::vector<double> &x) {
    double worst = 0.0;
    std::vector<double> activity(size_t(model.nrow), 0.0);
    for (int64_t j = 0; j < model.ncol; ++j) {
        const double v = x[size_t(j)];
        worst = std::max({worst, model.col_lower[size_t(j)] - v, v - model.col_upper[size_t(j)]});
        for (int64_t k = model.start[size_t(j)]; k < model.start[size_t(j) + 1]; ++k)
            activity[size_t(model.index[size_t(k)])] += model.value[size_t(k)] * v;
    }
    for (int64_t i = 0; i < model.nrow; ++i)
        worst = std::max({worst, model.row_lower[size_t(i)] - activity[size_t(i)],
                          activity[size_t(i)] - model.row_upper[size_t(i)]});
    return worst;
}

double dual_residual(const LpModel &model, const std::vector<double> &u) {
    double worst = 0.0;
    const double sense = model.maximize ? -1.0 : 1.0;
    for (int64_t j = 0; j < model.ncol; ++j) {
        double r = sense * model.cost[size_t(j)] - u[size_t(j)];
        for (int64_t k = model.start[size_t(j)]; k < model.start[size_t(j) + 1]; ++k)
            r -= model.value[size_t(k)] * u[size_t(model.ncol + model.index[size_t(k)])];
        worst = std::max(worst, std::fabs(r));
    }
    return worst;
}

MonitorCalls::MonitorCalls(Monitor &monit, void *handle, int64_t frequency, const LpModel &model)
    : monit_(monit), handle_(handle), frequency_(frequency), model_(model),
      started_(std::chrono::steady_clock::now()) {}

bool MonitorCalls::at_iteration(int64_t iterations, double objective, double primal_infeasibility,
                                double dual_infeasibility) {
    if (stopped_) return false;
    if (!active() || iterations % frequency_ != 0) return true;
    double rinfo[frame::Monitor::info_size] = {}, stats[frame::Monitor::info_size] = {};
    rinfo[0] = (model_.maximize ? -objective : objective) + model_.constant;
    rinfo[1] = primal_infeasibility;
    rinfo[2] = dual_infeasibility;
    stats[0] = double(iterations);
    stats[1] = seconds_since(started_);
    try {
        if (monit_(handle_, rinfo, stats) < 0) stopped_ = true;
    } catch (...) {
        exception_ = std::current_exception();
        stopped_ = true;
    }
    return !stopped_;
}

namespace {

// Registry rows of options by name, for the solver's listing.
std::vector<int> rows_of(std::initializer_list<const char *> names) {
    std::vector<int> rows;
    for (const char *name : names) rows.push_back(find_option(name));
    return rows;
}

}  // namespace

LpSettings lp_settings(const OptionStore &o, LpMethod method, std::vector<int> &listed,
                       std::vector<int> &unused) {
    LpSettings s;
    s.method = method;
    s.time_limit = o.get(slot::time_limit);
    s.infinite_bound = o.get(slot::infinite_bound_size);
    const int64_t print_level = o.get(slot::print_level);
    s.log_unit = print_level >= 3 ? o.get(slot::print_file) : -1;
    s.crossover = o.code(slot::simplex_run_crossover) == 1;
    if (method == LpMethod::simplex) {
        const int64_t solver = o.code(slot::simplex_solver);
        if (solver == 2) s.method = LpMethod::interior_point;
        s.primal = o.code(slot::simplex_strategy) == 2;
        s.presolve = o.code(slot::simplex_presolve) != 0;
        s.iteration_limit = o.get(slot::simplex_iteration_limit);
        s.primal_tolerance = o.get(slot::simplex_primal_feasibility_tol);
        s.dual_tolerance = o.get(slot::simplex_dual_feasibility_tol);
        // AUTO, NONE, EQUILIBRATION, MAX VALUE
        constexpr LpScaling scalings[] = {LpScaling::automatic, LpScaling::none, LpScaling::geometric,
                                          LpScaling::by_largest_element};
        s.scaling = scalings[o.code(slot::simplex_scale_strat)];
        s.random_seed = o.get(slot::simplex_random_seed);
        s.factorization_frequency = o.get(slot::simplex_update_limit);
        s.dual_pricing = int(o.code(slot::simplex_dedge_weight_strat));
        s.primal_pricing = int(o.code(slot::simplex_pedge_weight_strat));
        s.monitor_frequency = o.get(slot::monitor_frequency);
        listed = rows_of({"SIMPLEX STRATEGY", "SIMPLEX SOLVER", "SIMPLEX RUN CROSSOVER", "SIMPLEX PRESOLVE",
                          "SIMPLEX ITERATION LIMIT", "SIMPLEX PRIMAL FEASIBILITY TOL",
                          "SIMPLEX DUAL FEASIBILITY TOL", "SIMPLEX SCALE STRAT", "SIMPLEX RANDOM SEED",
                          "SIMPLEX UPDATE LIMIT", "SIMPLEX DEDGE WEIGHT STRAT",
                          "SIMPLEX PEDGE WEIGHT STRAT", "MONITOR FREQUENCY"});
        unused = rows_of({"SIMPLEX CONCURRENT LIMIT", "SIMPLEX OBJECTIVE BOUND", "SIMPLEX INFINITE COST SIZE",
                          "SIMPLEX SMALL MATRIX VALUE", "SIMPLEX LARGE MATRIX VALUE", "SIMPLEX START TYPE"});
    } else {
        s.presolve = o.code(slot::lp_presolve) != 0;
        s.iteration_limit = o.get(slot::lpipm_iteration_limit);
        // NONE, ARITHMETIC, GEOMETRIC
        constexpr LpScaling scalings[] = {LpScaling::none, LpScaling::automatic, LpScaling::geometric};
        s.scaling = scalings[o.code(slot::lpipm_scaling)];
        s.primal_tolerance = o.get(slot::lpipm_stop_tolerance);
        s.dual_tolerance = o.get(slot::lpipm_stop_tolerance);
        s.monitor_frequency = o.get(slot::lpipm_monitor_frequency);
        listed = rows_of({"LP PRESOLVE", "LPIPM ITERATION LIMIT", "LPIPM SCALING", "LPIPM STOP TOLERANCE",
                          "LPIPM MONITOR FREQUENCY", "SIMPLEX RUN CROSSOVER"});
        unused = rows_of({"LPIPM CENTRALITY CORRECTORS", "LP MAX PRESOLVE ITERATIONS",
                          "LPIPM SCALING ITERATIONS", "LPIPM EQUILIBRATION SCALING",
                          "LPIPM SYSTEM FORMULATION", "LPIPM ALGORITHM", "LPIPM PRODFORM CHOLESKY",
                          "LPIPM MAX DENSE PRODFORM CHOL", "LPIPM MA97 SCALING AS",
                          "LPIPM MA97 SCALING NE", "LPIPM FACTORIZATION ORDERING",
                          "LPIPM MAX STEP SIZE", "LPIPM FREE VAR PERT", "LPIPM NE PERT MIN",
                          "LPIPM NE PERT MAX", "LPIPM TOL SWITCH NEAS", "LPIPM STOP TOLERANCE 2",
                          "LPIPM SWITCH NNZ ADA", "LPIPM AS PERT ZERO BLOCK",
                          "LPIPM MAX BACKSOLVE FACTOR", "LPIPM MAX ITERATIVE REFINEMENT",
                          "LPIPM TOL IT REFINEMENT", "LPIPM SD MAX SLOW ITERATIONS",
                          "LPIPM PD MAX SLOW ITERATIONS", "LPIPM SD SUBOPT FACTOR",
                          "LPIPM PD SUBOPT FACTOR", "LPIPM DENSE COLUMNS ENCODING",
                          "LPIPM NO SWITCH TOLERANCE", "LPIPM FREE VARS CHOOSE AS",
                          "LPIPM PD FIRST INFEAS ITER", "LPIPM PD START TRACK ITER",
                          "LPIPM SD START TRACK ITER", "LPIPM PD SUBOPT FACTOR RELAX"});
    }
    for (int row : rows_of({"TASK", "TIME LIMIT", "INFINITE BOUND SIZE", "PRINT FILE", "PRINT LEVEL",
                            "PRINT OPTIONS", "PRINT SOLUTION"}))
        listed.push_back(row);
    return s;
}

const char *too_large_for_engine(int64_t nvar, int64_t nclin, int64_t nnz, int64_t &size) {
    struct Size { const char *what; int64_t size; };
    for (const Size s : {Size{"nvar", nvar}, Size{"nclin", nclin}, Size{"nnz", nnz}})
        if (s.size > INT_MAX) return size = s.size, s.what;
    return nullptr;
}

namespace {

const char *end_text(LpEnd end) {
    switch (end) {
    case LpEnd::optimal: return "Optimal solution found.";
    case LpEnd::infeasible: return "The problem is infeasible.";
    case LpEnd::unbounded: return "The problem is unbounded.";
    case LpEnd::iteration_limit: return "Iteration limit reached.";
    case LpEnd::time_limit: return "Time limit reached.";
    case LpEnd::user_stop: return "Stopped by the monitor.";
    case LpEnd::numerical: return "Numerical difficulties.";
    }
    return "";
}

std::string formatted(const char *format, double a, double b = 0.0) {
    char line[120];
    std::snprintf(line, sizeof line, format, a, b);
    return line;
}

}  // namespace

void print_lp_start(const Problem &p, const LpModel &model, const char *title,
                    const std::vector<int> &listed, const std::vector<int> &unused) {
    const OptionStore &o = *p.options;
    const int64_t unit = o.get(slot::print_file), level = o.get(slot::print_level);
    if (unit < 0 || level < 1) return;
    frame::units::write_record(unit, std::string(" ") + title);
    frame::units::write_record(
        unit, formatted(" Variables %.0f, linear constraints %.0f", double(model.ncol), double(model.nrow)) +
                  formatted(", nonzeros %.0f", double(model.value.size())));
    if (level >= 2 && o.code(slot::print_options) == 1)
        print_solver_options(o, unit, listed, unused);
}

void print_lp_end(const Problem &p, const LpResult &r, double violation, double residual) {
    const OptionStore &o = *p.options;
    const int64_t unit = o.get(slot::print_file), level = o.get(slot::print_level);
    if (unit < 0 || level < 1) return;
    frame::units::write_record(unit, std::string(" Status: ") + end_text(r.end));
    if (r.has_point) {
        frame::units::write_record(unit, formatted(" Objective value          %15.8E", r.objective));
        frame::units::write_record(unit, formatted(" Largest violation        %15.8E", violation));
        frame::units::write_record(unit, formatted(" Largest dual residual    %15.8E", residual));
    }
    frame::units::write_record(unit, formatted(" Iterations %.0f, time %.3f s", double(r.iterations), r.seconds));
    const int64_t which = o.code(slot::print_solution);  // 1 x, 2 x and u, 3 all
    if (!r.has_point || which == 0 || level < 2) return;
    frame::units::write_record(unit, " Primal variables:");
    for (size_t j = 0; j < r.x.size(); ++j)
        frame::units::write_record(unit, formatted("  %6.0f %15.8E", double(j + 1), r.x[j]));
    if (which < 2) return;
    frame::units::write_record(unit, " Multipliers (bounds, then constraints):");
    for (size_t k = 0; k < r.u.size(); ++k)
        frame::units::write_record(unit, formatted("  %6.0f %15.8E", double(k + 1), r.u[k]));
}

}  // namespace kor::opt
