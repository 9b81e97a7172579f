// e04zp: option files.  Each failure of the reading with its line number
// (physical lines of the file, counted from its first), both interfaces;
// lines before a failure stay applied, the failing line changes nothing.
#include "opt/options_support.hpp"

using namespace kor;
using namespace kor::opt_test;

namespace {

struct FileCase {
    std::string label;
    std::string content;
    int code;                          // NE_NOERROR for a file read whole
    std::string c;                     // message after "NAME:\n  "
    std::vector<std::string> fortran;  // Fortran message lines
    int64_t ifail;
    int64_t print_level;               // 'Print Level' afterwards (default 2)
    double bigbnd;                     // 'Infinite Bound Size' afterwards
};

std::string code_name(int code) {
    switch (code) {
    case NE_NOERROR: return "NE_NOERROR";
    case NE_INVALID_OPTION: return "NE_INVALID_OPTION";
    case NE_INVALID_FORMAT: return "NE_INVALID_FORMAT";
    case NE_INVALID_VALUE: return "NE_INVALID_VALUE";
    case NE_NOT_READ_FILE: return "NE_NOT_READ_FILE";
    }
    return "?";
}

std::vector<FileCase> file_cases() {
    const std::string head = "This line comes before the block\n\nBegin\nPrint Level = 4\n";
    auto line_case = [&](const std::string &label, const std::string &bad, int code, std::string c,
                         std::vector<std::string> fortran, int64_t ifail) {
        // The failing line is line 5; line 6 would have set BIGBND.
        return FileCase{label, head + bad + "\nInfinite Bound Size = 5e3\nEnd\n", code, c, fortran, ifail, 4, 1e20};
    };
    return {
        {"whole file", head + "infinite bound size = 2.5D4\nTask = Maximize\nprint level = default\n  END  \nafter\n",
         NE_NOERROR, "No error.", {}, 0, 2, 2.5e4},
        {"empty", "", NE_NOT_READ_FILE, "End-of-file or read error detected before BEGIN was found.",
         {"** End-of-file or read error detected before BEGIN was found."}, 3, 2, 1e20},
        {"no begin", "Print Level = 4\nBeginning\nEnd\n", NE_NOT_READ_FILE,
         "End-of-file or read error detected before BEGIN was found.",
         {"** End-of-file or read error detected before BEGIN was found."}, 3, 2, 1e20},
        {"no end", "begin\nPrint Level = 4\nInfinite Bound Size = 5e3\n", NE_NOT_READ_FILE,
         "BEGIN found, but end-of-file found before END.",
         {"** BEGIN found, but end-of-file found before END."}, 3, 4, 5e3},
        {"end without newline", "  Begin\nPrint Level = 3\nEnd", NE_NOERROR, "No error.", {}, 0, 3, 1e20},
        line_case("no blanks around =", "Print Level=1", NE_INVALID_FORMAT,
                  "The expected delimiter ' = ' was not found on line 5.",
                  {"** The expected delimiter ' = ' was not found on line 5."}, 12),
        line_case("blank line", "", NE_INVALID_FORMAT, "The expected delimiter ' = ' was not found on line 5.",
                  {"** The expected delimiter ' = ' was not found on line 5."}, 12),
        line_case("Defaults in a file", "Defaults", NE_INVALID_FORMAT,
                  "The expected delimiter ' = ' was not found on line 5.",
                  {"** The expected delimiter ' = ' was not found on line 5."}, 12),
        line_case("unknown option", "Print Lev = 1", NE_INVALID_OPTION,
                  "The option provided on line 5 was not recognized.",
                  {"** The option provided on line 5 was not recognized."}, 11),
        line_case("not an integer", "Print Level = 1.5", NE_INVALID_FORMAT,
                  "The optval provided on line 5 could not be converted to the expected numerical type.",
                  {"** The optval provided on line 5 could not be converted", "** to the expected numerical type."},
                  12),
        line_case("not a real", "Infinite Bound Size = huge", NE_INVALID_FORMAT,
                  "The optval provided on line 5 could not be converted to the expected numerical type.",
                  {"** The optval provided on line 5 could not be converted", "** to the expected numerical type."},
                  12),
        line_case("bad keyword", "Print Options = perhaps", NE_INVALID_VALUE,
                  "The optval provided on line 5 for the character optional parameter is not valid.",
                  {"** The optval provided on line 5 for the character optional", "** parameter is not valid."}, 13),
        line_case("real out of bounds", "Infinite Bound Size = 999", NE_INVALID_VALUE,
                  "The optval provided on line 5 for the real optional parameter is out of bounds.",
                  {"** The optval provided on line 5 for the real optional", "** parameter is out of bounds."}, 13),
        line_case("integer out of bounds", "Print Level = 6", NE_INVALID_VALUE,
                  "The optval provided on line 5 for the integer optional parameter is out of bounds.",
                  {"** The optval provided on line 5 for the integer optional", "** parameter is out of bounds."}, 13),
        line_case("strict bound met", "Time Limit = 0", NE_INVALID_VALUE,
                  "The optval provided on line 5 for the real optional parameter is out of bounds.",
                  {"** The optval provided on line 5 for the real optional", "** parameter is out of bounds."}, 13),
    };
}

TEST(E04zp, EveryOutcomeThroughBothInterfaces) {
    ScratchDir dir;
    for (const FileCase &c : file_cases()) {
        SCOPED_TRACE(c.label);
        const std::string path = dir.file("options.txt");
        write_file(path, c.content);
        {
            Handle h;
            const int64_t unit = open_unit(path, 0);
            KorError fail = fresh_error();
            e04zpc(h.get(), unit, &fail);
            close_unit(unit);
            EXPECT_EQ(fail.code, c.code);
            EXPECT_EQ(std::string(fail.message), code_name(c.code) + ":\n  " + c.c);
            EXPECT_EQ(fail.errnum, c.code == NE_NOERROR ? 0 : c.ifail);
            EXPECT_EQ(h.store().get(opt::slot::print_level), c.print_level);
            EXPECT_EQ(h.store().get(opt::slot::infinite_bound_size), c.bigbnd);
        }
        {
            Handle h;
            const int64_t unit = open_unit(path, 0);
            int64_t ifail = 0;
            const std::string out = capture_errors([&] { ifail = e04zp_fortran(h.get(), unit, -1); });
            close_unit(unit);
            EXPECT_EQ(ifail, c.ifail);
            EXPECT_EQ(out, c.ifail ? fortran_report(c.fortran, "E04ZPF", c.ifail) : "");
            EXPECT_EQ(h.store().get(opt::slot::print_level), c.print_level);
            EXPECT_EQ(h.store().get(opt::slot::infinite_bound_size), c.bigbnd);
        }
    }
}

// A failing line leaves its own option as it was, even after earlier lines
// of the same file set it.
TEST(E04zp, FailedLineLeavesItsOptionUnchanged) {
    ScratchDir dir;
    write_file(dir.file("o.txt"), "Begin\nPrint Level = 3\nTask = Max\nPrint Level = 9\nEnd\n");
    Handle h;
    const int64_t unit = open_unit(dir.file("o.txt"), 0);
    KorError fail = fresh_error();
    e04zpc(h.get(), unit, &fail);
    close_unit(unit);
    EXPECT_EQ(fail.code, NE_INVALID_VALUE);
    EXPECT_EQ(std::string(fail.message),
              "NE_INVALID_VALUE:\n  The optval provided on line 4 for the integer optional parameter is out of bounds.");
    EXPECT_EQ(h.store().get(opt::slot::print_level), 3);
    EXPECT_EQ(h.store().keyword(opt::slot::task), "MAX");
}

// Lines are counted from the file's first line even when the caller read
// some of it before, and a second block of the same file goes on counting.
TEST(E04zp, LineNumbersCountFromTheFilesFirstLine) {
    ScratchDir dir;
    write_file(dir.file("o.txt"),
               "header line\r\n"           // 1 (CRLF line ends are read as line ends)
               "Begin\r\n"                 // 2
               "Print Level = 1\r\n"       // 3
               "End\r\n"                   // 4
               "comment between blocks\n"  // 5
               "BEGIN\n"                   // 6
               "Print Options = No\n"      // 7
               "Time Limit = -1\n"         // 8: refused
               "End\n");
    Handle h;
    const int64_t unit = open_unit(dir.file("o.txt"), 0);
    // The caller reads the first record itself.
    std::string first;
    ASSERT_EQ(frame::units::read_record(unit, first), frame::units::ReadStatus::ok);
    KorError fail = fresh_error();
    e04zpc(h.get(), unit, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    EXPECT_EQ(h.store().get(opt::slot::print_level), 1);
    e04zpc(h.get(), unit, &fail);
    EXPECT_EQ(std::string(fail.message),
              "NE_INVALID_VALUE:\n  The optval provided on line 8 for the real optional parameter is out of bounds.");
    EXPECT_EQ(h.store().keyword(opt::slot::print_options), "NO");
    // The unit is at its end now.
    e04zpc(h.get(), unit, &fail);
    EXPECT_EQ(fail.code, NE_NOT_READ_FILE);
    close_unit(unit);
}

TEST(E04zp, UnitsThatCannotBeRead) {
    ScratchDir dir;
    Handle h;
    const int64_t out = open_unit(dir.file("w.txt"), 1);
    for (int64_t unit : {int64_t(-1), int64_t(6), int64_t(99), out}) {
        SCOPED_TRACE(unit);
        KorError fail = fresh_error();
        e04zpc(h.get(), unit, &fail);
        EXPECT_EQ(std::string(fail.message),
                  "NE_NOT_READ_FILE:\n  End-of-file or read error detected before BEGIN was found.");
    }
    close_unit(out);
}

// Lines of any length and content are read whole: a very long value is
// refused with its line number, not cut into pieces.
TEST(E04zp, LongAndBinaryLines) {
    ScratchDir dir;
    std::string content = "Begin\nPrint Level = " + std::string(100000, '7') + "\nEnd\n";
    write_file(dir.file("o.txt"), content);
    Handle h;
    int64_t unit = open_unit(dir.file("o.txt"), 0);
    KorError fail = fresh_error();
    e04zpc(h.get(), unit, &fail);
    close_unit(unit);
    EXPECT_EQ(std::string(fail.message),
              "NE_INVALID_FORMAT:\n  The optval provided on line 2 could not be converted to the expected numerical type.");
    static const char binary[] = "Begin\nPrint\0Level = 1\n\x01\xff = \x02\nEnd\n";
    write_file(dir.file("b.txt"), std::string(binary, sizeof binary - 1));
    unit = open_unit(dir.file("b.txt"), 0);
    e04zpc(h.get(), unit, &fail);
    close_unit(unit);
    EXPECT_EQ(std::string(fail.message), "NE_INVALID_OPTION:\n  The option provided on line 2 was not recognized.");
}

}  // namespace
