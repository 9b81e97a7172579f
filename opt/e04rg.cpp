#include "e04rg_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rg {

void engine(frame::Record &rec, void *handle, int64_t nnzfd, const int64_t *idxfd) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    if (nnzfd < 0) return rec.raise<Exit::nnzfd_below>(nnzfd);
    opt::Objective o;
    opt::reserve_for(o.idxfd, nnzfd);
    for (int64_t i = 0; i < nnzfd; ++i) {
        if (idxfd[i] < 1 || idxfd[i] > n) return rec.raise<Exit::idxfd_range>(i + 1, idxfd[i], n);
        if (i > 0 && idxfd[i - 1] >= idxfd[i])
            return rec.raise<Exit::idxfd_not_ascending>(i, idxfd[i - 1], idxfd[i]);
    }
    o.kind = opt::ObjectiveKind::nonlinear;
    o.idxfd.assign(idxfd, idxfd + nnzfd);
    p->objective = std::move(o);
    p->hessians.clear();
}

}  // namespace kor::e04rg
