#include "e04rf_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rf {

void engine(frame::Record &rec, void *handle, int64_t nnzc, const int64_t *idxc, const double *c,
            int64_t nnzh, const int64_t *irowh, const int64_t *icolh, const double *h) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    if (nnzc < 0) return rec.raise<Exit::nnzc_below>(nnzc);
    if (nnzh < 0) return rec.raise<Exit::nnzh_below>(nnzh);
    opt::Objective o;
    opt::reserve_for(o.idxc, nnzc);
    opt::reserve_for(o.c, nnzc);
    opt::reserve_for(o.h.row, nnzh);
    opt::reserve_for(o.h.col, nnzh);
    opt::reserve_for(o.h.value, nnzh);
    for (int64_t i = 0; i < nnzc; ++i) {
        if (idxc[i] < 1 || idxc[i] > n) return rec.raise<Exit::idxc_range>(i + 1, idxc[i], n);
        if (i > 0 && idxc[i - 1] >= idxc[i])
            return rec.raise<Exit::idxc_not_ascending>(i, idxc[i - 1], idxc[i]);
    }
    if (!opt::check_coordinates<Exit::irowh_range, Exit::icolh_range, Exit::repeated_element,
                                Exit::irowh_below_diagonal>(rec, irowh, icolh, nnzh, n, n))
        return;

    o.kind = opt::ObjectiveKind::quadratic;
    o.idxc.assign(idxc, idxc + nnzc);
    o.c.assign(c, c + nnzc);
    o.h.row.assign(irowh, irowh + nnzh);
    o.h.col.assign(icolh, icolh + nnzh);
    o.h.value.assign(h, h + nnzh);
    p->objective = std::move(o);
    p->hessians.clear();
}

}  // namespace kor::e04rf
