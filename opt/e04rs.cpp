#include "e04rs_def.hpp"
#include "opt/quadratic.hpp"

namespace kor::e04rs {

void engine(frame::Record &rec, void *handle, double s, int64_t nnzr, const int64_t *idxr,
            const double *r, int64_t nnzq, const int64_t *irowq, const int64_t *icolq,
            const double *q, double bl, double bu, int64_t &idqc) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    const int64_t count = int64_t(p->quadratic.size());
    if (idqc < -1) return rec.raise<Exit::idqc_below>(idqc);
    if (idqc > count) return rec.raise<Exit::idqc_unknown>(idqc, count);
    if (nnzq < 0) return rec.raise<Exit::nnzq_below>(nnzq);
    if (nnzr < 0) return rec.raise<Exit::nnzr_below>(nnzr);
    if (nnzr == 0 && nnzq == 0) return rec.raise<Exit::both_empty>(nnzr, nnzq);
    opt::QuadraticConstraint qc = opt::reserve_quadratic(*p, idqc, nnzr, nnzq);
    if (!opt::check_quadratic_common<Exit>(rec, *p, idqc, nnzr, idxr, bl, bu)) return;
    if (int64_t i = opt::first_outside(irowq, nnzq, 1, n); i >= 0)
        return rec.raise<Exit::irowq_range>(i + 1, irowq[i], n);
    if (int64_t i = opt::first_outside(icolq, nnzq, 1, n); i >= 0)
        return rec.raise<Exit::icolq_range>(i + 1, icolq[i], n);
    if (int64_t i = opt::first_below_diagonal(irowq, icolq, nnzq); i >= 0)
        return rec.raise<Exit::irowq_below_diagonal>(i + 1, irowq[i], icolq[i]);
    if (opt::Repeat rp = opt::first_repeated_pair(irowq, icolq, nnzq, n, n); rp.found)
        return rec.raise<Exit::repeated_element>(rp.row, rp.col);
    opt::fill_quadratic(qc, s, bl, bu, nnzr, idxr, r, nnzq, irowq, icolq, q);
    opt::store_quadratic(*p, std::move(qc), idqc);
}

}  // namespace kor::e04rs
