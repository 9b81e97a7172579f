// Thread control.  This build runs every routine on the caller's thread, so
// the queries answer as a library without a parallel runtime would.
#include "x06aa_def.hpp"
#include "x06ab_def.hpp"
#include "x06ac_def.hpp"
#include "x06ad_def.hpp"
#include "x06af_def.hpp"
#include "x06ag_def.hpp"
#include "x06ah_def.hpp"
#include "x06aj_def.hpp"
#include "x06ak_def.hpp"
#include "x06xa_def.hpp"

namespace kor {

void x06aa::engine(frame::Record &rec, int64_t num_threads) {
    if (num_threads < 1) rec.raise<Exit::count_not_positive>(num_threads);
}
void x06aj::engine(frame::Record &rec, int64_t num_threads) {
    if (num_threads < 1) rec.raise<Exit::count_not_positive>(num_threads);
}
int64_t x06ab::engine() { return 1; }
int64_t x06ac::engine() { return 1; }
int64_t x06ad::engine() { return 0; }
int64_t x06af::engine() { return 0; }
void x06ag::engine(int64_t) {}
int64_t x06ah::engine() { return 0; }
int64_t x06ak::engine() { return 0; }
int64_t x06xa::engine() { return 0; }

}  // namespace kor
