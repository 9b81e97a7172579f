#include "opt/printer.hpp"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "frame/units.hpp"
#include "opt/engine.hpp"

namespace kor::opt {

namespace {

struct Keyword {
    const char *text;
    Section section;
};

constexpr Keyword keywords[] = {
    {"OVERVIEW", Section::overview},
    {"SIMPLE BOUNDS", Section::simple_bounds},
    {"LINEAR CONSTRAINTS BOUNDS", Section::linear_bounds},
    {"LINEAR CONSTRAINTS DETAILED", Section::linear_detailed},
    {"NONLINEAR CONSTRAINTS BOUNDS", Section::nonlinear_bounds},
    {"NONLINEAR CONSTRAINTS DETAILED", Section::nonlinear_detailed},
    {"QUADRATIC CONSTRAINTS DETAILED", Section::quadratic_detailed},
    {"CONE CONSTRAINTS", Section::cones},
    {"CONE CONSTRAINTS DETAILED", Section::cones_detailed},
    {"MATRIX CONSTRAINTS", Section::matrices},
    {"MATRIX CONSTRAINTS DETAILED", Section::matrices_detailed},
    {"MULTIPLIERS SIZES", Section::multipliers},
    {"OPTIONS", Section::options},
    {"ALL OPTIONS", Section::all_options},
    {"OBJECTIVE", Section::objective},
    {"$DUMP$ALL$", Section::dump_all},
    {"$DUMP$ALMOST$ALL$", Section::dump_almost_all},
    {"$TASKS$", Section::tasks},
    {"$TIDS$", Section::task_ids},
    {"$VALIDITY$", Section::validity},
    {"POTATO", Section::potato},
};

// Collects the records of a section and stops at the first that cannot
// be written.
class Out {
public:
    Out(int64_t unit) : unit_(unit) {}
    bool ok() const { return ok_; }
    int64_t unit() const { return unit_; }
    void line(std::string_view text) {
        if (ok_) ok_ = frame::units::write_record(unit_, text);
    }
    template <class... Args>
    void format(const char *pattern, Args... args) {
        char buffer[256];
        std::snprintf(buffer, sizeof buffer, pattern, args...);
        line(buffer);
    }
    void fail() { ok_ = false; }

private:
    int64_t unit_;
    bool ok_ = true;
};

// A bound as printed: beyond bigbnd it is infinite.
std::string bound_text(double v, double big) {
    if (v <= -big) return "-inf";
    if (v >= big) return "inf";
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.6e", v);
    return buffer;
}

std::string real_text(double v) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%14.6e", v);
    return buffer;
}

void label(Out &out, const char *name, const std::string &value) {
    out.format("   %-25s%s", name, value.c_str());
}

std::string count_or_none(int64_t n) { return n > 0 ? std::to_string(n) : "not defined"; }

const char *objective_kind(const Objective &o) {
    switch (o.kind) {
    case ObjectiveKind::linear: return "linear";
    case ObjectiveKind::quadratic: return "quadratic";
    case ObjectiveKind::nonlinear: return "nonlinear";
    case ObjectiveKind::least_squares: return "nonlinear least-squares";
    default: return "not defined";
    }
}

void overview(Out &out, const Problem &p) {
    out.line(" Overview");
    label(out, "Status:", p.solver_running ? "Problem is being solved, no changes allowed."
                                           : "Problem and option settings are editable.");
    label(out, "No of variables:", std::to_string(p.nvar));
    label(out, "Objective function:", objective_kind(p.objective));
    label(out, "Simple bounds:", p.bounds ? "defined" : "not defined");
    label(out, "Linear constraints:", count_or_none(p.linear.rows()));
    label(out, "Nonlinear constraints:", p.nonlinear.defined ? std::to_string(p.nonlinear.count()) : "not defined");
    label(out, "Cone constraints:", count_or_none(int64_t(p.cones.size())));
    label(out, "Quadratic constraints:", count_or_none(int64_t(p.quadratic.size())));
    label(out, "Matrix constraints:", count_or_none(int64_t(p.matrices.size())));
}

void no_constraints(Out &out) { out.line("   no constraints defined"); }

void bounds_table(Out &out, const char *prefix, const std::vector<double> &bl,
                  const std::vector<double> &bu, double big) {
    out.format("   %-12s %14s %14s", "", "lower bound", "upper bound");
    for (size_t i = 0; i < bl.size() && out.ok(); ++i) {
        const std::string name = std::string(prefix) + "[" + std::to_string(i + 1) + "]";
        out.format("   %-12s %14s %14s", name.c_str(), bound_text(bl[i], big).c_str(),
                   bound_text(bu[i], big).c_str());
    }
}

void simple_bounds(Out &out, const Problem &p) {
    out.line(" Simple bounds");
    if (!p.bounds) return no_constraints(out);
    bounds_table(out, "x", p.bounds->first, p.bounds->second, infinite_bound(p));
}

void linear_bounds(Out &out, const Problem &p) {
    out.line(" Linear constraints bounds");
    if (p.linear.rows() == 0) return no_constraints(out);
    bounds_table(out, "l", p.linear.bl, p.linear.bu, infinite_bound(p));
}

// Entry positions of a coordinate matrix ordered by row, then column.
std::vector<size_t> row_order(const Coordinates &m) {
    std::vector<size_t> order(m.size());
    for (size_t k = 0; k < order.size(); ++k) order[k] = k;
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return m.row[a] != m.row[b] ? m.row[a] < m.row[b] : m.col[a] < m.col[b];
    });
    return order;
}

