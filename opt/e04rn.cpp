#include <algorithm>

#include "e04rn_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rn {

namespace {

// a + b, or INT64_MAX when it would not fit: sums of caller's counts only
// have to compare correctly with the counts they are checked against.
int64_t saturating_add(int64_t a, int64_t b) {
    int64_t s;
    return __builtin_add_overflow(a, b, &s) ? INT64_MAX : s;
}

}  // namespace

void engine(frame::Record &rec, void *handle, int64_t nvar, int64_t dima, const int64_t *nnza,
            int64_t nnzasum, const int64_t *irowa, const int64_t *icola, const double *a,
            int64_t nblk, const int64_t *blksizea, int64_t &idblk) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    if (nvar != p->nvar) return rec.raise<Exit::nvar_mismatch>(nvar, p->nvar);
    if (idblk != 0) return rec.raise<Exit::idblk_not_zero>(idblk);
    if (dima <= 0) return rec.raise<Exit::dima_not_positive>(dima);
    if (nblk <= 0) return rec.raise<Exit::nblk_not_positive>(nblk);

    opt::MatrixBlock m;
    m.dim = dima;
    m.nnz = opt::copy_of(nnza, nvar + 1);
    int64_t total = 0;
    for (int64_t i = 0; i <= nvar; ++i) {
        if (m.nnz[size_t(i)] < 0) return rec.raise<Exit::nnza_negative>(i + 1, m.nnz[size_t(i)]);
        total = saturating_add(total, m.nnz[size_t(i)]);
    }
    if (total < 1) return rec.raise<Exit::nnza_empty>(total);
    if (nnzasum < total) return rec.raise<Exit::nnzasum_small>(nnzasum, total);
    m.blksize = opt::copy_of(blksizea, nblk);
    int64_t size_sum = 0;
    for (int64_t i = 0; i < nblk; ++i) {
        if (m.blksize[size_t(i)] < 1) return rec.raise<Exit::blksizea_small>(i + 1, m.blksize[size_t(i)]);
        size_sum = saturating_add(size_sum, m.blksize[size_t(i)]);
    }
    if (size_sum != dima) return rec.raise<Exit::blksizea_sum>(size_sum, dima);

    // ends[k]: the last row and column of diagonal block k.
    std::vector<int64_t> ends(static_cast<size_t>(nblk));
    for (int64_t k = 0, e = 0; k < nblk; ++k) ends[size_t(k)] = e += m.blksize[size_t(k)];
    opt::reserve_for(m.a.row, total);
    opt::reserve_for(m.a.col, total);
    opt::reserve_for(m.a.value, total);
    if (idblk == 0) opt::reserve_for(p->matrices, int64_t(p->matrices.size()) + 1);

    int64_t start = 0;
    for (int64_t i = 0; i <= nvar; ++i) {
        const int64_t count = m.nnz[size_t(i)];
        const int64_t *row = irowa + start, *col = icola + start;
        if (int64_t j = opt::first_outside(row, count, 1, dima); j >= 0)
            return rec.raise<Exit::irowa_range>(i, start + j + 1, row[j], dima);
        if (int64_t j = opt::first_outside(col, count, 1, dima); j >= 0)
            return rec.raise<Exit::icola_range>(i, start + j + 1, col[j], dima);
        if (int64_t j = opt::first_below_diagonal(row, col, count); j >= 0)
            return rec.raise<Exit::irowa_below_diagonal>(i, start + j + 1, row[j], col[j]);
        for (int64_t j = 0; j < count; ++j) {
            const int64_t end = *std::lower_bound(ends.begin(), ends.end(), row[j]);
            if (col[j] > end)
                return rec.raise<Exit::outside_blocks>(i, start + j + 1, row[j], col[j], end);
        }
        if (opt::Repeat r = opt::first_repeated_pair(row, col, count, dima, dima); r.found)
            return rec.raise<Exit::repeated_element>(i, r.row, r.col);
        start += count;
    }
    m.a.row.assign(irowa, irowa + total);
    m.a.col.assign(icola, icola + total);
    m.a.value.assign(a, a + total);
    p->matrices.push_back(std::move(m));
    idblk = int64_t(p->matrices.size());
}

}  // namespace kor::e04rn
