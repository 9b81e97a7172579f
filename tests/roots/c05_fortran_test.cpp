// The Fortran-style interfaces c05ayf and c05azf, run in the probe program
// c05_fortran_probe: IFAIL values, the exact message lines, and the three
// ways of failing (quiet, noisy, hard).
#include <cmath>
#include <string>
#include <vector>

#include "roots/brent_cases.hpp"
#include "support/fortran_report.hpp"
#include "support/process.hpp"

using namespace roots_test;
using kor::test::FortranCase;
using kor::test::failure_lines;
using kor::test::probe;
using kor::test::probe_output;
using kor::test::run_process;

namespace {

// The last line of a successful search: the bits of x and the number of
// function values, taken from the same search through the C interface.
std::string success_line(double x, int64_t calls) {
    int64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return "x bits = " + std::to_string(bits) + ", calls = " + std::to_string(calls);
}

double square_minus_3(double x) { return x * x - 3.0; }

std::vector<FortranCase> fortran_cases() {
    Counted counter{square_minus_3};
    Kor_Comm comm{&counter, nullptr, nullptr};
    double x = 0;
    KorError fail = KOR_ERROR_INIT;
    c05ayc(0.0, 3.0, 1e-10, 0.0, counted, &x, &comm, &fail);
    EXPECT_LE(std::fabs(x - std::sqrt(3.0)), 1e-10 + 2 * ulp(1.7));
    const Search s = drive(square_minus_3, 0.0, 3.0, 1e-10, Kor_TestMixed);

    // clang-format off
    return {
        {"c05ayf success", 0, {success_line(x, counter.calls)}},
        {"c05ayf eps", 1, {"** On entry, eps = -1.0e+00", "** Constraint: eps > 0.0."}},
        {"c05ayf a=b", 1, {"** On entry, a = 1.0e+00 and b = 1.0e+00", "** Constraint: a /= b."}},
        {"c05ayf infinite b", 1, {"** On entry, a = 0.0e+00 and b = Infinity",
                                  "** Constraint: a and b must be finite."}},
        {"c05ayf same sign", 1,
         {"** On entry, f(a) and f(b) have the same sign with neither equalling 0.0:",
          "** f(a) = 1.0e+00 and f(b) = 2.0e+00"}},
        {"c05ayf eps too small", 2,
         {"** No further improvement in the solution is possible.",
          "** eps is too small: eps = 1.0e-300",
          "** The final value of x returned is an accurate approximation to the zero."}},
        {"c05ayf pole", 3,
         {"** The function values in the interval [a,b] might contain",
          "** a pole rather than a zero. Reducing eps may help in distinguishing between",
          "** a pole and a zero."}},
        {"c05azf success", 0, {success_line(s.x, s.requests)}},
        {"c05azf ind 0", 2, {"** On initial entry, ind = 0", "** Constraint: ind = -1 or 1."}},
        {"c05azf ind 4 fresh", 2,
         {"** On intermediate entry, ind = 4", "** Constraint: ind = 2, 3 or 4."}},
        {"c05azf tolx", 3, {"** On entry, tolx = 0.0e+00", "** Constraint: tolx > 0.0."}},
        {"c05azf ir", 3, {"** On entry, ir = -1", "** Constraint: ir = 0, 1 or 2."}},
        {"c05azf NaN x", 6, {"** On initial entry, x = NaN and y = 1.0e+00",
                             "** Constraint: x and y must be finite."}},
        {"c05azf same sign", 1,
         {"** On entry, f(x) and f(y) have the same sign with neither equalling 0.0:",
          "** f(x) = 2.0e+00 and f(y) = 1.0e+00"}},
        {"c05azf pole", 4,
         {"** The final interval may contain a pole rather than a zero.",
          "** Note that this error exit is not completely reliable: it may be taken",
          "** in extreme cases when [x,y] contains a zero, or it may not be taken",
          "** when [x,y] contains a pole.",
          "** Both these cases occur most frequently when tolx is large."}},
        {"c05azf accuracy", 5,
         {"** The tolerance tolx has been set too small for the problem",
          "** being solved. However, the values x and y returned may well",
          "** be good approximations to the zero.", "** tolx = 1.0e-30"}},
    };
    // clang-format on
}

TEST(C05Fortran, QuietFailureOnlySetsIfail) {
    for (const char *mode : {"quiet", "two"})  // IFAIL = 2 on entry is quiet as well
        expect_probe_returns("c05_fortran_probe", mode, fortran_cases(), false);
}

TEST(C05Fortran, NoisyFailurePrintsTheMessageAndReturns) {
    expect_probe_returns("c05_fortran_probe", "noisy", fortran_cases(), true);
}

TEST(C05Fortran, HardFailureEndsTheProgram) {
    // The probe repeats the cases "c05ayf eps" and (a warning, which ends the
    // program as well) "c05azf accuracy" with IFAIL = 0; "returned" is never
    // written.
    for (const auto &[mode, label] :
         {std::pair{"hard_ay", "c05ayf eps"}, std::pair{"hard_az", "c05azf accuracy"}}) {
        FortranCase c;
        for (const FortranCase &each : fortran_cases())
            if (each.label == label) c = each;
        expect_probe_ends("c05_fortran_probe", mode, c);
    }
}

}  // namespace
