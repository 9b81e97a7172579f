#include "e04rs_def.hpp"
#include "opt/quadratic.hpp"

namespace kor::e04rs {

void engine(frame::Record &rec, void *handle, double s, int64_t nnzr, const int64_t *idxr,
            const double *r, int64_t nnzq, const int64_t *irowq, const int64_t *icolq,
            const double *q, double bl, double bu, int64_t &idqc) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    if (!opt::check_quadratic_id<Exit>(rec, *p, idqc)) return;
    if (nnzq < 0) return rec.raise<Exit::nnzq_below>(nnzq);
    opt::QuadraticConstraint qc;
    if (!opt::prepare_quadratic<Exit>(rec, *p, idqc, nnzr, nnzq, idxr, bl, bu, qc)) return;
    if (!opt::check_coordinates<Exit::irowq_range, Exit::icolq_range, Exit::repeated_element,
                                Exit::irowq_below_diagonal>(rec, irowq, icolq, nnzq, n, n))
        return;
    opt::fill_quadratic(qc, s, bl, bu, nnzr, idxr, r, nnzq, irowq, icolq, q);
    opt::store_quadratic(*p, std::move(qc), idqc);
}

}  // namespace kor::e04rs
