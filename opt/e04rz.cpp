#include "e04rz_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rz {

void engine(frame::Record &rec, void *&handle) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    opt::destroy_handle(handle, p);
    handle = nullptr;
}

}  // namespace kor::e04rz
