// The quadrature chapter's building blocks under their layer names, with
// the library's constants, and the post-processing of the subdivision that
// d01rj and d01rk share.
#include "quad/adaptive.hpp"

#include <algorithm>
#include <cstring>

#include "sort/ranking.hpp"

using kor::quad::Integrand;
using kor::quad::Working;

extern "C" {

int64_t d01rkzn_(Integrand &f, double alpha, double beta, int64_t nn, int64_t npts, int64_t ngw,
                 double *result, double *abserr, double *resabs, double *resasc) {
    kor::quad::RuleValues v;
    int64_t iflag = 0;
    if (const kor::quad::Rule *rule = kor::quad_gk_consts::find_rule(nn, npts, ngw))
        iflag = kor::quad::apply_rule<Working>(f, *rule, alpha, beta, v);
    *result = v.result;
    *abserr = v.abserr;
    *resabs = v.resabs;
    *resasc = v.resasc;
    return iflag;
}

void d01ajxn_(int64_t maxsub, int64_t nsub, int64_t *maxerr, double *errmax, const double *elist,
              int64_t *iord, int64_t *nrmax) {
    kor::quad::order_list(maxsub, nsub, *maxerr, *errmax, elist, iord, *nrmax);
}

void d01ajyn_(int64_t *n, double *epstab, double *result, double *abserr, double *res3la,
              int64_t *nres) {
    kor::quad::epsilon_step<Working>(*n, epstab, *result, *abserr, res3la, *nres);
}

}  // extern "C"

namespace kor::quad {

void finish_subdivision(double *rinfo, int64_t *iinfo, int64_t maxsub, const Outcome &out) {
    const int64_t nsub = out.nsub;
    if (nsub < 1 || nsub > maxsub) return;
    if (nsub < maxsub) {
        // Blocks 1..3 move down to stride nsub; each lands below where it
        // starts and above the blocks already moved.  A cheap integral ends
        // with one subinterval, whose three values move one by one.
        for (int64_t k = 1; k < 4; ++k) {
            if (nsub == 1)
                rinfo[k] = rinfo[k * maxsub];
            else
                std::memmove(rinfo + k * nsub, rinfo + k * maxsub, size_t(nsub) * sizeof(double));
        }
        std::fill(rinfo + 4 * nsub, rinfo + 4 * maxsub, 0.0);
    }
    // Rank the lower ends (m01da's computation) and put each block in that
    // order (m01ea's); a single subinterval is in order already.
    if (nsub > 1) {
        sort::rank_real(rinfo, nsub, true, iinfo);
        for (int64_t k = 0; k < 4; ++k) sort::reorder_real(rinfo + k * nsub, nsub, iinfo);
    }
    std::fill(iinfo, iinfo + std::max<int64_t>(4, maxsub), 0);
    iinfo[0] = nsub;
    iinfo[2] = out.summed ? 0 : 1;
}

}  // namespace kor::quad
