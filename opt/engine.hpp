// Helpers shared by the engines of the handle routines: the opening checks
// (handle, phase) and the checks of index lists and coordinate matrices.
#pragma once

#include <cstdint>
#include <new>
#include <string_view>
#include <type_traits>
#include <vector>

#include "frame/record.hpp"
#include "opt/handle.hpp"
#include "opt/problem.hpp"

namespace kor::opt {

// Validates the handle; raises the routine's handle exit and returns null
// when it is not valid.
template <class Exit>
Problem *open_handle(frame::Record &rec, void *handle) {
    Problem *p = nullptr;
    const HandleStatus s = check_handle(handle, &p);
    if (s != HandleStatus::valid) {
        raise_handle<Exit>(rec, s);
        return nullptr;
    }
    return p;
}

// The same for a routine that changes the problem: refused while a solver
// runs on the handle.
template <class Exit>
Problem *open_for_change(frame::Record &rec, void *handle) {
    Problem *p = open_handle<Exit>(rec, handle);
    if (p && p->solver_running) {
        rec.raise<typename Exit::solver_running>();
        return nullptr;
    }
    return p;
}

// False when `bytes` exceed the machine's memory (physical and swap): such
// a request is refused without asking the allocator, which under some
// tools (AddressSanitizer) ends the process instead of failing.
bool memory_can_hold(uint64_t bytes);

// Room for n elements, or std::bad_alloc (which the frame reports as
// NE_ALLOC_FAIL) for a count no allocation can hold.  Done before a
// caller's array of that count is read, so that a huge count fails cleanly.
template <class T>
void reserve_for(std::vector<T> &v, int64_t n) {
    if (n < 0 || uint64_t(n) > v.max_size() || !memory_can_hold(uint64_t(n) * sizeof(T)))
        throw std::bad_alloc();
    v.reserve(size_t(n));
}

// 0-based position of the first element outside [lo, hi], or -1.
int64_t first_outside(const int64_t *v, int64_t n, int64_t lo, int64_t hi);

// 0-based position of the first entry with row > col, or -1.
int64_t first_below_diagonal(const int64_t *row, const int64_t *col, int64_t n);

// 0-based i of the first pair with v[i] >= v[i+1], or -1.
int64_t first_not_ascending(const int64_t *v, int64_t n);

// The first element (in the order given) that repeats an earlier one.
struct Repeat {
    bool found = false;
    int64_t position = -1;  // 0-based position of the repeating element
    int64_t row = 0, col = 0;
};

// Over (row, col) pairs, rows in [1, max_row] and columns in [1, max_col]
// (checked before); O(n log n).
Repeat first_repeated_pair(const int64_t *row, const int64_t *col, int64_t n, int64_t max_row,
                           int64_t max_col);
// Over single values.
Repeat first_repeated(const int64_t *v, int64_t n);

// The checks of a coordinate matrix of nnz entries, in the routines' order:
// row indices in [1, rows], column indices in [1, cols], no entry below
// the diagonal where the routine names an exit for it, and no (row,
// column) pair twice.  The exits are the routine's own; returns false
// after raising.
template <class RowOutside, class ColOutside, class Repeated, class BelowDiagonal = void>
bool check_coordinates(frame::Record &rec, const int64_t *row, const int64_t *col, int64_t nnz,
                       int64_t rows, int64_t cols) {
    if (int64_t i = first_outside(row, nnz, 1, rows); i >= 0)
        return rec.raise<RowOutside>(i + 1, row[i], rows), false;
    if (int64_t i = first_outside(col, nnz, 1, cols); i >= 0)
        return rec.raise<ColOutside>(i + 1, col[i], cols), false;
    if constexpr (!std::is_void_v<BelowDiagonal>) {
        if (int64_t i = first_below_diagonal(row, col, nnz); i >= 0)
            return rec.raise<BelowDiagonal>(i + 1, row[i], col[i]), false;
    }
    if (Repeat r = first_repeated_pair(row, col, nnz, rows, cols); r.found)
        return rec.raise<Repeated>(r.row, r.col), false;
    return true;
}

// A keyword as the handle routines compare it: upper case, surrounding
// blanks removed, runs of blanks made one.
std::string normalize_keyword(std::string_view text);

// Copies a caller's array into a vector (allocated before the copy).
template <class T>
std::vector<T> copy_of(const T *v, int64_t n) {
    std::vector<T> out;
    reserve_for(out, n);
    out.assign(v, v + n);
    return out;
}

// The upper bound of every coordinate matrix and Hessian check on
// variables; bounds at or beyond it are infinite.
double infinite_bound(const Problem &p);

// The checks of n pairs of bounds, in the routines' order: each pair in
// order (written so that a NaN fails), and neither bound infinite on its
// wrong side.  Returns false after raising.
template <class Exit>
bool check_bounds(frame::Record &rec, const Problem &p, int64_t n, const double *bl,
                  const double *bu) {
    const double big = infinite_bound(p);
    for (int64_t j = 0; j < n; ++j) {
        if (!(bl[j] <= bu[j])) return rec.raise<typename Exit::crossed>(j + 1, bl[j], bu[j]), false;
        if (!(bl[j] < big)) return rec.raise<typename Exit::lower_infinite>(j + 1, bl[j], big), false;
        if (!(bu[j] > -big)) return rec.raise<typename Exit::upper_infinite>(j + 1, bu[j], big), false;
    }
    return true;
}

}  // namespace kor::opt
