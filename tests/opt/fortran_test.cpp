// The Fortran-style interfaces as a gfortran program sees them: the probe
// opt_fortran_probe builds, prints and frees handles held as TYPE(C_PTR) and
// as integer(kind=8), and reads an SDPA file after a size query.
#include "opt_support.hpp"
#include "support/process.hpp"

using namespace opt_test;

namespace {

TEST(OptFortran, ProbeBuildsPrintsAndFreesHandles) {
    const kor::test::ProcessResult r =
        kor::test::run_process(kor::test::probe("opt_fortran_probe"), {std::string(KOR_SOURCE_DIR) + "/tests/opt/data"});
    ASSERT_EQ(r.status, 0) << r.err;
    const std::vector<std::string> lines = split_lines(r.out);
    auto at = [&](const std::string &line) { return std::find(lines.begin(), lines.end(), line) - lines.begin(); };
    auto has = [&](const std::string &line) { return at(line) < std::ptrdiff_t(lines.size()); };
    for (const char *line : {"e04raf: ifail = 0", "idlc = 2", "idgroup = 1", "e04zmf: ifail = 0",
                             " Overview", "   No of variables:         3", "   Objective function:      linear",
                             "   Linear constraints:      2", "   Cone constraints:        1",
                             " Objective function", "      x[2]   2.000000e+00",
                             " Congratulations, you found a potato!", " You already have a potato!",
                             "e04ryf: ifail = 0", "e04rzf: ifail = 0", "handle is null",
                             "   No of variables:         2", "integer handle after free = 0",
                             "e04rdf query: ifail = 5", "e04rdf: ifail = 0", "nvar = 6, nblk = 7, nnz = 26",
                             "blksizea = 2 2 2 2 2 2 1"})
        EXPECT_TRUE(has(line)) << line << "\n" << r.out;
    // The refusal and the call after the free, with their message lines.
    const std::ptrdiff_t refusal = at("** On entry, gtype = CONE.");
    ASSERT_LT(refusal, std::ptrdiff_t(lines.size())) << r.out;
    EXPECT_EQ(lines[size_t(refusal + 1)], "** Constraint: gtype = \"QUAD\" or \"RQUAD\".");
    EXPECT_NE(lines[size_t(refusal + 2)].find("ABNORMAL EXIT from KOR Library routine E04RBF"), std::string::npos);
    EXPECT_TRUE(has("e04rbf: ifail = 6")) << r.out;
    const std::ptrdiff_t freed = at("** handle has not been initialized.");
    ASSERT_LT(freed, std::ptrdiff_t(lines.size())) << r.out;
    EXPECT_GT(freed, at("handle is null"));
    EXPECT_TRUE(has("after free: ifail = 1")) << r.out;
    // Output comes in the order written.
    EXPECT_LT(at("e04zmf: ifail = 0"), at(" Overview"));
    EXPECT_LT(at(" You already have a potato!"), at("e04ryf: ifail = 0"));
}

}  // namespace
