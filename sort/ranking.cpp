#include "sort/ranking.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace kor::sort {

namespace {

constexpr int64_t small_vector = 24;

// A strict weak order on doubles in which every NaN follows every number.
bool ascending_before(double x, double y) { return x < y || (!std::isnan(x) && std::isnan(y)); }
bool descending_before(double x, double y) { return x > y || (!std::isnan(x) && std::isnan(y)); }

// Turns a permutation p of 1..n (p[k] = the element at sorted position k)
// into its inverse in place, following each cycle once and marking the
// entries done by their sign.
void invert(int64_t *p, int64_t n) {
    for (int64_t i = 0; i < n; ++i) {
        if (p[i] < 0) continue;
        int64_t prev = i, j = p[i] - 1;
        for (int64_t steps = 0; j != i && steps < n; ++steps) {
            const int64_t next = p[j] - 1;
            p[j] = -(prev + 1);
            prev = j;
            j = next;
        }
        p[i] = -(prev + 1);
    }
    for (int64_t i = 0; i < n; ++i) p[i] = -p[i];
}

}  // namespace

void rank_real(const double *rv, int64_t n, bool ascending, int64_t *irank) {
    if (n <= 0) return;
    for (int64_t i = 0; i < n; ++i) irank[i] = i;
    if (n <= small_vector) {
        // Insertion sort: stable, and no buffer to allocate for the short
        // vectors that the quadrature routines rank on every call.
        for (int64_t i = 1; i < n; ++i) {
            const int64_t index = irank[i];
            int64_t j = i;
            for (; j > 0; --j) {
                const double prev = rv[irank[j - 1]];
                if (!(ascending ? ascending_before(rv[index], prev) : descending_before(rv[index], prev)))
                    break;
                irank[j] = irank[j - 1];
            }
            irank[j] = index;
        }
    } else if (ascending)
        std::stable_sort(irank, irank + n,
                         [rv](int64_t i, int64_t j) { return ascending_before(rv[i], rv[j]); });
    else
        std::stable_sort(irank, irank + n,
                         [rv](int64_t i, int64_t j) { return descending_before(rv[i], rv[j]); });
    for (int64_t k = 0; k < n; ++k) irank[k] += 1;
    invert(irank, n);
}

void reorder_real(double *rv, int64_t n, int64_t *irank) {
    // Each cycle of the permutation is followed once, carrying one value;
    // a rank is negated when its element has been placed.
    for (int64_t i = 0; i < n; ++i) {
        if (irank[i] < 0) continue;
        double carried = rv[i];
        int64_t j = irank[i] - 1;
        irank[i] = -irank[i];
        for (int64_t steps = 0; j != i && steps < n; ++steps) {
            std::swap(carried, rv[j]);
            const int64_t next = irank[j] - 1;
            irank[j] = -irank[j];
            j = next;
        }
        rv[i] = carried;
    }
    for (int64_t i = 0; i < n; ++i) irank[i] = -irank[i];
}

bool is_permutation(const int64_t *irank, int64_t n) {
    std::vector<unsigned char> seen(size_t(n > 0 ? n : 0), 0);
    for (int64_t i = 0; i < n; ++i) {
        const int64_t r = irank[i];
        if (r < 1 || r > n || seen[size_t(r - 1)]) return false;
        seen[size_t(r - 1)] = 1;
    }
    return true;
}

}  // namespace kor::sort
