#include "e04rk_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rk {

void engine(frame::Record &rec, void *handle, int64_t ncnln, const double *bl, const double *bu,
            int64_t nnzgd, const int64_t *irowgd, const int64_t *icolgd) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    if (ncnln < 0) return rec.raise<Exit::ncnln_below>(ncnln);
    if (nnzgd <= 0) return rec.raise<Exit::nnzgd_not_positive>(nnzgd);
    opt::NonlinearConstraints nc;
    opt::reserve_for(nc.bl, ncnln);
    opt::reserve_for(nc.bu, ncnln);
    opt::reserve_for(nc.jac.row, nnzgd);
    opt::reserve_for(nc.jac.col, nnzgd);
    const double big = opt::infinite_bound(*p);
    for (int64_t j = 0; j < ncnln; ++j) {
        if (!(bl[j] <= bu[j])) return rec.raise<Exit::crossed>(j + 1, bl[j], bu[j]);
        if (bl[j] >= big) return rec.raise<Exit::lower_infinite>(j + 1, bl[j], big);
        if (bu[j] <= -big) return rec.raise<Exit::upper_infinite>(j + 1, bu[j], big);
    }
    if (int64_t i = opt::first_outside(irowgd, nnzgd, 1, ncnln); i >= 0)
        return rec.raise<Exit::irowgd_range>(i + 1, irowgd[i], ncnln);
    if (int64_t i = opt::first_outside(icolgd, nnzgd, 1, n); i >= 0)
        return rec.raise<Exit::icolgd_range>(i + 1, icolgd[i], n);
    if (opt::Repeat r = opt::first_repeated_pair(irowgd, icolgd, nnzgd, ncnln, n); r.found)
        return rec.raise<Exit::repeated_element>(r.row, r.col);
    nc.defined = true;
    nc.bl.assign(bl, bl + ncnln);
    nc.bu.assign(bu, bu + ncnln);
    nc.jac.row.assign(irowgd, irowgd + nnzgd);
    nc.jac.col.assign(icolgd, icolgd + nnzgd);
    p->nonlinear = std::move(nc);
    // Hessian structures of the constraints held before no longer apply.
    p->hessians.clear();
}

}  // namespace kor::e04rk
