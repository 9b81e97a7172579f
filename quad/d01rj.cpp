// d01rj: the adaptive core with extrapolation, then the subdivision put in
// order and the core's final code turned into the routine's exits.
#include "d01rj_def.hpp"
#include "quad/adaptive.hpp"

namespace kor {

void d01rj::engine(frame::Record &rec, frame::UserFunction<frame::VectorOfVector> &f, double a,
                   double b, double epsabs, double epsrel, int64_t maxsub, double &result,
                   double &abserr, double *rinfo, int64_t *iinfo) {
    result = abserr = 0.0;
    if (maxsub < 1) return rec.raise<Exit::maxsub_too_small>(maxsub);
    quad::Outcome out;
    d01rjvn_(f, a, b, epsabs, epsrel, maxsub, &result, &abserr, rinfo, iinfo, &out);
    if (out.stopped) {
        result = abserr = 0.0;
        return rec.raise<Exit::user_stop>();
    }
    quad::finish_subdivision(rinfo, iinfo, maxsub, out);
    switch (out.ier) {
    case 1: return rec.raise<Exit::max_subdivisions>(maxsub);
    case 2: return rec.raise<Exit::roundoff>(epsabs, epsrel);
    case 3: return rec.raise<Exit::bad_subinterval>(out.bad_lower, out.bad_upper);
    case 4: return rec.raise<Exit::roundoff_extrapolation>();
    case 5: return rec.raise<Exit::no_convergence>();
    default: return;
    }
}

}  // namespace kor
