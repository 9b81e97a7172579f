// Ranking and rearranging real vectors: the computations behind m01da and
// m01ea, which other engines (the quadrature routines) call directly.
// Ranks run from 1 to n at both interfaces.
#pragma once

#include <cstdint>

namespace kor::sort {

// irank[i] = the position (1..n) of rv[i] in rv sorted ascending (or
// descending); equal values keep their order (stable), and NaNs come last
// in either order.  O(n log n); no exception (the merge buffer is taken
// when it can be had, else an in-place merge is used).
void rank_real(const double *rv, int64_t n, bool ascending, int64_t *irank);

// Moves rv[i] to rv[irank[i] − 1] for every i, in place.  irank must be a
// permutation of 1..n; it serves as the marks of the work and holds its
// values again on return.
void reorder_real(double *rv, int64_t n, int64_t *irank);

// Whether irank[0..n−1] is a permutation of 1..n (uses n bytes of memory;
// std::bad_alloc when they cannot be had).
bool is_permutation(const int64_t *irank, int64_t n);

}  // namespace kor::sort
