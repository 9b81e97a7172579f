#include "e04rp_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rp {

void engine(frame::Record &rec, void *handle, int64_t idblk, int64_t nq, const int64_t *qi,
            const int64_t *qj, int64_t dimq, const int64_t *nnzq, int64_t nnzqsum,
            const int64_t *irowq, const int64_t *icolq, const double *q) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    const int64_t blocks = int64_t(p->matrices.size());
    if (idblk < 0) return rec.raise<Exit::idblk_below>(idblk);
    if (nq <= 0) return rec.raise<Exit::nq_not_positive>(nq);
    if (dimq <= 0) return rec.raise<Exit::dimq_not_positive>(dimq);
    if (idblk == 0 || idblk > blocks) return rec.raise<Exit::idblk_unknown>(idblk, blocks);
    opt::MatrixBlock &m = p->matrices[size_t(idblk - 1)];
    if (m.bilinear) return rec.raise<Exit::already_defined>(idblk);
    if (dimq != m.dim) return rec.raise<Exit::dimq_mismatch>(dimq, m.dim);

    std::vector<int64_t> counts = opt::copy_of(nnzq, nq);
    int64_t total = 0;
    for (int64_t k = 0; k < nq; ++k) {
        if (counts[size_t(k)] <= 0) return rec.raise<Exit::nnzq_not_positive>(k + 1, counts[size_t(k)]);
        if (__builtin_add_overflow(total, counts[size_t(k)], &total)) total = INT64_MAX;
    }
    if (nnzqsum < total) return rec.raise<Exit::nnzqsum_small>(nnzqsum, total);
    std::vector<int64_t> first = opt::copy_of(qi, nq), second = opt::copy_of(qj, nq);
    if (!opt::check_coordinates<Exit::qi_range, Exit::qj_range, Exit::pair_repeated>(rec, qi, qj,
                                                                                     nq, n, n))
        return;

    opt::Coordinates entries;
    opt::reserve_for(entries.row, total);
    opt::reserve_for(entries.col, total);
    opt::reserve_for(entries.value, total);
    int64_t start = 0;
    for (int64_t k = 0; k < nq; ++k) {
        const int64_t count = counts[size_t(k)];
        const int64_t *row = irowq + start, *col = icolq + start;
        if (int64_t j = opt::first_outside(row, count, 1, dimq); j >= 0)
            return rec.raise<Exit::irowq_range>(k + 1, start + j + 1, row[j], dimq);
        if (int64_t j = opt::first_outside(col, count, 1, dimq); j >= 0)
            return rec.raise<Exit::icolq_range>(k + 1, start + j + 1, col[j], dimq);
        if (opt::Repeat r = opt::first_repeated_pair(row, col, count, dimq, dimq); r.found)
            return rec.raise<Exit::repeated_element>(k + 1, r.row, r.col);
        start += count;
    }
    entries.row.assign(irowq, irowq + total);
    entries.col.assign(icolq, icolq + total);
    entries.value.assign(q, q + total);
    m.bilinear = true;
    m.qi = std::move(first);
    m.qj = std::move(second);
    m.nnzq = std::move(counts);
    m.q = std::move(entries);
}

}  // namespace kor::e04rp
