// Accuracy of the special functions against 40-digit mpmath values
// (reference.tsv, written by make_reference.py).  Each routine's error is
// measured per range and printed; the test fails where an error exceeds
// what the algorithm is known to reach.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "kor.h"

namespace {

constexpr double u = 0x1p-53;

struct Sample {
    std::string function, range;
    double x;
    long double reference;
};

std::vector<Sample> load_reference() {
    std::ifstream in(std::string(KOR_SOURCE_DIR) + "/tests/specfun/reference.tsv");
    std::vector<Sample> samples;
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        Sample s;
        std::string x, value;
        std::getline(fields, s.function, '\t');
        std::getline(fields, s.range, '\t');
        std::getline(fields, x, '\t');
        std::getline(fields, value, '\t');
        s.x = std::strtod(x.c_str(), nullptr);
        s.reference = std::strtold(value.c_str(), nullptr);
        samples.push_back(s);
    }
    return samples;
}

// How one routine is called, how its error is measured (in units of
// u = 2^-53) and what bound the algorithm guarantees at a given argument.
struct Check {
    std::function<double(double)> routine;
    std::function<double(double computed, long double reference)> error;
    std::function<double(double x)> bound;
};

double relative(double c, long double r) {
    if (r == 0.0L) return c == 0.0 ? 0.0 : INFINITY;
    return double(std::fabs((c - r) / r) / u);
}

// ln Γ crosses zero at 1 and 2, where only an absolute error means anything.
double mixed(double c, long double r) { return double(std::fabs(c - r) / std::max(std::fabs(r), 1.0L) / u); }

// Multiplications and divisions in Γ's reduction: each may add u.
double gamma_bound(double x) {
    const double n = std::trunc(x);
    const double factors = x < 0.0 ? 2.0 - n : (x >= 2.0 ? n - 2.0 : 1.0);
    return 6.0 + 1.1 * factors;
}

// z = x/√2 carries the error of the rounded √2 (0.87u, always the same
// sign) and of the division (up to u), and erfc's logarithmic derivative is
// about 2z + 1/z, so the result moves by up to (2z² + 1)·1.9u relative, on
// top of erfc's own few u.
double normal_bound(double x) { return 4.0 + 1.9 * (x * x + 1.0); }

double call(double (*f)(double, KorError *), double x) {
    KorError fail = KOR_ERROR_INIT;
    const double value = f(x, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << "at x = " << x;
    return value;
}

const std::map<std::string, Check> &checks() {
    static const std::map<std::string, Check> table = {
        {"s14ab", {[](double x) { return call(s14abc, x); }, mixed, [](double) { return 4.0; }}},
        {"s14aa", {[](double x) { return call(s14aac, x); }, relative, gamma_bound}},
        {"s15ab", {[](double x) { return call(s15abc, x); }, relative, normal_bound}},
        {"s15ac", {[](double x) { return call(s15acc, x); }, relative, normal_bound}},
        {"s15ad", {[](double x) { return call(s15adc, x); }, relative, [](double) { return 8.0; }}},
        {"s15ae", {[](double x) { return call(s15aec, x); }, relative, [](double) { return 4.0; }}},
        {"g01fa", {[](double p) {
                       KorError fail = KOR_ERROR_INIT;
                       const double z = g01fac(Kor_TailLower, p, &fail);
                       EXPECT_EQ(fail.code, NE_NOERROR) << "at p = " << p;
                       return z;
                   },
                   relative, [](double) { return 6.0; }}},
    };
    return table;
}

TEST(Accuracy, EveryRangeWithinItsBound) {
    const std::vector<Sample> samples = load_reference();
    ASSERT_GT(samples.size(), 3000u) << "reference.tsv is missing or short";

    struct Worst {
        double error = 0.0, x = 0.0;
        int count = 0;
    };
    std::map<std::pair<std::string, std::string>, Worst> worst;
    for (const Sample &s : samples) {
        const Check &check = checks().at(s.function);
        const double computed = check.routine(s.x);
        const double error = check.error(computed, s.reference);
        EXPECT_LE(error, check.bound(s.x))
            << s.function << "(" << s.x << ") = " << computed << ", reference "
            << double(s.reference) << " (error " << error << " u)";
        Worst &w = worst[{s.function, s.range}];
        ++w.count;
        if (error > w.error) w.error = error, w.x = s.x;
    }
    std::printf("%-6s %-20s %6s %12s %12s   at\n", "", "range", "points", "max error/u", "= ");
    for (const auto &[key, w] : worst)
        std::printf("%-6s %-20s %6d %12.2f %12.2e   %.17g\n", key.first.c_str(), key.second.c_str(),
                    w.count, w.error, w.error * u, w.x);
}

}  // namespace
