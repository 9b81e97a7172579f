// A null KorError record, once for all routines: an error or a warning
// writes "<heading> KOR routine <name>:", the message the same call
// reports into a record and "...KOR Function Terminated" on standard error
// and ends the process with status 1; a success returns quietly.
#include <gtest/gtest.h>

#include <string>

#include "support/files.hpp"
#include "support/process.hpp"

namespace {

TEST(NullFail, ErrorsAndWarningsEndTheProcessSuccessReturns) {
    KorError ay = kor::test::fresh_error(), sj = ay, ab = ay;
    int64_t seed = 1762543, state[100], lstate = 100;
    double x = 0.0;
    c05ayc(0.0, 2.0, -1.0, 0.0, [](double x, Kor_Comm *) { return x * x - 2.0; }, &x, nullptr, &ay);
    g05kfc(Kor_MRG32k3a, 1, &seed, 1, state, &lstate, &sj);
    g05sjc(1, 0.001, 1.0, state, &x, &sj);  // NW_REAL: a warning
    s14abc(-1.0, &ab);
    const struct { const char *mode, *heading, *routine; const KorError &fail; } cases[] = {
        {"error", "Error detected by", "c05ayc", ay},
        {"warning", "Warning from", "g05sjc", sj},
        {"function", "Error detected by", "s14abc", ab},
        {"success", "", "", ab},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.mode);
        const auto r = kor::test::run_process(kor::test::probe("null_fail_probe"), {c.mode});
        const bool ends = *c.heading != '\0';
        EXPECT_EQ(r.status, ends ? 1 : 0);
        EXPECT_EQ(r.out, ends ? "" : "returned\n");
        EXPECT_EQ(r.err, ends ? std::string(c.heading) + " KOR routine " + c.routine + ":\n" + c.fail.message +
                                    "\n...KOR Function Terminated\n"
                              : "");
    }
}

}  // namespace
