// The LP solvers e04mk (simplex) and e04mt (interior point): the optima of
// the problems in tests/data/opt/lp_problems.txt, checked through the KKT
// conditions computed here from the returned x and u; the exits; the
// monitor's stop and the phase it runs in; the output units.
#include <cmath>
#include <map>

#include "opt/lp.hpp"
#include "opt_support.hpp"
#include "support/data.hpp"

using namespace opt_test;

namespace {

struct Lp {
    std::string name, sense, result;
    R c, bl, bu, rl, ru;
    std::vector<std::map<int64_t, double>> rows;
    int64_t n() const { return int64_t(std::max({c.size(), bl.size(), size_t(2)})); }
};

std::vector<Lp> problems() {
    std::vector<Lp> out;
    for (const Row &r : read_table("opt/lp_problems.txt")) {
        const std::string &key = r.text(0);
        if (key == "problem") {
            out.emplace_back();
            out.back().name = r.text(1), out.back().sense = r.text(2), out.back().result = r.text(3);
        }
        else if (key == "c") out.back().c = r.reals(1);
        else if (key == "bounds") out.back().bl = r.reals(1), out.back().bu = r.reals(2);
        else if (key == "row") {
            Lp &lp = out.back();
            lp.rl.push_back(r.real(1));
            lp.ru.push_back(r.real(2));
            std::map<int64_t, double> entries;
            std::stringstream s(r.text(3));
            for (std::string item; std::getline(s, item, ',');)
                entries[std::stoll(item)] = std::stod(item.substr(item.find(':') + 1));
            lp.rows.push_back(entries);
        }
    }
    return out;
}

void define(void *h, const Lp &lp) {
    KorError f = fresh_error();
    if (!lp.bl.empty()) e04rhc(h, lp.n(), lp.bl.data(), lp.bu.data(), &f);
    if (!lp.c.empty()) e04rec(h, lp.n(), lp.c.data(), &f);
    I irow, icol;
    R b;
    for (size_t i = 0; i < lp.rows.size(); ++i)
        for (auto [j, v] : lp.rows[i]) irow.push_back(int64_t(i) + 1), icol.push_back(j), b.push_back(v);
    int64_t idlc = 0;
    if (!lp.rows.empty())
        e04rjc(h, int64_t(lp.rows.size()), lp.rl.data(), lp.ru.data(), int64_t(b.size()), irow.data(),
               icol.data(), b.data(), &idlc, &f);
    e04zmc(h, "Print Level = 0", &f);
    e04zmc(h, ("Task = " + std::string(lp.sense == "max" ? "Maximize" : lp.sense == "min" ? "Minimize" : "Feasible Point")).c_str(), &f);
    expect_success(f);
}

// Feasibility, c = A'y + z, and each multiplier's sign matching the bound it
// sits on (for a minimization; the other way round for a maximization).
void expect_kkt(const Lp &lp, const R &x, const R &u, double tol) {
    const int64_t n = lp.n();
    const double sense = lp.sense == "max" ? -1.0 : 1.0;
    auto lower = [&](int64_t j) { return lp.bl.empty() ? -inf : lp.bl[size_t(j)]; };
    auto upper = [&](int64_t j) { return lp.bu.empty() ? inf : lp.bu[size_t(j)]; };
    auto on_sign = [&](double m, double v, double lo, double hi, const std::string &what) {
        EXPECT_GE(v, lo - tol) << what;
        EXPECT_LE(v, hi + tol) << what;
        if (sense * m > tol) {
            EXPECT_NEAR(v, lo, tol) << what << " multiplier " << m;
        }
        if (sense * m < -tol) {
            EXPECT_NEAR(v, hi, tol) << what << " multiplier " << m;
        }
    };
    R grad(size_t(n), 0.0);
    for (size_t i = 0; i < lp.rows.size(); ++i) {
        double activity = 0.0;
        for (auto [j, v] : lp.rows[i]) activity += v * x[size_t(j - 1)], grad[size_t(j - 1)] += v * u[size_t(n) + i];
        on_sign(u[size_t(n) + i], activity, lp.rl[i], lp.ru[i], lp.name + " row " + std::to_string(i + 1));
    }
    for (int64_t j = 0; j < n; ++j) {
        const double cj = lp.c.empty() || lp.sense == "feasible" ? 0.0 : lp.c[size_t(j)];
        EXPECT_NEAR(cj, grad[size_t(j)] + u[size_t(j)], tol) << lp.name << " stationarity at " << j + 1;
        on_sign(u[size_t(j)], x[size_t(j)], lower(j), upper(j), lp.name + " x" + std::to_string(j + 1));
    }
}

using Solver = void (*)(void *, int64_t, double[], int64_t, double[], double[], double[],
                        void (*)(void *, const double[], const double[], int64_t *, Kor_Comm *),
                        Kor_Comm *, KorError *);

struct Way {
    const char *name;
    Solver solve;
    const char *option;
};
const Way ways[] = {
    {"dual simplex", e04mkc, "Simplex Strategy = Dual"},
    {"primal simplex", e04mkc, "Simplex Strategy = Primal"},
    {"simplex by barrier and crossover", e04mkc, "Simplex Solver = IPM"},
    {"barrier", e04mtc, "LP Presolve = None"},
    {"barrier without crossover", e04mtc, "Simplex Run Crossover = No"},
};

TEST(Lp, KnownOptimaMeetTheKktConditions) {
    for (const Lp &lp : problems())
        for (const Way &way : ways) {
            SCOPED_TRACE(lp.name + " by " + way.name);
            Handle h(lp.n());
            define(h.get(), lp);
            KorError f = fresh_error();
            e04zmc(h.get(), way.option, &f);
            const int64_t n = lp.n(), nu = n + int64_t(lp.rows.size());
            R x(size_t(n), opt_test::nan), u(size_t(nu), opt_test::nan), rinfo(100), stats(100);
            way.solve(h.get(), n, x.data(), nu, u.data(), rinfo.data(), stats.data(), nullptr, nullptr, &f);
            if (lp.result == "infeasible") {
                exit_values<kor::e04mk::Exit::infeasible>(kor::e04mk::info, f);
                continue;
            }
            if (lp.result == "unbounded") {
                exit_values<kor::e04mk::Exit::unbounded>(kor::e04mk::info, f);
                continue;
            }
            expect_success(f);
            const bool interior = std::string(way.name) == "barrier without crossover";
            const double tol = interior ? 1e-6 : 1e-9;
            EXPECT_NEAR(rinfo[0], std::stod(lp.result), tol * 10);
            expect_kkt(lp, x, u, tol);
            R from_handle = R(size_t(n));
            e04rxc(h.get(), "PRIMAL VARIABLES", 0, n, from_handle.data(), &f);
            EXPECT_EQ(from_handle, x);
        }
}

int64_t monitor_calls;
void stop_at_second(void *, const double[], const double stats[], int64_t *inform, Kor_Comm *) {
    ++monitor_calls;
    if (stats[0] >= 2) *inform = -1;
}

// The monitor runs in the solve phase: a second solve and any change are refused.
void change_from_monitor(void *h, const double[], const double[], int64_t *, Kor_Comm *) {
    ++monitor_calls;
    KorError f = fresh_error();
    double x[3], rinfo[100], stats[100];
    e04mkc(h, 3, x, 0, nullptr, rinfo, stats, nullptr, nullptr, &f);
    exit_values<kor::e04mk::Exit::already_solving>(kor::e04mk::info, f);
    e04zmc(h, "Print Level = 1", &f);
    EXPECT_EQ(f.code, NE_PHASE);
    const double bl[3] = {0, 0, 0}, bu[3] = {1, 1, 1};
    e04rhc(h, 3, bl, bu, &f);
    EXPECT_EQ(f.code, NE_PHASE);
}

TEST(Lp, MonitorStopsAndCannotChangeTheHandle) {
    const Lp lp = problems().front();
    for (auto monit : {stop_at_second, change_from_monitor}) {
        Handle h(3);
        define(h.get(), lp);
        KorError f = fresh_error();
        e04zmc(h.get(), "Monitor Frequency = 1", &f);
        e04zmc(h.get(), "Simplex Presolve = No", &f);
        R x(3), rinfo(100), stats(100);
        monitor_calls = 0;
        e04mkc(h.get(), 3, x.data(), 0, nullptr, rinfo.data(), stats.data(), monit, nullptr, &f);
        if (monit == stop_at_second) {
            exit_values<kor::e04mk::Exit::user_stop>(kor::e04mk::info, f);
            EXPECT_EQ(monitor_calls, 2);
        } else {
            expect_success(f);
            EXPECT_GE(monitor_calls, 1);
            EXPECT_NEAR(rinfo[0], 13.0, 1e-9);
        }
    }
}

TEST(Lp, Exits) {
    using E = kor::e04mk::Exit;
    const auto &info = kor::e04mk::info;
    const Lp lp = problems().front();
    R x(3), u(6), rinfo(100), stats(100);
    auto solve = [&](Handle &h, int64_t nvar, int64_t nu) {
        KorError f = fresh_error();
        e04mkc(h.get(), nvar, x.data(), nu, u.data(), rinfo.data(), stats.data(), nullptr, nullptr, &f);
        return f;
    };
    Handle h(3);
    define(h.get(), lp);
    EXPECT_EQ(exit_values<E::nvar_mismatch>(info, solve(h, 4, 0)), (std::vector<std::string>{"4", "3"}));
    EXPECT_EQ(exit_values<E::nu_invalid>(info, solve(h, 3, 5)), (std::vector<std::string>{"5", "6"}));

    KorError f = fresh_error();
    e04zmc(h.get(), "Simplex Iteration Limit = 1", &f);
    e04zmc(h.get(), "Simplex Presolve = No", &f);
    EXPECT_EQ(exit_values<E::iteration_limit>(info, solve(h, 3, 6)), (std::vector<std::string>{"1"}));
    EXPECT_EQ(stats[0], 1.0);

    // A quadratic term makes it more than an LP.
    const int64_t one = 1;
    const double two = 2.0;
    e04rfc(h.get(), 0, nullptr, nullptr, 1, &one, &one, &two, &f);
    exit_values<E::setup_error>(info, solve(h, 3, 6));

    // Sizes the engine's 32-bit indices cannot hold are refused before anything is built.
    Handle huge(int64_t(1) << 31);
    EXPECT_EQ(exit_values<E::too_large>(info, solve(huge, int64_t(1) << 31, 0)),
              (std::vector<std::string>{"nvar", "2147483648", "2147483647"}));
}

// The listing names the options without counterpart in the engine; the
// engine's own log goes to the unit, nothing to the standard streams.
TEST(Lp, OutputGoesToTheUnitsOnly) {
    ScratchDir scratch;
    const std::string path = scratch.file("lp.txt");
    const int64_t unit = open_unit(path, 1);
    for (Solver solve : {e04mkc, e04mtc}) {
        Handle h(3);
        define(h.get(), problems().front());
        KorError f = fresh_error();
        e04zmc(h.get(), ("Print File = " + std::to_string(unit)).c_str(), &f);
        e04zmc(h.get(), "Print Level = 5", &f);
        e04zmc(h.get(), "Print Solution = All", &f);
        R x(3), rinfo(100), stats(100);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        solve(h.get(), 3, x.data(), 0, nullptr, rinfo.data(), stats.data(), nullptr, nullptr, &f);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        expect_success(f);
    }
    close_unit(unit);
    const std::string text = read_file(path);
    EXPECT_NE(text.find("Simplex Concurrent Limit"), std::string::npos);
    EXPECT_NE(text.find("LPIPM Centrality Correctors"), std::string::npos);
    EXPECT_NE(text.find("(no effect in this solver)"), std::string::npos);
    EXPECT_NE(text.find("Clp"), std::string::npos) << "the engine's log at print level 5";
    EXPECT_NE(text.find("Status: Optimal solution found."), std::string::npos);
}

}  // namespace
