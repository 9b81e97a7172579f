#include "e04rt_def.hpp"
#include "opt/quadratic.hpp"

namespace kor::e04rt {

void engine(frame::Record &rec, void *handle, double s, int64_t mf, int64_t nnzf,
            const int64_t *irowf, const int64_t *icolf, const double *f, int64_t nnzr,
            const int64_t *idxr, const double *r, double bl, double bu, int64_t &idqc) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    const int64_t count = int64_t(p->quadratic.size());
    if (idqc < -1) return rec.raise<Exit::idqc_below>(idqc);
    if (idqc > count) return rec.raise<Exit::idqc_unknown>(idqc, count);
    if (nnzf < 0) return rec.raise<Exit::nnzf_below>(nnzf);
    if (mf <= 0) return rec.raise<Exit::mf_not_positive>(mf);
    if (nnzr < 0) return rec.raise<Exit::nnzr_below>(nnzr);
    if (nnzr == 0 && nnzf == 0) return rec.raise<Exit::both_empty>(nnzr, nnzf);
    opt::QuadraticConstraint qc = opt::reserve_quadratic(*p, idqc, nnzr, nnzf);
    if (!opt::check_quadratic_common<Exit>(rec, *p, idqc, nnzr, idxr, bl, bu)) return;
    if (int64_t i = opt::first_outside(irowf, nnzf, 1, mf); i >= 0)
        return rec.raise<Exit::irowf_range>(i + 1, irowf[i], mf);
    if (int64_t i = opt::first_outside(icolf, nnzf, 1, n); i >= 0)
        return rec.raise<Exit::icolf_range>(i + 1, icolf[i], n);
    if (opt::Repeat rp = opt::first_repeated_pair(irowf, icolf, nnzf, mf, n); rp.found)
        return rec.raise<Exit::repeated_element>(rp.row, rp.col);
    opt::fill_quadratic(qc, s, bl, bu, nnzr, idxr, r, nnzf, irowf, icolf, f);
    qc.factorized = true;
    qc.mf = mf;
    opt::store_quadratic(*p, std::move(qc), idqc);
}

}  // namespace kor::e04rt
