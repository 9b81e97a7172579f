// The problem data behind a handle's header: everything the definition
// routines e04rb..e04rt store, the results a solver leaves, the options and
// the phase.  Only the suite's own code includes this header.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "opt/handle.hpp"
#include "opt/options.hpp"

namespace kor::opt {

// A sparse matrix in coordinate form (1-based indices), entries in the
// order the caller gave them.
struct Coordinates {
    std::vector<int64_t> row, col;
    std::vector<double> value;  // empty for a structure without values
    size_t size() const { return row.size(); }
};

enum class ObjectiveKind { none, linear, quadratic, nonlinear, least_squares };

struct Objective {
    ObjectiveKind kind = ObjectiveKind::none;
    double constant = 0.0;           // from e04rs/e04rt with idqc = -1
    // linear part: dense (e04re) or sparse (e04rf, e04rs/e04rt)
    bool dense = false;
    std::vector<double> cvec;        // dense: nvar values
    std::vector<int64_t> idxc;       // sparse: indices (ascending for e04rf)
    std::vector<double> c;
    // quadratic part: upper triangle of H (e04rf) or of Q (e04rs), or F (e04rt)
    Coordinates h;
    bool factorized = false;
    int64_t mf = 0;
    Coordinates f;
    // nonlinear objective (e04rg): gradient sparsity
    std::vector<int64_t> idxfd;
    // least squares (e04rm)
    int64_t nres = 0;
    bool sparse_residuals = false;
    Coordinates rd;                  // row: variable, col: residual
};

// Variable properties (e04rc): integrality and whether the variable enters
// only linearly.
enum class Integrality : int8_t { continuous = 0, binary = 1, integer = 2 };
struct VariableProperty {
    Integrality integrality = Integrality::continuous;
    bool linear = false;
};

// Linear constraints (e04rj): rows numbered 1.. across all blocks in order
// of definition; the entries of every row in one coordinate list.
struct LinearConstraints {
    std::vector<double> bl, bu;
    Coordinates b;  // row: constraint number (global), col: variable
    int64_t rows() const { return int64_t(bl.size()); }
};

struct NonlinearConstraints {
    bool defined = false;
    std::vector<double> bl, bu;
    Coordinates jac;  // structure only
    int64_t count() const { return int64_t(bl.size()); }
};

// Hessian structures (e04rl): key -1 (Lagrangian), 0 (objective) or the
// constraint number.
using HessianStructures = std::map<int64_t, Coordinates>;

enum class ConeType : int8_t { quadratic = 1, rotated_quadratic = 2 };
struct Cone {
    ConeType type = ConeType::quadratic;
    std::vector<int64_t> members;
};

struct QuadraticConstraint {
    double constant = 0.0;
    double bl = 0.0, bu = 0.0;
    std::vector<int64_t> idxr;
    std::vector<double> r;
    bool factorized = false;
    int64_t mf = 0;
    Coordinates q;  // Q (upper triangle) or F
};

struct MatrixBlock {
    int64_t dim = 0;
    std::vector<int64_t> blksize;     // diagonal sub-blocks
    std::vector<int64_t> nnz;         // entries of A_0 .. A_nvar
    Coordinates a;                    // grouped by matrix, as given
    // bilinear terms (e04rp)
    bool bilinear = false;
    std::vector<int64_t> qi, qj, nnzq;
    Coordinates q;
};

// The data items that solvers leave and e04rx reads (or that a caller
// writes for a solver to read).
enum class ResultItem {
    primal_variables,
    dual_variables,
    dual_cone_variables,
    dual_matrix_variables,
    residual_weights,
    covariance_matrix,
    hessian_matrix,
    slack_variables,
    mcs_list,
};

struct Problem {
    void *header = nullptr;  // the header block this data belongs to
    int64_t nvar = 0;
    std::unique_ptr<OptionStore> options;
    bool solver_running = false;
    bool potato = false;

    std::optional<std::pair<std::vector<double>, std::vector<double>>> bounds;  // e04rh
    std::vector<VariableProperty> properties;  // e04rc: one per variable once any is set, else empty
    Objective objective;
    LinearConstraints linear;
    NonlinearConstraints nonlinear;
    HessianStructures hessians;
    std::vector<Cone> cones;
    std::vector<QuadraticConstraint> quadratic;
    std::vector<MatrixBlock> matrices;
    std::map<ResultItem, std::vector<double>> results;
};

// Allocates a problem of nvar variables with default options and the header
// pointing to it; throws std::bad_alloc (nothing is left allocated then).
void *create_handle(int64_t nvar);
// Frees the problem and the header of a valid handle.
void destroy_handle(void *handle, Problem *problem);

// The way a solver leaves a result for e04rx (and the tests stand in for one).
void store_result(Problem &problem, ResultItem item, std::vector<double> values);

}  // namespace kor::opt
