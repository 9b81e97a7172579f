// The LP solves on Clp: its dual and primal simplex and its barrier.  Clp
// is hidden here: its messages go to the library's units (or nowhere), its
// statuses become LpEnd values, and its 32-bit indices are checked for by
// the callers before a model reaches it.
#include <coin/ClpDualRowDantzig.hpp>
#include <coin/ClpDualRowSteepest.hpp>
#include <coin/ClpEventHandler.hpp>
#include <coin/ClpPrimalColumnDantzig.hpp>
#include <coin/ClpPrimalColumnSteepest.hpp>
#include <coin/ClpSimplex.hpp>
#include <coin/ClpSolve.hpp>
#include <coin/CoinError.hpp>
#include <coin/CoinMessageHandler.hpp>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>

#include "frame/units.hpp"
#include "opt/lp.hpp"
#include "tables/option_table.hpp"

namespace kor::opt {

namespace {

int clamp_int(int64_t v) { return int(std::min<int64_t>(std::max<int64_t>(v, 0), INT_MAX)); }

double engine_bound(double v) {
    return std::isinf(v) ? (v > 0 ? COIN_DBL_MAX : -COIN_DBL_MAX) : v;
}

// The engine's iteration lines, when the print level asks for them.
class UnitMessages : public CoinMessageHandler {
public:
    explicit UnitMessages(int64_t unit) : unit_(unit) {}
    CoinMessageHandler *clone() const override { return new UnitMessages(*this); }
    int print() override {
        if (unit_ >= 0) frame::units::write_record(unit_, messageBuffer());
        return 0;
    }

private:
    int64_t unit_;
};

// Calls the monitor every `frequency` simplex iterations.  Clp runs the
// handler on copies of the model (after presolve, say), so it reads only
// what every copy has: the iteration count, objective and infeasibilities.
class MonitorEvents : public ClpEventHandler {
public:
    explicit MonitorEvents(MonitorCalls *calls) : calls_(calls) {}
    ClpEventHandler *clone() const override { return new MonitorEvents(*this); }
    int event(Event which) override {
        if (which != endOfIteration || !model_) return -1;
        const ClpSimplex &m = *model_;
        const bool go_on = calls_->at_iteration(m.numberIterations(), m.objectiveValue(),
                                                m.sumPrimalInfeasibilities(),
                                                m.sumDualInfeasibilities());
        return go_on ? -1 : 0;
    }

private:
    MonitorCalls *calls_;
};

// Clp's scaling modes: 0 off, 1 equilibrium (by the largest element),
// 2 geometric, 3 its own choice.
int scaling_mode(LpScaling scaling) {
    switch (scaling) {
    case LpScaling::none: return 0;
    case LpScaling::by_largest_element: return 1;
    case LpScaling::geometric: return 2;
    case LpScaling::automatic: return 3;
    }
    return 3;
}

}  // namespace

LpResult solve_lp(const LpModel &model, const LpSettings &settings, MonitorCalls &calls) {
    const auto started = std::chrono::steady_clock::now();
    LpResult r;
    ClpSimplex clp;
    UnitMessages messages(settings.log_unit);
    clp.passInMessageHandler(&messages);
    // Clp's barrier writes some of its log with printf above level 0.
    clp.setLogLevel(settings.log_unit >= 0 && settings.method == LpMethod::simplex ? 1 : 0);

    {
        std::vector<CoinBigIndex> start(model.start.begin(), model.start.end());
        std::vector<int> index(model.index.begin(), model.index.end());
        std::vector<double> cl(model.col_lower), cu(model.col_upper), rl(model.row_lower),
            ru(model.row_upper);
        for (auto *v : {&cl, &cu, &rl, &ru})
            for (double &b : *v) b = engine_bound(b);
        clp.loadProblem(int(model.ncol), int(model.nrow), start.data(), index.data(),
                        model.value.data(), cl.data(), cu.data(), model.cost.data(), rl.data(),
                        ru.data());
    }

    clp.setMaximumIterations(clamp_int(settings.iteration_limit));
    clp.setMaximumSeconds(settings.time_limit);
    if (settings.primal_tolerance > 0) clp.setPrimalTolerance(settings.primal_tolerance);
    if (settings.dual_tolerance > 0) clp.setDualTolerance(settings.dual_tolerance);
    clp.scaling(scaling_mode(settings.scaling));
    clp.setRandomSeed(int(settings.random_seed % INT_MAX));
    if (settings.factorization_frequency > 0)
        clp.setFactorizationFrequency(clamp_int(settings.factorization_frequency));

    ClpDualRowDantzig dual_dantzig;
    ClpDualRowSteepest dual_steepest(settings.dual_pricing == 1 ? 0 : 1);
    if (settings.dual_pricing == 0) clp.setDualRowPivotAlgorithm(dual_dantzig);
    if (settings.dual_pricing >= 1) clp.setDualRowPivotAlgorithm(dual_steepest);
    ClpPrimalColumnDantzig primal_dantzig;
    ClpPrimalColumnSteepest primal_steepest(settings.primal_pricing == 1 ? 0 : 1);
    if (settings.primal_pricing == 0) clp.setPrimalColumnPivotAlgorithm(primal_dantzig);
    if (settings.primal_pricing >= 1) clp.setPrimalColumnPivotAlgorithm(primal_steepest);

    MonitorEvents events(&calls);
    if (calls.active()) clp.passInEventHandler(&events);

    ClpSolve how;
    switch (settings.method) {
    case LpMethod::simplex:
        how.setSolveType(settings.primal ? ClpSolve::usePrimal : ClpSolve::useDual);
        break;
    case LpMethod::interior_point:
        how.setSolveType(settings.crossover ? ClpSolve::useBarrier : ClpSolve::useBarrierNoCross);
        break;
    }
    how.setPresolveType(settings.presolve ? ClpSolve::presolveOn : ClpSolve::presolveOff);

    int status = 4;
    try {
        clp.initialSolve(how);
        status = clp.status();
        // Clp's barrier can call an unbounded problem solved, and runs into
        // its own iteration cap on an infeasible one: a barrier result is
        // confirmed by the primal simplex from the point it reached, which
        // costs no iterations when the point is optimal.  Without crossover
        // the confirmation runs on a copy, so the interior point is kept.
        const bool settled = status == 1 || status == 2 || status == 5 || calls.stopped();
        if (settings.method != LpMethod::simplex && !settled) {
            clp.setMaximumSeconds(settings.time_limit - seconds_since(started));
            // A barrier run off towards infinity ends at a huge point that
            // the simplex from there takes for optimal: such a point is
            // checked from a slack basis instead.
            const double *x = clp.primalColumnSolution();
            double largest = 0.0;
            for (int64_t j = 0; j < model.ncol; ++j) largest = std::max(largest, std::fabs(x[j]));
            if (largest >= 1e-4 * settings.infinite_bound) {
                ClpSimplex copy(clp);
                copy.allSlackBasis(true);
                copy.primal();
                status = copy.status();
            } else if (settings.crossover || status != 0) {
                clp.primal(1);
                status = clp.status();
            } else {
                ClpSimplex copy(clp);
                copy.primal(1);
                if (copy.status() != 0) status = copy.status();
            }
        }
    } catch (const CoinError &) {
        status = 4;
    }
    r.seconds = seconds_since(started);
    r.user_exception = calls.exception();

    switch (status) {
    case 0: r.end = LpEnd::optimal; break;
    case 1: r.end = LpEnd::infeasible; break;
    case 2: r.end = LpEnd::unbounded; break;
    case 3: r.end = r.seconds >= settings.time_limit ? LpEnd::time_limit : LpEnd::iteration_limit; break;
    case 5: r.end = calls.stopped() ? LpEnd::user_stop : LpEnd::numerical; break;
    default: r.end = LpEnd::numerical; break;
    }
    r.iterations = clp.numberIterations();
    r.primal_infeasibility = clp.sumPrimalInfeasibilities();
    r.dual_infeasibility = clp.sumDualInfeasibilities();

    const double *x = clp.primalColumnSolution(), *dj = clp.dualColumnSolution(),
                 *y = clp.dualRowSolution();
    r.has_point = x && dj && y;
    if (r.has_point) {
        const double sense = model.maximize ? -1.0 : 1.0;
        r.x.assign(x, x + model.ncol);
        r.u.resize(size_t(model.ncol + model.nrow));
        for (int64_t j = 0; j < model.ncol; ++j) r.u[size_t(j)] = sense * dj[j];
        for (int64_t i = 0; i < model.nrow; ++i) r.u[size_t(model.ncol + i)] = sense * y[i];
        r.objective = sense * clp.objectiveValue() + model.constant;
    }
    return r;
}

}  // namespace kor::opt
