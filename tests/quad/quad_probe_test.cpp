// The Fortran-style interfaces d01rjf, d01rkf, m01daf and m01eaf, run in
// the probe program quad_fortran_probe (IUSER and RUSER carry the
// integrand's kind and parameter): IFAIL values, the exact message lines,
// and quiet, noisy and hard failure; and d01rjc with a null KorError.
#include <cstring>
#include <string>
#include <vector>

#include "quad/quad_cases.hpp"
#include "support/fortran_report.hpp"
#include "support/process.hpp"

using namespace quad_test;
using kor::test::FortranCase;
using kor::test::failure_lines;
using kor::test::probe;
using kor::test::probe_output;
using kor::test::run_process;

namespace {

int64_t bits(double x) {
    int64_t b;
    std::memcpy(&b, &x, sizeof b);
    return b;
}

// What the probe prints for a successful quadrature, from the same
// integration through the C interface.
std::string success_line(const QuadRun &r) {
    return "result bits = " + std::to_string(bits(r.result)) + ", abserr bits = " +
           std::to_string(bits(r.abserr)) + ", calls = " + std::to_string(r.calls) +
           ", nsub = " + std::to_string(r.nsub());
}

// The subinterval named by the C message of the same failure, as the
// Fortran line shows it.
std::string bad_subinterval_line() {
    const QuadRun r = run_d01rj(Integrand{"interior", -1.0}, 0.0, 1.0, 0.0, 1e-10, 200);
    const std::string m = r.fail.message;
    const size_t open = m.rfind('('), close = m.rfind(')');
    return "** " + m.substr(open, close - open + 1);
}

std::vector<FortranCase> cases() {
    const QuadRun rj = run_d01rj(Integrand{"xlog", -0.5}, 0.0, 1.0, 0.0, 1e-10, 50);
    const QuadRun rk = run_d01rk(Integrand{"xlog", 0.5}, 0.0, 1.0, 2, 0.0, 1e-10, 100);
    EXPECT_EQ(rj.fail.code, NE_NOERROR);
    EXPECT_EQ(rk.fail.code, NE_NOERROR);
    // clang-format off
    return {
        {"d01rjf success", 0, {success_line(rj)}},
        {"d01rjf maxsub", 11, {"** On entry, maxsub = 0", "** Constraint: maxsub >= 1."}},
        {"d01rjf stop", -1, {"** Exit from f with iflag < 0."}},
        {"d01rjf limit", 1, {"** The maximum number of subdivisions (maxsub) has been reached:",
                             "** maxsub = 3"}},
        {"d01rjf round-off", 2, {"** Round-off error prevents the requested tolerance from being achieved:",
                                 "** epsabs = 1.0e-300 and epsrel = 0.0e+00"}},
        {"d01rjf bad", 3, {"** Extremely bad integrand behaviour occurs around the sub-interval",
                           bad_subinterval_line()}},
        {"d01rjf extrapolation", 4, {"** Round-off error is detected in the extrapolation table."}},
        {"d01rjf divergent", 5, {"** The integral is probably divergent or slowly convergent."}},
        {"d01rkf success", 0, {success_line(rk)}},
        {"d01rkf key", 12, {"** On entry, key = 7", "** Constraint: key = 1, 2, 3, 4, 5 or 6."}},
        // 3, 1, 2, 1 in descending order, equal values in order of appearance.
        {"m01daf success", 0, {"ranks =  1 3 2 4"}},
        {"m01daf n", 1, {"** On entry, n = 0", "** Constraint: n >= 1."}},
        {"m01daf order", 2, {"** On entry, order = 'X'", "** Constraint: order = 'A' or 'D'."}},
        {"m01eaf success", 0, {"rv =  3.0 2.0 1.0 1.0"}},
        {"m01eaf perm", 2, {"** On entry, irank is not a permutation of 1, 2, ..., n."}},
    };
    // clang-format on
}

TEST(QuadFortran, QuietFailureOnlySetsIfail) {
    expect_probe_returns("quad_fortran_probe", "quiet", cases(), false);
}

TEST(QuadFortran, NoisyFailurePrintsTheMessageAndReturns) {
    expect_probe_returns("quad_fortran_probe", "noisy", cases(), true);
}

TEST(QuadFortran, HardFailureEndsTheProgram) {
    expect_probe_ends("quad_fortran_probe", "hard", cases()[1]);  // d01rjf maxsub, with IFAIL = 0
}

TEST(QuadNullFail, WarningsAndStopsEndTheProcess) {
    const std::string tail = "...KOR Function Terminated\n";
    auto r = run_process(probe("quad_null_fail_probe"), {"warning"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "Error detected by KOR routine d01rjc:\nNE_QUAD_MAX_SUBDIV:\n"
                     "  The maximum number of subdivisions (maxsub) has been reached:\n"
                     "  maxsub = 1.\n" + tail);
    r = run_process(probe("quad_null_fail_probe"), {"stop"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "Error detected by KOR routine d01rjc:\nNE_USER_STOP:\n"
                     "  Exit from f with iflag < 0.\n" + tail);
    r = run_process(probe("quad_null_fail_probe"), {"success"});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, "0.333333333333333\n");
    EXPECT_EQ(r.err, "");
}

}  // namespace
