// d01rk: the adaptive core with the chosen rule and no extrapolation, then
// the subdivision put in order and the final code turned into exits.
// Defined inline: the routine's interfaces fold it in with the frame.
#pragma once
#include "d01rk_def.hpp"
#include "quad/adaptive.hpp"

namespace kor {

inline void d01rk::engine(frame::Record &rec, frame::UserFunction<frame::VectorOfVector> &f, double a,
                   double b, int64_t key, double epsabs, double epsrel, int64_t maxsub,
                   double &result, double &abserr, double *rinfo, int64_t *iinfo) {
    result = abserr = 0.0;
    if (key < 1 || key > 6) return rec.raise<Exit::key_invalid>(key);
    if (maxsub < 1) return rec.raise<Exit::maxsub_too_small>(maxsub);
    quad::Outcome out;
    d01rkvn_(f, key, a, b, epsabs, epsrel, maxsub, &result, &abserr, rinfo, iinfo, &out);
    quad::conclude<Exit>(rec, out, maxsub, epsabs, epsrel, result, abserr, rinfo, iinfo);
}

}  // namespace kor
