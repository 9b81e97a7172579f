#include "e04re_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04re {

void engine(frame::Record &rec, void *handle, int64_t nvar, const double *cvec) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    if (nvar != p->nvar) return rec.raise<Exit::nvar_mismatch>(nvar, p->nvar);
    opt::Objective objective;
    objective.kind = opt::ObjectiveKind::linear;
    objective.dense = true;
    objective.cvec = opt::copy_of(cvec, nvar);
    // A new objective takes the place of the old one and of every Hessian
    // structure, which described the old problem.
    p->objective = std::move(objective);
    p->hessians.clear();
}

}  // namespace kor::e04re
