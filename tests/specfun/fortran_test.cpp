// Runs the probes: the Fortran-style entries called from a gfortran program
// (values, IFAIL on return and the message lines on standard output), and
// the C entries with a null error record, which end the process.
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <string>

#include "specfun/specfun_support.hpp"
#include "support/fortran_report.hpp"
#include "support/process.hpp"

using namespace specfun_test;

namespace {

// One result line of the Fortran probe.
std::string shown(const std::string &label, double value, int ifail) {
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    char hex[17];
    std::snprintf(hex, sizeof hex, "%016llX", (unsigned long long)bits);
    return label + " " + hex + " ifail=" + std::to_string(ifail) + "\n";
}

using kor::test::abnormal_exit;

TEST(FortranInterface, ValuesIfailAndMessages) {
    const auto run = kor::test::run_process(kor::test::probe("specfun_fortran_probe"), {"soft"});

    // The entries share the engines with the C interface, so the values must
    // be the C interface's to the bit; those are checked against
    // independent values here as well.
    const double lg_half = s14abc(0.5, nullptr), gamma5 = s14aac(5.0, nullptr);
    EXPECT_LE(rel_error(lg_half, std::log(std::sqrt(M_PI))), 6.0);
    EXPECT_LE(rel_error(gamma5, 24.0), 12.0);
    const double lower = g01eac(Kor_TailLower, 1.5, nullptr), upper = g01eac(Kor_TailUpper, 1.5, nullptr);
    const double signif = g01eac(Kor_TailSignificance, 1.5, nullptr);
    const double central = g01eac(Kor_TailCentral, 1.5, nullptr);
    EXPECT_LE(rel_error(lower, double(0.5L * std::erfc(-1.5L / std::sqrt(2.0L)))), 12.0);
    EXPECT_LE(rel_error(upper, double(0.5L * std::erfc(1.5L / std::sqrt(2.0L)))), 12.0);
    EXPECT_LE(rel_error(signif, double(std::erfc(1.5L / std::sqrt(2.0L)))), 12.0);
    EXPECT_LE(rel_error(central, double(std::erf(1.5L / std::sqrt(2.0L)))), 12.0);
    const double z = g01fac(Kor_TailSignificance, 0.05, nullptr);
    EXPECT_LE(rel_error(z, 1.9599639845400542355), 16.0);

    const std::string expected =
        shown("s14abf(0.5)", lg_half, 0) +
        "** On entry, x = -3.5e+00.\n"
        "** Constraint: x > 0.0.\n" +
        abnormal_exit("S14ABF", 1) +
        shown("s14abf(-3.5)", 0.0, 1) +
        shown("s14abf(2.56e305)", DBL_MAX, 2) +
        shown("s14aaf(5.0)", gamma5, 0) +
        shown("s14aaf(-3.0)", 4.3e304, 4) +
        "** On entry, x = 1.705e+02.\n"
        "** Constraint: x <= 1.7e+02.\n"
        "** The argument is too large, the function returns the approximate value of\n"
        "** Gamma(x) at the nearest valid argument.\n" +
        abnormal_exit("S14AAF", 1) +
        shown("s14aaf(170.5)", 4.3e304, 1) +
        shown("s15abf(0.0)", 0.5, 0) +
        shown("s15acf(0.0)", 0.5, 0) +
        shown("s15adf(0.3)", std::erfc(0.3), 0) +
        shown("s15aef(0.3)", std::erf(0.3), 0) +
        shown("g01eaf(L)", lower, 0) +
        shown("g01eaf(u)", upper, 0) +
        shown("g01eaf(S)", signif, 0) +
        shown("g01eaf(c)", central, 0) +
        "** On entry, tail = 'q'\n"
        "** Constraint: tail = 'L', 'U', 'S' or 'C'.\n" +
        abnormal_exit("G01EAF", 1) +
        shown("g01eaf(q)", 0.0, 1) +
        shown("g01faf(S,0.05)", z, 0) +
        "** On entry, p = 0.0e+00\n"
        "** Constraint: p > 0.0.\n" +
        abnormal_exit("G01FAF", 2) +
        shown("g01faf(L,0.0)", 0.0, 2) +
        "** On entry, p = 1.0e+00\n"
        "** Constraint: p < 1.0.\n" +
        abnormal_exit("G01FAF", 2) +
        shown("g01faf(l,1.0)", 0.0, 2) +
        shown("g01faf(x,0.0)", 0.0, 1);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, expected);
}

TEST(FortranInterface, HardFailureEndsTheProcess) {
    const auto run = kor::test::run_process(kor::test::probe("specfun_fortran_probe"), {"hard"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, "** On entry, x = 0.0e+00.\n"
                       "** Constraint: x > 0.0.\n" +
                           abnormal_exit("S14ABF", 1, true));
}

TEST(NullFail, FailureEndsTheProcess) {
    const struct { const char *mode, *err; } cases[] = {
        {"s14ab_error",
         "Error detected by KOR routine s14abc:\nNE_REAL_ARG_LE:\n  On entry, x = -1.0e+00.\n"
         "  Constraint: x > 0.0.\n...KOR Function Terminated\n"},
        {"s14aa_error",
         "Error detected by KOR routine s14aac:\nNE_REAL_ARG_GT:\n  On entry, x = 1.71e+02.\n"
         "  Constraint: x <= 1.7e+02.\n  The argument is too large, the function returns the "
         "approximate value of\n  Gamma(x) at the nearest valid argument.\n"
         "...KOR Function Terminated\n"},
        {"g01fa_error",
         "Error detected by KOR routine g01fac:\nNE_REAL:\n  On entry, p = 0.0e+00.\n"
         "  Constraint: p > 0.0.\n...KOR Function Terminated\n"},
    };
    for (const auto &c : cases) {
        const auto run = kor::test::run_process(kor::test::probe("specfun_null_fail_probe"), {c.mode});
        EXPECT_EQ(run.status, 1) << c.mode;
        EXPECT_EQ(run.out, "") << c.mode;
        EXPECT_EQ(run.err, c.err);
    }
}

TEST(NullFail, SuccessReturnsQuietly) {
    const auto run = kor::test::run_process(kor::test::probe("specfun_null_fail_probe"), {"success"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "0.000 6.000 0.500\n");
    EXPECT_EQ(run.err, "");
}

}  // namespace
