// IEEE special values and exception traps.  Traps are a property of the
// calling thread's floating-point environment.
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>

#include "x07aa_def.hpp"
#include "x07ab_def.hpp"
#include "x07ba_def.hpp"
#include "x07bb_def.hpp"
#include "x07ca_def.hpp"
#include "x07cb_def.hpp"

namespace kor {

namespace {
// The exceptions in the order of the flag arrays.
constexpr int trap_flags[3] = {FE_OVERFLOW, FE_DIVBYZERO, FE_INVALID};
}  // namespace

int64_t x07aa::engine(double x) { return std::isfinite(x) ? 1 : 0; }
int64_t x07ab::engine(double x) { return std::isnan(x) ? 1 : 0; }

double x07ba::engine(int64_t sign) {
    const double inf = std::numeric_limits<double>::infinity();
    return sign >= 0 ? inf : -inf;
}

double x07bb::engine(int64_t kind) {
    if (kind == 1) return std::numeric_limits<double>::quiet_NaN();
    // Built from its bits: arithmetic on a signalling NaN would quieten it.
    const uint64_t bits = 0x7ff4000000000000ull;
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

void x07ca::engine(int64_t *exmode) {
    const int enabled = fegetexcept();
    for (int i = 0; i < 3; ++i) exmode[i] = (enabled & trap_flags[i]) ? 1 : 0;
}

void x07cb::engine(const int64_t *exmode) {
    int enable = 0, disable = 0;
    for (int i = 0; i < 3; ++i) (exmode[i] ? enable : disable) |= trap_flags[i];
    // Clear stale flags first so that enabling a trap does not fire at once.
    feclearexcept(enable);
    fedisableexcept(disable);
    feenableexcept(enable);
}

}  // namespace kor
