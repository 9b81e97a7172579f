#include "e04rh_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rh {

void engine(frame::Record &rec, void *handle, int64_t nvar, const double *bl, const double *bu) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    if (nvar != p->nvar) return rec.raise<Exit::nvar_mismatch>(nvar, p->nvar);
    std::vector<double> lower, upper;
    opt::reserve_for(lower, nvar);
    opt::reserve_for(upper, nvar);
    if (!opt::check_bounds<Exit>(rec, *p, nvar, bl, bu)) return;
    lower.assign(bl, bl + nvar);
    upper.assign(bu, bu + nvar);
    p->bounds.emplace(std::move(lower), std::move(upper));
}

}  // namespace kor::e04rh
