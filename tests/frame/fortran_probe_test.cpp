// Runs the Fortran probe (a gfortran program that uses the kor module) and
// compares everything it and the library write.
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "frame_support.hpp"
#include "support/process.hpp"

namespace {

TEST(frameFortranProbe, EntriesCalledFromFortran) {
    kor::test::ScratchDir dir;
    const std::string path = dir.file("fortran.txt");
    const auto run = kor::test::run_process(kor::test::probe("frame_fortran_probe"), {path});

    const double eps = std::ldexp(1.0, -53);
    uint64_t bits;
    std::memcpy(&bits, &eps, sizeof bits);
    char eps_hex[17];
    std::snprintf(eps_hex, sizeof eps_hex, "%016llX", (unsigned long long)bits);

    const std::string expected =
        std::string("x02ajf ") + eps_hex + "\n" +
        "x02bbf 9223372036854775807\n"
        "x02bjf 53\n"
        "x04aaf get 6\n"
        "x04aaf after set 7\n"
        "x04abf get 6\n"
        "from fortran\n"
        " \n"
        "open unit 10 ifail 0\n"
        "close ifail 0\n"
        "read [written by fortran" + std::string(40 - 18, ' ') + "] ifail 0\n"
        "end of file ifail 1\n"
        "bad mode ifail 1\n"
        "close 99 ifail 1\n"
        "** On entry, num_threads = 0\n"
        "** Constraint: num_threads >= 1.\n"
        " ** ABNORMAL EXIT from KOR Library routine X06AAF: IFAIL =     1\n"
        " ** KOR soft failure - control returned\n"
        "x06aaf ifail 1\n"
        "silenced ifail 1\n"
        "x06aaf(4) ifail 0\n";
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, expected);
    EXPECT_EQ(kor::test::read_file(path), "written by fortran\n");
}

}  // namespace
