#include "e04rj_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rj {

void engine(frame::Record &rec, void *handle, int64_t nclin, const double *bl, const double *bu,
            int64_t nnzb, const int64_t *irowb, const int64_t *icolb, const double *b,
            int64_t &idlc) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    opt::LinearConstraints &lc = p->linear;
    const int64_t rows = lc.rows();
    if (idlc < 0) return rec.raise<Exit::idlc_below>(idlc);
    if (nnzb < 0) return rec.raise<Exit::nnzb_below>(nnzb);
    if (nclin < 0) return rec.raise<Exit::nclin_below>(nclin);
    if (idlc > 0 && nclin != 1) return rec.raise<Exit::replace_not_single>(idlc, nclin);
    if (idlc > rows) return rec.raise<Exit::idlc_unknown>(idlc, rows);

    // Room for the new rows and entries first: a count that cannot be held
    // fails before the caller's arrays are read, and the commit below
    // cannot fail half way.
    const int64_t kept = int64_t(lc.b.size());
    if (nnzb > INT64_MAX - kept || nclin > INT64_MAX - rows) throw std::bad_alloc();
    opt::reserve_for(lc.bl, rows + nclin);
    opt::reserve_for(lc.bu, rows + nclin);
    opt::reserve_for(lc.b.row, kept + nnzb);
    opt::reserve_for(lc.b.col, kept + nnzb);
    opt::reserve_for(lc.b.value, kept + nnzb);

    if (!opt::check_bounds<Exit>(rec, *p, nclin, bl, bu)) return;
    if (!opt::check_coordinates<Exit::irowb_range, Exit::icolb_range, Exit::repeated_element>(
            rec, irowb, icolb, nnzb, nclin, n))
        return;

    int64_t offset = rows;
    if (idlc > 0) {
        // One row replaced: its old entries go, the new ones take its number.
        offset = idlc - 1;
        lc.bl[size_t(offset)] = bl[0];
        lc.bu[size_t(offset)] = bu[0];
        size_t out = 0;
        for (size_t k = 0; k < lc.b.size(); ++k) {
            if (lc.b.row[k] == idlc) continue;
            lc.b.row[out] = lc.b.row[k];
            lc.b.col[out] = lc.b.col[k];
            lc.b.value[out] = lc.b.value[k];
            ++out;
        }
        lc.b.row.resize(out);
        lc.b.col.resize(out);
        lc.b.value.resize(out);
    } else {
        lc.bl.insert(lc.bl.end(), bl, bl + nclin);
        lc.bu.insert(lc.bu.end(), bu, bu + nclin);
        idlc = lc.rows();
    }
    for (int64_t k = 0; k < nnzb; ++k) lc.b.row.push_back(irowb[k] + offset);
    lc.b.col.insert(lc.b.col.end(), icolb, icolb + nnzb);
    lc.b.value.insert(lc.b.value.end(), b, b + nnzb);
}

}  // namespace kor::e04rj
