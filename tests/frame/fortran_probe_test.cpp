// The output units as a gfortran program meets them (frame_fortran_probe).
#include <string>

#include "frame_support.hpp"
#include "support/process.hpp"

namespace {

TEST(frameFortranProbe, UnitsMeetTheProgramsOwnOutput) {
    kor::test::ScratchDir dir;
    const auto run = kor::test::run_process(kor::test::probe("frame_fortran_probe"), {dir.file("f.txt")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, "before\nfrom the library\nbetween\n \n"
                       "read [written by fortran" + std::string(40 - 18, ' ') + "] ifail 0\n"
                       "end of file ifail 1\n");
    EXPECT_EQ(kor::test::read_file(dir.file("f.txt")), "written by fortran\n");
}

}  // namespace
