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
    const double big = opt::infinite_bound(*p);
    for (int64_t j = 0; j < nvar; ++j) {
        // Written so that a NaN fails the first test.
        if (!(bl[j] <= bu[j])) return rec.raise<Exit::crossed>(j + 1, bl[j], bu[j]);
        if (bl[j] >= big) return rec.raise<Exit::lower_infinite>(j + 1, bl[j], big);
        if (bu[j] <= -big) return rec.raise<Exit::upper_infinite>(j + 1, bu[j], big);
    }
    lower.assign(bl, bl + nvar);
    upper.assign(bu, bu + nvar);
    p->bounds.emplace(std::move(lower), std::move(upper));
}

}  // namespace kor::e04rh
