// The option routines called from a gfortran program (options_fortran_probe):
// CHARACTER arguments with their hidden lengths, values read back, noisy and
// quiet failures, an option file, and a freed handle.
#include "opt/options_support.hpp"
#include "support/process.hpp"

using namespace kor::opt_test;

namespace {

TEST(OptionsFortran, ProbeOutput) {
    ScratchDir dir;
    write_file(dir.file("options.txt"),
               "Options for the probe\n"
               "Begin\n"
               "Time Limit = 60.5\n"
               "Print Level = 3\n"
               "Print Level = ten\n"
               "End\n");
    const kor::test::ProcessResult r =
        kor::test::run_process(kor::test::probe("options_fortran_probe"), {dir.file("options.txt")});
    EXPECT_EQ(r.status, 0) << r.err;
    const char *abnormal = " ** ABNORMAL EXIT from KOR Library routine ";
    const char *soft = " ** KOR soft failure - control returned\n";
    const std::string expected =
        "print level 4 optype 1 ifail 0\n"
        "bigbnd   1.0000000000000000E+21 optype 2\n"
        "task [MAXIMIZE                      ] optype 3\n"
        "print options [N]\n"
        "** On entry, the option supplied in optstr was not recognized:\n"
        "** optstr = \"Print Lev = 1\".\n" +
        std::string(abnormal) + "E04ZMF: IFAIL =    11\n" + soft +
        "unknown ifail 11\n"
        "** On entry, the optval supplied for the integer optional parameter\n"
        "** is not valid.\n"
        "** option = \"Print Level\", optval = 6.\n"
        "** Constraint: optval <= 5.\n" +
        abnormal + "E04ZMF: IFAIL =    13\n" + soft +
        "bound ifail 13\n"
        "quiet ifail 13\n"
        "** The optval provided on line 5 could not be converted\n"
        "** to the expected numerical type.\n" +
        abnormal + "E04ZPF: IFAIL =    12\n" + soft +
        "file ifail 12\n"
        "time limit   6.0500000000000000E+01\n"
        "print level 3\n"
        "Defaults\n"
        "after defaults 2\n"
        "** handle has not been initialized.\n" +
        abnormal + "E04ZMF: IFAIL =     1\n" + soft +
        "freed ifail 1\n";
    EXPECT_EQ(r.out, expected);
    EXPECT_EQ(r.err, "");
}

}  // namespace
