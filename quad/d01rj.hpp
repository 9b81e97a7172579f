// d01rj: the adaptive core with extrapolation, then the subdivision put in
// order and the core's final code turned into the routine's exits.
// Defined inline: the routine's interfaces fold it in with the frame.
#pragma once
#include "d01rj_def.hpp"
#include "quad/adaptive.hpp"

namespace kor {

inline void d01rj::engine(frame::Record &rec, frame::UserFunction<frame::VectorOfVector> &f, double a,
                   double b, double epsabs, double epsrel, int64_t maxsub, double &result,
                   double &abserr, double *rinfo, int64_t *iinfo) {
    result = abserr = 0.0;
    if (maxsub < 1) return rec.raise<Exit::maxsub_too_small>(maxsub);
    quad::Outcome out;
    d01rjvn_(f, a, b, epsabs, epsrel, maxsub, &result, &abserr, rinfo, iinfo, &out);
    quad::conclude<Exit>(rec, out, maxsub, epsabs, epsrel, result, abserr, rinfo, iinfo);
    // The two ends only extrapolation has.
    if (out.ier == 4) return rec.raise<Exit::roundoff_extrapolation>();
    if (out.ier == 5) return rec.raise<Exit::no_convergence>();
}

}  // namespace kor
