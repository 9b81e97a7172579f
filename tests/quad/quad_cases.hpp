// The integrands of tests/quad/make_reference.py, written with the same C
// library calls in the same order so that both sides evaluate bit-identical
// values, and a reader for the reference table it writes.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "kor.h"

namespace quad_test {

constexpr double pi = 3.141592653589793;

// f(x; p) by name; NaN for an unknown name (which fails every comparison).
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

// A vectorised integrand by name, counting its calls and the points asked
// for; callable as the adaptive cores call f, and reachable from the C
// interface through comm->data.
struct Integrand {
    std::string name;
    double p = 0.0;
    int64_t calls = 0;
    int64_t points = 0;
    int64_t stop_at = -1;  // the call (counting from 1) that sets iflag = -1
    int64_t operator()(const double *x, int64_t nx, double *fv, int64_t iflag) {
        ++calls;
        points += nx;
        for (int64_t i = 0; i < nx; ++i) fv[i] = integrand(name, x[i], p);
        return calls == stop_at ? -1 : iflag;
    }
};

inline void c_integrand(const double x[], int64_t nx, double fv[], int64_t *iflag, Kor_Comm *comm) {
    auto *f = static_cast<Integrand *>(comm->data);
    *iflag = (*f)(x, nx, fv, *iflag);
}

// One line of reference.tsv.
struct Reference {
    std::string label, name;
    double p, a, b, epsabs, epsrel;
    int64_t maxsub, ier, neval, last;
    double result, abserr;
    std::string exact;  // decimal text, or "inf"
    std::vector<double> lower, upper, error, contribution;  // sorted by lower end

    bool divergent() const { return exact == "inf"; }
    double exact_value() const { return std::strtod(exact.c_str(), nullptr); }
};

inline std::vector<double> hex_list(const std::string &field) {
    std::vector<double> out;
    if (field == "-") return out;
    std::stringstream in(field);
    std::string item;
    while (std::getline(in, item, ',')) out.push_back(std::strtod(item.c_str(), nullptr));
    return out;
}

inline std::vector<Reference> reference_table() {
    std::ifstream in(std::string(KOR_SOURCE_DIR) + "/tests/quad/reference.tsv");
    std::vector<Reference> rows;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> f;
        std::stringstream fields(line);
        std::string item;
        while (std::getline(fields, item, '\t')) f.push_back(item);
        if (f.size() != 18) {
            ADD_FAILURE() << "malformed reference line: " << line;
            continue;
        }
        auto real = [](const std::string &t) { return std::strtod(t.c_str(), nullptr); };
        auto integer = [](const std::string &t) { return int64_t(std::strtoll(t.c_str(), nullptr, 10)); };
        rows.push_back({f[0], f[1], real(f[2]), real(f[3]), real(f[4]), real(f[5]), real(f[6]),
                        integer(f[7]), integer(f[8]), integer(f[9]), integer(f[10]), real(f[11]),
                        real(f[12]), f[13], hex_list(f[14]), hex_list(f[15]), hex_list(f[16]),
                        hex_list(f[17])});
    }
    EXPECT_GE(rows.size(), 50u) << "reference.tsv missing or short";
    return rows;
}

// What a d01rj/d01rk call returned, with the subdivision unpacked from rinfo.
struct QuadRun {
    double result = -7.0, abserr = -7.0;
    int64_t calls = 0, points = 0;
    KorError fail = KOR_ERROR_INIT;
    std::vector<double> rinfo;
    std::vector<int64_t> iinfo;
    int64_t nsub() const { return iinfo.empty() ? -1 : iinfo[0]; }
    std::vector<double> block(int k) const {
        const int64_t n = nsub();
        return std::vector<double>(rinfo.begin() + k * n, rinfo.begin() + (k + 1) * n);
    }
};

inline QuadRun run_d01rj(Integrand f, double a, double b, double epsabs, double epsrel, int64_t maxsub) {
    QuadRun r;
    r.rinfo.assign(size_t(4 * std::max<int64_t>(maxsub, 1)), -7.0);
    r.iinfo.assign(size_t(std::max<int64_t>(maxsub, 4)), -7);
    Kor_Comm comm{&f, nullptr, nullptr};
    d01rjc(c_integrand, a, b, epsabs, epsrel, maxsub, &r.result, &r.abserr, r.rinfo.data(),
           r.iinfo.data(), &comm, &r.fail);
    r.calls = f.calls;
    r.points = f.points;
    return r;
}

inline QuadRun run_d01rk(Integrand f, double a, double b, int64_t key, double epsabs, double epsrel,
                     int64_t maxsub) {
    QuadRun r;
    r.rinfo.assign(size_t(4 * std::max<int64_t>(maxsub, 1)), -7.0);
    r.iinfo.assign(size_t(std::max<int64_t>(maxsub, 4)), -7);
    Kor_Comm comm{&f, nullptr, nullptr};
    d01rkc(c_integrand, a, b, key, epsabs, epsrel, maxsub, &r.result, &r.abserr, r.rinfo.data(),
           r.iinfo.data(), &comm, &r.fail);
    r.calls = f.calls;
    r.points = f.points;
    return r;
}

// The NE_ code of each final code of d01rj (index = code).
inline int d01rj_code(int64_t ier) {
    static const int codes[] = {NE_NOERROR, NE_QUAD_MAX_SUBDIV, NE_QUAD_ROUNDOFF_TOL,
                                NE_QUAD_BAD_SUBDIV, NE_QUAD_ROUNDOFF_EXTRAPL, NE_QUAD_NO_CONV};
    return ier >= 0 && ier <= 5 ? codes[ier] : -1;
}

// |x − y| within `tol` relative to max(|y|, floor).
inline bool close(double x, double y, double tol, double floor = 0.0) {
    if (x == y) return true;
    return std::fabs(x - y) <= tol * std::fmax(std::fabs(y), floor);
}

}  // namespace quad_test