void linear_detailed(Out &out, const Problem &p) {
    out.line(" Linear constraints (detailed)");
    const LinearConstraints &lc = p.linear;
    if (lc.rows() == 0) return no_constraints(out);
    const double big = infinite_bound(p);
    const std::vector<size_t> order = row_order(lc.b);
    size_t k = 0;
    for (int64_t r = 1; r <= lc.rows() && out.ok(); ++r) {
        size_t end = k;
        while (end < order.size() && lc.b.row[order[end]] == r) ++end;
        out.format("   l[%" PRId64 "]: bounds %s, %s; %zu nonzeros", r,
                   bound_text(lc.bl[size_t(r - 1)], big).c_str(),
                   bound_text(lc.bu[size_t(r - 1)], big).c_str(), end - k);
        for (; k < end && out.ok(); ++k)
            out.format("      x[%" PRId64 "] %s", lc.b.col[order[k]], real_text(lc.b.value[order[k]]).c_str());
    }
}

void nonlinear_bounds(Out &out, const Problem &p) {
    out.line(" Nonlinear constraints bounds");
    if (!p.nonlinear.defined || p.nonlinear.count() == 0) return no_constraints(out);
    bounds_table(out, "n", p.nonlinear.bl, p.nonlinear.bu, infinite_bound(p));
}

// Variable indices, eight to a record.
void index_list(Out &out, const char *indent, const std::vector<int64_t> &v) {
    std::string line = indent;
    int on_line = 0;
    for (int64_t j : v) {
        line += " x[" + std::to_string(j) + "]";
        if (++on_line == 8) {
            out.line(line);
            line = indent;
            on_line = 0;
        }
    }
    if (on_line) out.line(line);
}

void nonlinear_detailed(Out &out, const Problem &p) {
    out.line(" Sparsity pattern of the nonlinear constraints");
    const NonlinearConstraints &nc = p.nonlinear;
    if (!nc.defined || nc.count() == 0) return no_constraints(out);
    const std::vector<size_t> order = row_order(nc.jac);
    size_t k = 0;
    for (int64_t r = 1; r <= nc.count() && out.ok(); ++r) {
        std::vector<int64_t> cols;
        for (; k < order.size() && nc.jac.row[order[k]] == r; ++k) cols.push_back(nc.jac.col[order[k]]);
        out.format("   n[%" PRId64 "]: %zu nonzeros", r, cols.size());
        index_list(out, "     ", cols);
    }
}

