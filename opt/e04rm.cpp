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
        // Null is allowed (C callers) only for a dense structure.
        if (!irowrd) return rec.raise<Exit::array_null>(std::string_view("irowrd"));
        if (!icolrd) return rec.raise<Exit::array_null>(std::string_view("icolrd"));
        opt::reserve_for(o.rd.row, nnzrd);
        opt::reserve_for(o.rd.col, nnzrd);
        if (!opt::check_coordinates<Exit::irowrd_range, Exit::icolrd_range,
                                    Exit::repeated_element>(rec, irowrd, icolrd, nnzrd, n, nres))
            return;
        o.rd.row.assign(irowrd, irowrd + nnzrd);
        o.rd.col.assign(icolrd, icolrd + nnzrd);
    }
    p->objective = std::move(o);
    p->hessians.clear();
}

}  // namespace kor::e04rm
