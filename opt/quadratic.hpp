// What e04rs and e04rt share: the checks of the identifier, the bounds and
// the sparse linear part, and storing the result as a constraint or as the
// objective.
#pragma once

#include "opt/engine.hpp"

namespace kor::opt {

// A quadratic function's storage, reserved before the caller's arrays are
// read so that a count too large to hold fails with the allocation report
// and changes nothing.  `nnzm` entries of the matrix part (Q or F), `nnzr`
// of the linear part.
QuadraticConstraint reserve_quadratic(Problem &p, int64_t idqc, int64_t nnzr, int64_t nnzm);

// Copies the caller's checked arrays into the reserved storage.
void fill_quadratic(QuadraticConstraint &qc, double s, double bl, double bu, int64_t nnzr,
                    const int64_t *idxr, const double *r, int64_t nnzm, const int64_t *row,
                    const int64_t *col, const double *value);

// Stores a checked quadratic function: idqc = -1 makes it the objective
// (discarding the old one and every Hessian structure), 0 adds a
// constraint and returns its identifier, > 0 replaces that constraint.
void store_quadratic(Problem &p, QuadraticConstraint qc, int64_t &idqc);

// The identifier: -1 the objective, 0 a new constraint, or a constraint
// already defined.  Returns false after raising.
template <class Exit>
bool check_quadratic_id(frame::Record &rec, const Problem &p, int64_t idqc) {
    const int64_t count = int64_t(p.quadratic.size());
    if (idqc < -1) return rec.raise<typename Exit::idqc_below>(idqc), false;
    if (idqc > count) return rec.raise<typename Exit::idqc_unknown>(idqc, count), false;
    return true;
}

// The checks both routines make after their own counts, in their order, as
// a template over the routine's exits: nnzr, the function not empty, then
// (with qc reserved before the caller's arrays are read) the bounds and
// the linear part.  `nnzm` is nnzq or nnzf.  Returns false after raising.
template <class Exit>
bool prepare_quadratic(frame::Record &rec, Problem &p, int64_t idqc, int64_t nnzr, int64_t nnzm,
                       const int64_t *idxr, double bl, double bu, QuadraticConstraint &qc) {
    if (nnzr < 0) return rec.raise<typename Exit::nnzr_below>(nnzr), false;
    if (nnzr == 0 && nnzm == 0) return rec.raise<typename Exit::both_empty>(nnzr, nnzm), false;
    qc = reserve_quadratic(p, idqc, nnzr, nnzm);
    const int64_t n = p.nvar;
    if (idqc >= 0) {
        const double big = infinite_bound(p);
        if (!(bl <= bu)) return rec.raise<typename Exit::bounds_crossed>(bl, bu), false;
        if (!(bl < big)) return rec.raise<typename Exit::lower_infinite>(bl, big), false;
        if (!(bu > -big)) return rec.raise<typename Exit::upper_infinite>(bu, big), false;
    }
    if (int64_t i = first_outside(idxr, nnzr, 1, n); i >= 0)
        return rec.raise<typename Exit::idxr_range>(i + 1, idxr[i], n), false;
    if (Repeat r = first_repeated(idxr, nnzr); r.found)
        return rec.raise<typename Exit::idxr_repeated>(r.row), false;
    return true;
}

}  // namespace kor::opt
