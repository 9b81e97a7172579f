// The integrands and table of tests/data/quad/make_reference.py (the same C library
// calls, so bit-identical values), counted runs, and what every run returns.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "kor.h"
#include "support/data.hpp"

namespace quad_test {

constexpr double pi = 3.141592653589793;
constexpr int64_t npts[] = {21, 15, 21, 31, 41, 51, 61};  // by key; 0 is d01rj

// f(x; p) by name; NaN for an unknown name.
inline double integrand(const std::string &name, double x, double p) {
    if (name == "xlog") return -(std::pow(x, p)) * std::log(x);
    if (name == "pow") return std::pow(x, p);
    if (name == "peak") return std::pow(4.0, -p) / ((x - pi / 4) * (x - pi / 4) + std::pow(16.0, -p));
    if (name == "cossin") return std::cos(std::pow(2.0, p) * std::sin(x));
    if (name == "cos") return std::cos(p * x);
    if (name == "exp") return std::exp(p * x);
    if (name == "poly") return 1.0 + x + p * x * x;
    if (name == "interior") return std::pow(std::fabs(x - 1.0 / 3.0), p);
    if (name == "pole") return 1.0 / (x - p);
    if (name == "step") return x < p ? 0.0 : 1.0;
    if (name == "sinrecip") return std::sin(1.0 / x) * std::pow(x, p);
    return std::nan("");
}

// f by name, callable as the cores call it; counts, and stops at call stop_at.
struct Integrand {
    std::string name;
    double p = 0.0;
    int64_t calls = 0, points = 0, stop_at = -1;
    int64_t operator()(const double *x, int64_t nx, double *fv, int64_t iflag) {
        EXPECT_EQ(iflag, 0);  // on entry to every call
        points += nx;
        for (int64_t i = 0; i < nx; ++i) fv[i] = integrand(name, x[i], p);
        return ++calls == stop_at ? -1 : 1;  // a positive iflag means nothing
    }
};

inline void c_integrand(const double x[], int64_t nx, double fv[], int64_t *iflag, Kor_Comm *comm) {
    *iflag = (*static_cast<Integrand *>(comm->data))(x, nx, fv, *iflag);
}

// One line of reference.tsv; exact is inf for a divergent integral.
struct Reference {
    std::string label, name;
    double p, a, b, epsabs, epsrel;
    int64_t maxsub, ier, neval, last;
    double result, abserr, exact;
    std::vector<double> lower, upper, error, contribution;  // sorted by lower end
};

inline std::vector<Reference> references() {
    std::vector<Reference> out;
    for (const kor::test::Row &r : kor::test::read_table("quad/reference.tsv")) {
        Reference x{r.text(0), r.text(1), r.real(2), r.real(3), r.real(4), r.real(5), r.real(6),
                    r.integer(7), r.integer(8), r.integer(9), r.integer(10), r.real(11),
                    r.real(12), r.real(13), {}, {}, {}, {}};
        x.lower = r.reals(14), x.upper = r.reals(15), x.error = r.reals(16), x.contribution = r.reals(17);
        out.push_back(x);
    }
    return out;
}

struct QuadRun {
    double result = -7.0, abserr = -7.0;
    int64_t calls = 0, points = 0;
    KorError fail = KOR_ERROR_INIT;
    std::vector<double> rinfo;
    std::vector<int64_t> iinfo;
    int64_t nsub() const { return iinfo[0]; }
};

// d01rjc (key 0) or d01rkc, the arrays filled, 8 more entries to stay untouched.
inline QuadRun run(Integrand f, int64_t key, double a, double b, double epsabs, double epsrel,
                   int64_t maxsub, double fill = -7.0) {
    QuadRun r;
    const size_t nr = size_t(4 * std::max<int64_t>(maxsub, 1)), ni = size_t(std::max<int64_t>(maxsub, 4));
    r.rinfo.assign(nr + 8, fill);
    r.iinfo.assign(ni + 8, int64_t(fill));
    Kor_Comm comm{&f, nullptr, nullptr};
    key == 0 ? d01rjc(c_integrand, a, b, epsabs, epsrel, maxsub, &r.result, &r.abserr, r.rinfo.data(), r.iinfo.data(), &comm, &r.fail)
             : d01rkc(c_integrand, a, b, key, epsabs, epsrel, maxsub, &r.result, &r.abserr, r.rinfo.data(), r.iinfo.data(), &comm, &r.fail);
    EXPECT_EQ(std::vector<double>(r.rinfo.begin() + nr, r.rinfo.end()), std::vector<double>(8, fill));
    EXPECT_EQ(std::vector<int64_t>(r.iinfo.begin() + ni, r.iinfo.end()), std::vector<int64_t>(8, int64_t(fill)));
    r.rinfo.resize(nr), r.iinfo.resize(ni);
    r.calls = f.calls, r.points = f.points;
    return r;
}

// What every run neither refused nor stopped returns: 2·nsub − 1 calls of all
// the rule's points; subintervals tiling [a, b] by lower end (a_i down to b_i
// when b < a), the rest zero; iinfo {nsub, 0, flag, 0 ...}, flag 0 when result
// is the sum of the contributions (for d01rk unless nsub = 1); the exact
// integral (NaN: none) within abserr and 2 ulps of result (its rounding).
inline void expect_honest(const QuadRun &r, int64_t key, double a, double b, double exact) {
    const int64_t n = r.nsub();
    ASSERT_GE(n, 1);
    EXPECT_TRUE(r.calls == 2 * n - 1 && r.points == npts[key] * (2 * n - 1)) << r.calls << " calls, nsub " << n;
    double edge = std::min(a, b), sum = 0, size = 0;
    for (int64_t i = 0; i < n; ++i) {
        const double lo = r.rinfo[i], hi = r.rinfo[n + i], c = r.rinfo[3 * n + i];
        EXPECT_TRUE((lo < hi) == (a < b) && std::min(lo, hi) == edge && r.rinfo[2 * n + i] >= 0) << i;
        edge = std::max(lo, hi), sum += c, size += std::fabs(c);
    }
    EXPECT_EQ(edge, std::max(a, b));
    EXPECT_EQ(std::vector<double>(r.rinfo.begin() + 4 * n, r.rinfo.end()), std::vector<double>(r.rinfo.size() - 4 * n));
    std::vector<int64_t> iinfo(r.iinfo.size(), 0);
    iinfo[0] = n, iinfo[2] = n == 1 || (key == 0 && r.iinfo[2] != 0);
    EXPECT_EQ(r.iinfo, iinfo);
    if (r.iinfo[2] == 0) { EXPECT_NEAR(sum, r.result, 4 * n * 0x1p-53 * size); }
    const double ulp = std::nextafter(std::fabs(r.result), INFINITY) - std::fabs(r.result);
    EXPECT_TRUE(std::isfinite(r.result) && !(std::fabs(r.result - exact) > r.abserr + 2 * ulp))
        << r.result << " vs " << exact << ", abserr " << r.abserr;
}

}  // namespace quad_test
