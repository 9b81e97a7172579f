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
    if (!opt::check_bounds<Exit>(rec, *p, ncnln, bl, bu)) return;
    if (!opt::check_coordinates<Exit::irowgd_range, Exit::icolgd_range, Exit::repeated_element>(
            rec, irowgd, icolgd, nnzgd, ncnln, n))
        return;
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
