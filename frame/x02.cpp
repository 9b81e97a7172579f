// The machine constants; their values live in frame/machine.hpp, which
// engines read directly.

#include "frame/machine.hpp"
#include "x02aj_def.hpp"
#include "x02ak_def.hpp"
#include "x02am_def.hpp"
#include "x02an_def.hpp"
#include "x02al_def.hpp"
#include "x02ah_def.hpp"
#include "x02bb_def.hpp"
#include "x02bh_def.hpp"
#include "x02bj_def.hpp"
#include "x02bk_def.hpp"
#include "x02bl_def.hpp"
#include "x02be_def.hpp"

namespace kor {

double x02aj::engine() { return frame::machine::precision; }
double x02ak::engine() { return frame::machine::smallest_normal; }
double x02am::engine() { return frame::machine::above_smallest_normal; }
double x02an::engine() { return frame::machine::above_smallest_normal; }
double x02al::engine() { return frame::machine::largest; }
double x02ah::engine() { return frame::machine::large_constant; }
int64_t x02bb::engine() { return frame::machine::largest_integer; }
int64_t x02bh::engine() { return frame::machine::base; }
int64_t x02bj::engine() { return frame::machine::digits; }
int64_t x02bk::engine() { return frame::machine::min_exponent; }
int64_t x02bl::engine() { return frame::machine::max_exponent; }
int64_t x02be::engine() { return frame::machine::decimal_digits; }

}  // namespace kor
// Auxiliaries for engines in single precision and for comparisons that must
// not be folded away by the compiler.
extern "C" {
void x02aken_(double *value) { *value = kor::frame::machine::single::smallest_normal; }
void x02bjen_(int64_t *value) { *value = kor::frame::machine::single::digits; }
void x02bken_(int64_t *value) { *value = kor::frame::machine::single::min_exponent; }
void x02blen_(int64_t *value) { *value = kor::frame::machine::single::max_exponent; }
void x02bezn_(int64_t *value) { *value = kor::frame::machine::single::decimal_digits; }
void x02eayn_(const double *a, const double *b, int64_t *unequal) { *unequal = !(*a == *b); }
void x02eaym_(const float *a, const float *b, int64_t *unequal) { *unequal = !(*a == *b); }
void x02eazn_(const double *a, int64_t *is_nan) { *is_nan = *a != *a; }
void x02eazm_(const float *a, int64_t *is_nan) { *is_nan = *a != *a; }
void x02zawn_(const double *a, const double *b, double *sum) { *sum = *a + *b; }
}
