// The constant module kor_quad_gk_consts: the published Gauss–Kronrod rules
// with 15, 21, 31, 41, 51 and 61 points.  Every value comes from
// quad/data/gauss_kronrod.txt through the table generated at configure time;
// this header only gives the arrays their published names and groups each
// rule's three arrays with its sizes.
#pragma once

#include <cstdint>

#include "tables/gauss_kronrod.hpp"

namespace kor::quad_gk_consts {

namespace table = kor::data::gauss_kronrod;

// For Gauss order NN: xgk_NN holds the NN+1 non-negative Kronrod abscissae,
// largest first, the last being 0; wgk_NN their Kronrod weights; wg_NN the
// ceil(NN/2) Gauss weights, wg_NN[j] belonging to xgk_NN[2j+1] (for odd NN
// the last is the weight of the centre).
inline constexpr const double (&xgk_07)[8] = table::xgk_07;
inline constexpr const double (&wgk_07)[8] = table::wgk_07;
inline constexpr const double (&wg_07)[4] = table::wg_07;
inline constexpr const double (&xgk_10)[11] = table::xgk_10;
inline constexpr const double (&wgk_10)[11] = table::wgk_10;
inline constexpr const double (&wg_10)[5] = table::wg_10;
inline constexpr const double (&xgk_15)[16] = table::xgk_15;
inline constexpr const double (&wgk_15)[16] = table::wgk_15;
inline constexpr const double (&wg_15)[8] = table::wg_15;
inline constexpr const double (&xgk_20)[21] = table::xgk_20;
inline constexpr const double (&wgk_20)[21] = table::wgk_20;
inline constexpr const double (&wg_20)[10] = table::wg_20;
inline constexpr const double (&xgk_25)[26] = table::xgk_25;
inline constexpr const double (&wgk_25)[26] = table::wgk_25;
inline constexpr const double (&wg_25)[13] = table::wg_25;
inline constexpr const double (&xgk_30)[31] = table::xgk_30;
inline constexpr const double (&wgk_30)[31] = table::wgk_30;
inline constexpr const double (&wg_30)[15] = table::wg_30;

// One rule: the triple (Gauss order, number of points, number of Gauss
// weights) that callers name it by, and its arrays.
struct Rule {
    int64_t nn;
    int64_t npts;
    int64_t ngw;
    const double *xgk;
    const double *wgk;
    const double *wg;
};

// The six rules in increasing size; d01rk's key k selects rules[k-1].
inline constexpr Rule rules[6] = {
    {7, 15, 4, xgk_07, wgk_07, wg_07},      {10, 21, 5, xgk_10, wgk_10, wg_10},
    {15, 31, 8, xgk_15, wgk_15, wg_15},     {20, 41, 10, xgk_20, wgk_20, wg_20},
    {25, 51, 13, xgk_25, wgk_25, wg_25},    {30, 61, 15, xgk_30, wgk_30, wg_30},
};

// The largest rule's number of points: the size of one call's buffers.
inline constexpr int64_t max_points = 61;

// The rule with this triple, or null when no rule has it.
constexpr const Rule *find_rule(int64_t nn, int64_t npts, int64_t ngw) {
    for (const Rule &r : rules)
        if (r.nn == nn && r.npts == npts && r.ngw == ngw) return &r;
    return nullptr;
}

// The rule of d01rj: the 21-point Kronrod extension of the 10-point Gauss rule.
inline constexpr const Rule &gk21 = rules[1];

}  // namespace kor::quad_gk_consts
