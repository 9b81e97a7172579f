// m01da and m01ea: thin checks around the ranking computations, which the
// quadrature engines call directly.
#include <vector>

#include "m01da_def.hpp"
#include "m01ea_def.hpp"
#include "sort/ranking.hpp"

namespace kor {

void m01da::engine(frame::Record &rec, const double *rv, int64_t n, char order, int64_t *irank) {
    if (n < 1) return rec.raise<Exit::n_too_small>(n);
    bool ascending;
    switch (order) {
    case 'A': case 'a': ascending = true; break;
    case 'D': case 'd': ascending = false; break;
    default: return rec.raise<Exit::order_invalid>(std::string_view(&order, 1));
    }
    sort::rank_real(rv, n, ascending, irank);
}

void m01ea::engine(frame::Record &rec, double *rv, int64_t n, const int64_t *irank) {
    if (n < 1) return rec.raise<Exit::n_too_small>(n);
    if (!sort::is_permutation(irank, n)) return rec.raise<Exit::not_a_permutation>();
    // The ranks are the marks of the in-place work: a copy keeps the
    // caller's intact.
    std::vector<int64_t> ranks(irank, irank + n);
    sort::reorder_real(rv, n, ranks.data());
}

}  // namespace kor