void sparse_vector(Out &out, const std::vector<int64_t> &idx, const std::vector<double> &v) {
    for (size_t k = 0; k < idx.size() && out.ok(); ++k)
        out.format("         x[%" PRId64 "] %s", idx[k], real_text(v[k]).c_str());
}

void matrix_entries(Out &out, const char *indent, const Coordinates &m, size_t begin, size_t end) {
    for (size_t k = begin; k < end && out.ok(); ++k) {
        const std::string at = "(" + std::to_string(m.row[k]) + "," + std::to_string(m.col[k]) + ")";
        if (m.value.empty())
            out.format("%s%s", indent, at.c_str());
        else
            out.format("%s%-16s %s", indent, at.c_str(), real_text(m.value[k]).c_str());
    }
}

void quadratic_function(Out &out, double constant, const std::vector<int64_t> &idx,
                        const std::vector<double> &r, bool factorized, int64_t mf,
                        const Coordinates &q) {
    out.format("      constant part %s", real_text(constant).c_str());
    if (!idx.empty()) {
        out.line("      linear part");
        sparse_vector(out, idx, r);
    }
    if (q.size()) {
        if (factorized)
            out.format("      quadratic part (factorized quadratic term), F with %" PRId64 " rows", mf);
        else
            out.line("      quadratic part");
        matrix_entries(out, "         ", q, 0, q.size());
    }
}

void quadratic_detailed(Out &out, const Problem &p) {
    out.line(" Quadratic constraints (detailed)");
    if (p.quadratic.empty()) return no_constraints(out);
    const double big = infinite_bound(p);
    for (size_t i = 0; i < p.quadratic.size() && out.ok(); ++i) {
        const QuadraticConstraint &qc = p.quadratic[i];
        out.format("   q[%zu]: bounds %s, %s", i + 1, bound_text(qc.bl, big).c_str(),
                   bound_text(qc.bu, big).c_str());
        quadratic_function(out, qc.constant, qc.idxr, qc.r, qc.factorized, qc.mf, qc.q);
    }
}

void cones(Out &out, const Problem &p, bool detailed) {
    out.line(" Cone constraints");
    if (p.cones.empty()) return no_constraints(out);
    for (size_t i = 0; i < p.cones.size() && out.ok(); ++i) {
        const Cone &c = p.cones[i];
        out.format("   cone %zu: %s, %zu variables", i + 1,
                   c.type == ConeType::quadratic ? "quadratic" : "rotated quadratic", c.members.size());
        if (detailed) index_list(out, "     ", c.members);
    }
}

void matrices(Out &out, const Problem &p, bool detailed) {
    out.line(detailed ? " Matrix constraints (detailed)" : " Matrix constraints");
    if (p.matrices.empty()) return no_constraints(out);
    for (size_t i = 0; i < p.matrices.size() && out.ok(); ++i) {
        const MatrixBlock &m = p.matrices[i];
        out.format("   matrix constraint %zu: dimension %" PRId64 ", %zu diagonal blocks, polynomial of order %d",
                   i + 1, m.dim, m.blksize.size(), m.bilinear ? 2 : 1);
        if (!detailed) continue;
        std::string sizes = "      block sizes:";
        for (int64_t s : m.blksize) {
            sizes += " " + std::to_string(s);
            if (sizes.size() > 70) {
                out.line(sizes);
                sizes = "      ";
            }
        }
        if (sizes.size() > 6) out.line(sizes);
        size_t start = 0;
        for (size_t k = 0; k < m.nnz.size() && out.ok(); ++k) {
            const size_t count = size_t(m.nnz[k]);
            if (count) {
                out.format("      A_%zu: %zu entries", k, count);
                matrix_entries(out, "         ", m.a, start, start + count);
            }
            start += count;
        }
        start = 0;
        for (size_t k = 0; k < m.nnzq.size() && out.ok(); ++k) {
            const size_t count = size_t(m.nnzq[k]);
            out.format("      Q_%zu of x[%" PRId64 "]*x[%" PRId64 "]: %zu entries", k + 1, m.qi[k], m.qj[k], count);
            matrix_entries(out, "         ", m.q, start, start + count);
            start += count;
        }
    }
}

