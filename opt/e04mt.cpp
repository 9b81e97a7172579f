#include "e04mt_def.hpp"
#include "opt/engine.hpp"
#include "opt/lp.hpp"

namespace kor::e04mt {

void engine(frame::Record &rec, void *handle, int64_t nvar, double *x, int64_t nu, double *u,
            double *rinfo, double *stats, frame::UserFunction<frame::Monitor> &monit) {
    opt::Problem *p = opt::open_handle<Exit>(rec, handle);
    if (!p) return;
    opt::run_lp_solver<Exit>(rec, handle, *p, nvar, x, nu, u, rinfo, stats, monit,
                             opt::LpMethod::interior_point, "Linear programming, interior-point method (e04mtc)");
}

}  // namespace kor::e04mt
