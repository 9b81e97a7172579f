#include "e04rl_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rl {

void engine(frame::Record &rec, void *handle, int64_t idf, int64_t nnzh, const int64_t *irowh,
            const int64_t *icolh) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    const int64_t ncnln = p->nonlinear.count();
    const bool nonlinear_objective = p->objective.kind == opt::ObjectiveKind::nonlinear ||
                                     p->objective.kind == opt::ObjectiveKind::least_squares;
    if (nnzh <= 0) return rec.raise<Exit::nnzh_not_positive>(nnzh);
    if (idf < -1 || idf > ncnln) return rec.raise<Exit::idf_range>(idf, ncnln);
    if (!nonlinear_objective && !p->nonlinear.defined) return rec.raise<Exit::nothing_nonlinear>();
    if (idf == 0 && !nonlinear_objective) return rec.raise<Exit::no_nonlinear_objective>();
    opt::Coordinates s;
    opt::reserve_for(s.row, nnzh);
    opt::reserve_for(s.col, nnzh);
    if (!opt::check_coordinates<Exit::irowh_range, Exit::icolh_range, Exit::repeated_element,
                                Exit::irowh_below_diagonal>(rec, irowh, icolh, nnzh, n, n))
        return;
    s.row.assign(irowh, irowh + nnzh);
    s.col.assign(icolh, icolh + nnzh);
    // The Lagrangian's structure covers every part; a part's structure
    // replaces the Lagrangian's and its own earlier one.
    if (idf == -1)
        p->hessians.clear();
    else
        p->hessians.erase(-1);
    p->hessians[idf] = std::move(s);
}

}  // namespace kor::e04rl