void multipliers(Out &out, const Problem &p) {
    // Each simple bound, linear, nonlinear and quadratic constraint has a
    // multiplier for its lower and one for its upper bound; a cone one per
    // member; a matrix constraint one per element of the upper triangle of
    // each diagonal block.
    out.line(" Lagrangian multipliers sizes");
    const int64_t bounds = 2 * p.nvar, linear = 2 * p.linear.rows(), nonlinear = 2 * p.nonlinear.count(),
                  quadratic = 2 * int64_t(p.quadratic.size());
    int64_t cone = 0, matrix = 0;
    for (const Cone &c : p.cones) cone += int64_t(c.members.size());
    for (const MatrixBlock &m : p.matrices)
        for (int64_t s : m.blksize) matrix += s * (s + 1) / 2;
    label(out, "Simple bounds:", std::to_string(bounds));
    label(out, "Linear constraints:", std::to_string(linear));
    label(out, "Nonlinear constraints:", std::to_string(nonlinear));
    label(out, "Quadratic constraints:", std::to_string(quadratic));
    label(out, "Cone constraints:", std::to_string(cone));
    label(out, "Total (u):", std::to_string(bounds + linear + nonlinear + quadratic + cone));
    label(out, "Matrix constraints (ua):", std::to_string(matrix));
}

void objective(Out &out, const Problem &p) {
    out.line(" Objective function");
    const Objective &o = p.objective;
    switch (o.kind) {
    case ObjectiveKind::none: out.line("   not defined"); return;
    case ObjectiveKind::linear: {
        out.line("   linear part");
        for (size_t j = 0; j < o.cvec.size() && out.ok(); ++j)
            if (o.cvec[j] != 0.0) out.format("      x[%zu] %s", j + 1, real_text(o.cvec[j]).c_str());
        return;
    }
    case ObjectiveKind::quadratic:
        if (o.constant != 0.0) out.format("   constant part %s", real_text(o.constant).c_str());
        if (!o.idxc.empty()) {
            out.line("   linear part");
            for (size_t k = 0; k < o.idxc.size() && out.ok(); ++k)
                out.format("      x[%" PRId64 "] %s", o.idxc[k], real_text(o.c[k]).c_str());
        }
        if (o.factorized) {
            out.format("   quadratic part (factorized quadratic term), F with %" PRId64 " rows", o.mf);
            matrix_entries(out, "      ", o.f, 0, o.f.size());
        } else if (o.h.size()) {
            out.line("   quadratic part");
            matrix_entries(out, "      ", o.h, 0, o.h.size());
        }
        return;
    case ObjectiveKind::nonlinear:
        out.line("   sparsity pattern of the nonlinear objective");
        index_list(out, "     ", o.idxfd);
        return;
    case ObjectiveKind::least_squares:
        out.format(o.sparse_residuals ? "   sparse nonlinear least-squares objective, %" PRId64 " residuals"
                                      : "   dense nonlinear least-squares objective, %" PRId64 " residuals",
                   o.nres);
        if (o.sparse_residuals) {
            out.line("   sparsity pattern of the residuals");
            matrix_entries(out, "      ", o.rd, 0, o.rd.size());
        }
        return;
    }
}

