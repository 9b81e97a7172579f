#include "opt/quadratic.hpp"

namespace kor::opt {

QuadraticConstraint reserve_quadratic(Problem &p, int64_t idqc, int64_t nnzr, int64_t nnzm) {
    QuadraticConstraint qc;
    reserve_for(qc.idxr, nnzr);
    reserve_for(qc.r, nnzr);
    reserve_for(qc.q.row, nnzm);
    reserve_for(qc.q.col, nnzm);
    reserve_for(qc.q.value, nnzm);
    if (idqc == 0) reserve_for(p.quadratic, int64_t(p.quadratic.size()) + 1);
    return qc;
}

void fill_quadratic(QuadraticConstraint &qc, double s, double bl, double bu, int64_t nnzr,
                    const int64_t *idxr, const double *r, int64_t nnzm, const int64_t *row,
                    const int64_t *col, const double *value) {
    qc.constant = s;
    qc.bl = bl;
    qc.bu = bu;
    qc.idxr.assign(idxr, idxr + nnzr);
    qc.r.assign(r, r + nnzr);
    qc.q.row.assign(row, row + nnzm);
    qc.q.col.assign(col, col + nnzm);
    qc.q.value.assign(value, value + nnzm);
}

void store_quadratic(Problem &p, QuadraticConstraint qc, int64_t &idqc) {
    if (idqc == -1) {
        Objective o;
        o.kind = ObjectiveKind::quadratic;
        o.constant = qc.constant;
        o.idxc = std::move(qc.idxr);
        o.c = std::move(qc.r);
        o.factorized = qc.factorized;
        o.mf = qc.mf;
        (qc.factorized ? o.f : o.h) = std::move(qc.q);
        p.objective = std::move(o);
        p.hessians.clear();
    } else if (idqc == 0) {
        p.quadratic.push_back(std::move(qc));  // room reserved by the caller
        idqc = int64_t(p.quadratic.size());
    } else {
        p.quadratic[size_t(idqc - 1)] = std::move(qc);
    }
}

}  // namespace kor::opt
