#include "e04ra_def.hpp"
#include "opt/problem.hpp"

namespace kor::e04ra {

void engine(frame::Record &rec, void *&handle, int64_t nvar) {
    handle = nullptr;  // a failed call leaves no handle behind
    if (nvar < 0) return rec.raise<Exit::nvar_negative>(nvar);
    handle = opt::create_handle(nvar);
}

}  // namespace kor::e04ra