void validity(Out &out, const Problem &p) {
    out.line(" Handle validity");
    std::string words = "   header:";
    const int64_t *w = static_cast<const int64_t *>(p.header);
    for (int i = 0; i < header_words - 1; ++i) words += " " + std::to_string(w[i]);
    out.line(words);
    out.line("   problem data: present");
    out.line(p.solver_running ? "   phase: solver running" : "   phase: model");
}

void options_section(Out &out, const Problem &p, bool all) {
    out.line(all ? " All option settings" : " Option settings");
    if (out.ok() && !print_options(*p.options, out.unit(), all)) out.fail();
}

void dump(Out &out, Problem &p, bool with_options) {
    out.line(with_options ? " Dump of the handle (all)" : " Dump of the handle (almost all)");
    validity(out, p);
    overview(out, p);
    objective(out, p);
    simple_bounds(out, p);
    linear_detailed(out, p);
    nonlinear_bounds(out, p);
    nonlinear_detailed(out, p);
    out.line(" Hessian structures");
    if (p.hessians.empty()) out.line("   not defined");
    for (const auto &[idf, s] : p.hessians) {
        if (!out.ok()) break;
        out.format(idf == -1 ? "   Lagrangian: %zu entries" : idf == 0 ? "   objective: %zu entries"
                                                                       : "   n[%zu]: %zu entries",
                   idf > 0 ? size_t(idf) : s.size(), s.size());
        matrix_entries(out, "      ", s, 0, s.size());
    }
    quadratic_detailed(out, p);
    cones(out, p, true);
    matrices(out, p, true);
    multipliers(out, p);
    out.line(" Variable properties");
    for (size_t j = 0; j < p.properties.size() && out.ok(); ++j) {
        const VariableProperty &v = p.properties[j];
        if (v.integrality == Integrality::continuous && !v.linear) continue;
        out.format("   x[%zu]: %s%s", j + 1,
                   v.integrality == Integrality::binary ? "binary" :
                   v.integrality == Integrality::integer ? "integer" : "continuous",
                   v.linear ? ", linear" : "");
    }
    out.line(" Results");
    if (p.results.empty()) out.line("   not available");
    for (const auto &[item, values] : p.results) out.format("   item %d: %zu values", int(item), values.size());
    if (with_options) options_section(out, p, true);
}

}  // namespace

bool find_section(const std::string &keyword, Section &section) {
    for (const Keyword &k : keywords)
        if (keyword == k.text) {
            section = k.section;
            return true;
        }
    return false;
}

bool print_section(Problem &p, int64_t unit, Section section) {
    Out out(unit);
    switch (section) {
    case Section::overview: overview(out, p); break;
    case Section::simple_bounds: simple_bounds(out, p); break;
    case Section::linear_bounds: linear_bounds(out, p); break;
    case Section::linear_detailed: linear_detailed(out, p); break;
    case Section::nonlinear_bounds: nonlinear_bounds(out, p); break;
    case Section::nonlinear_detailed: nonlinear_detailed(out, p); break;
    case Section::quadratic_detailed: quadratic_detailed(out, p); break;
    case Section::cones: cones(out, p, false); break;
    case Section::cones_detailed: cones(out, p, true); break;
    case Section::matrices: matrices(out, p, false); break;
    case Section::matrices_detailed: matrices(out, p, true); break;
    case Section::multipliers: multipliers(out, p); break;
    case Section::options: options_section(out, p, false); break;
    case Section::all_options: options_section(out, p, true); break;
    case Section::objective: objective(out, p); break;
    case Section::dump_all: dump(out, p, true); break;
    case Section::dump_almost_all: dump(out, p, false); break;
    case Section::tasks: out.line(" Task queue not available at this phase yet."); break;
    case Section::task_ids: out.line(" Task identifiers not available at this phase yet."); break;
    case Section::validity: validity(out, p); break;
    case Section::potato:
        out.line(p.potato ? " You already have a potato!" : " Congratulations, you found a potato!");
        p.potato = true;
        break;
    }
    return out.ok();
}

}  // namespace kor::opt
