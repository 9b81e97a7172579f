// e04zp: option files.  Every outcome of a reading with the line it names
// (physical lines of the file, counted from its first); lines before a
// failure stay applied, the failing line changes nothing.
#include "frame/units.hpp"
#include "opt_support.hpp"

using namespace opt_test;
using E = kor::e04zp::Exit;

namespace {

KorError read_options(void *h, const std::string &path) {
    const int64_t unit = open_unit(path, 0);
    KorError f = fresh_error();
    e04zpc(h, unit, &f);
    close_unit(unit);
    return f;
}

TEST(E04zp, EveryOutcome) {
    struct Case {
        std::string content;
        Want want;
        int64_t print_level;  // 'Print Level' afterwards (default 2)
        double bigbnd;        // 'Infinite Bound Size' afterwards
    };
    const std::string head = "This line comes before the block\n\nBegin\nPrint Level = 4\n";
    // The failing line is line 5; line 6 would have set BIGBND.
    auto line5 = [&](const std::string &bad, const Want &w) {
        return Case{head + bad + "\nInfinite Bound Size = 5e3\nEnd\n", w, 4, 1e20};
    };
    const std::vector<Case> cases = {
        {head + "infinite bound size = 2.5D4\nTask = Maximize\nprint level = default\n  END  \nafter\n", {}, 2, 2.5e4},
        {"  Begin\nPrint Level = 3\nEnd", {}, 3, 1e20},  // no newline at the end
        {"", want<E::no_begin>(), 2, 1e20},
        {"Print Level = 4\nBeginning\nEnd\n", want<E::no_begin>(), 2, 1e20},
        {"begin\nPrint Level = 4\nInfinite Bound Size = 5e3\n", want<E::no_end>(), 4, 5e3},
        line5("Print Level=1", want<E::no_delimiter>({5})),
        line5("", want<E::no_delimiter>({5})),
        line5("Defaults", want<E::no_delimiter>({5})),
        line5("Print Lev = 1", want<E::unknown_option>({5})),
        line5("Print Level = 1.5", want<E::not_numeric>({5})),
        line5("Infinite Bound Size = huge", want<E::not_numeric>({5})),
        line5("Print Options = perhaps", want<E::bad_keyword>({5})),
        line5("Infinite Bound Size = 999", want<E::real_out_of_bounds>({5})),
        line5("Time Limit = 0", want<E::real_out_of_bounds>({5})),
        line5("Print Level = 6", want<E::integer_out_of_bounds>({5})),
        line5("Print Level = " + std::string(100000, '7'), want<E::not_numeric>({5})),  // read whole
        line5(std::string("Print\0Level = 1", 15), want<E::unknown_option>({5})),
        line5("\x01\xff = \x02", want<E::unknown_option>({5})),
        // A failing line leaves its own option as it was, even after an earlier line set it.
        {"Begin\nPrint Level = 3\nTask = Max\nPrint Level = 9\nEnd\n", want<E::integer_out_of_bounds>({4}), 3, 1e20},
    };
    ScratchDir dir;
    for (size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE("case " + std::to_string(i + 1));
        write_file(dir.file("options.txt"), cases[i].content);
        Handle h;
        expect_exit(kor::e04zp::info, cases[i].want, read_options(h.get(), dir.file("options.txt")));
        EXPECT_EQ(h.store().get(kor::opt::slot::print_level), cases[i].print_level);
        EXPECT_EQ(h.store().get(kor::opt::slot::infinite_bound_size), cases[i].bigbnd);
    }
}

// Lines are counted from the file's first line even when the caller read
// some of it before, and a second block of the same file goes on counting.
TEST(E04zp, LineNumbersCountFromTheFilesFirstLine) {
    ScratchDir dir;
    // Lines 1-4 end in CR LF, read as line ends; line 8 is refused.
    write_file(dir.file("o.txt"), "header line\r\nBegin\r\nPrint Level = 1\r\nEnd\r\n"
                                  "comment between blocks\nBEGIN\nPrint Options = No\nTime Limit = -1\nEnd\n");
    Handle h;
    const int64_t unit = open_unit(dir.file("o.txt"), 0);
    std::string first;  // the caller reads the first record itself
    ASSERT_EQ(kor::frame::units::read_record(unit, first), kor::frame::units::ReadStatus::ok);
    KorError f = fresh_error();
    e04zpc(h.get(), unit, &f);
    expect_success(f);
    EXPECT_EQ(h.store().get(kor::opt::slot::print_level), 1);
    e04zpc(h.get(), unit, &f);
    expect_exit(kor::e04zp::info, want<E::real_out_of_bounds>({8}), f);
    EXPECT_EQ(h.store().keyword(kor::opt::slot::print_options), "NO");
    e04zpc(h.get(), unit, &f);  // the unit is at its end now
    expect_exit(kor::e04zp::info, want<E::no_begin>(), f);
    close_unit(unit);
}

TEST(E04zp, UnitsThatCannotBeReadHaveNoBegin) {
    ScratchDir dir;
    Handle h;
    const int64_t out = open_unit(dir.file("w.txt"), 1);
    for (int64_t unit : {int64_t(-1), int64_t(6), int64_t(99), out}) {
        SCOPED_TRACE(unit);
        KorError f = fresh_error();
        e04zpc(h.get(), unit, &f);
        expect_exit(kor::e04zp::info, want<E::no_begin>(), f);
    }
    close_unit(out);
}

}  // namespace
