#include "e04mk_def.hpp"
#include "opt/engine.hpp"
#include "opt/lp.hpp"

namespace kor::e04mk {

void engine(frame::Record &rec, void *handle, int64_t nvar, double *x, int64_t nu, double *u,
            double *rinfo, double *stats, frame::UserFunction<frame::Monitor> &monit) {
    opt::Problem *p = opt::open_handle<Exit>(rec, handle);
    if (!p) return;
    opt::run_lp_solver<Exit>(rec, handle, *p, nvar, x, nu, u, rinfo, stats, monit,
                             opt::LpMethod::simplex, "Linear programming, simplex method (e04mkc)");
}

}  // namespace kor::e04mk
