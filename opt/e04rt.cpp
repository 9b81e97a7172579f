#include "e04rt_def.hpp"
#include "opt/quadratic.hpp"

namespace kor::e04rt {

void engine(frame::Record &rec, void *handle, double s, int64_t mf, int64_t nnzf,
            const int64_t *irowf, const int64_t *icolf, const double *f, int64_t nnzr,
            const int64_t *idxr, const double *r, double bl, double bu, int64_t &idqc) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    if (!opt::check_quadratic_id<Exit>(rec, *p, idqc)) return;
    if (nnzf < 0) return rec.raise<Exit::nnzf_below>(nnzf);
    if (mf <= 0) return rec.raise<Exit::mf_not_positive>(mf);
    opt::QuadraticConstraint qc;
    if (!opt::prepare_quadratic<Exit>(rec, *p, idqc, nnzr, nnzf, idxr, bl, bu, qc)) return;
    if (!opt::check_coordinates<Exit::irowf_range, Exit::icolf_range, Exit::repeated_element>(
            rec, irowf, icolf, nnzf, mf, n))
        return;
    opt::fill_quadratic(qc, s, bl, bu, nnzr, idxr, r, nnzf, irowf, icolf, f);
    qc.factorized = true;
    qc.mf = mf;
    opt::store_quadratic(*p, std::move(qc), idqc);
}

}  // namespace kor::e04rt
