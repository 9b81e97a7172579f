#include "e04rm_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rm {

void engine(frame::Record &rec, void *handle, int64_t nres, int64_t isparse, int64_t nnzrd,
            const int64_t *irowrd, const int64_t *icolrd) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    if (nres < 0) return rec.raise<Exit::nres_below>(nres);
    if (isparse != 0 && isparse != 1) return rec.raise<Exit::isparse_invalid>(isparse);
    opt::Objective o;
    o.kind = opt::ObjectiveKind::least_squares;
    o.nres = nres;
    o.sparse_residuals = isparse == 1;
    if (isparse == 1) {
        if (nnzrd <= 0) return rec.raise<Exit::nnzrd_not_positive>(nnzrd);
        opt::reserve_for(o.rd.row, nnzrd);
        opt::reserve_for(o.rd.col, nnzrd);
        if (int64_t i = opt::first_outside(irowrd, nnzrd, 1, n); i >= 0)
            return rec.raise<Exit::irowrd_range>(i + 1, irowrd[i], n);
        if (int64_t i = opt::first_outside(icolrd, nnzrd, 1, nres); i >= 0)
            return rec.raise<Exit::icolrd_range>(i + 1, icolrd[i], nres);
        if (opt::Repeat r = opt::first_repeated_pair(irowrd, icolrd, nnzrd, n, nres); r.found)
            return rec.raise<Exit::repeated_element>(r.row, r.col);
        o.rd.row.assign(irowrd, irowrd + nnzrd);
        o.rd.col.assign(icolrd, icolrd + nnzrd);
    }
    p->objective = std::move(o);
    p->hessians.clear();
}

}  // namespace kor::e04rm
