// Every exit of every routine, composed through both interfaces: the C
// report (code, errnum, "NAME:\n  " and the text with its values in place)
// and the Fortran-style lines ("** " lines with the values, the ABNORMAL
// EXIT line and the soft-failure line, or nothing when quiet).  The texts
// come from the definitions; what this checks is the composition, so a
// fault in the frame fails here for all routines at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "frame/interface.hpp"
#include "routine_index.hpp"
#include "support/exits.hpp"
#include "support/files.hpp"
#include "support/fortran_report.hpp"

namespace {

using namespace testing::internal;  // CaptureStdout

// Distinct value texts, one per slot, of the kinds engines write.
const char *const sample_values[] = {"-2.5e-01", "7",   "abc", "1.0e+300", "-3",      "x_y",
                                     "NaN",      "0",   "1e-5", "Infinity", "(1,2)", "z"};

std::string record_text(const kor::frame::ExitInfo &e) {
    std::string text = "\x01" + std::to_string(e.outcome) + "\x01" + std::to_string(e.message) +
                       "\x01" + std::to_string(e.nvalues) + "\x01";
    for (int i = 0; i < e.nvalues; ++i) text += std::string(sample_values[i]) + "\x01";
    text.resize(kor::frame::record_length - 1, ' ');
    return text + '\0';
}

// `pattern` with its "%s" slots filled from values[next...] and "%%" as "%".
std::string fill(const std::string &pattern, int &next) {
    std::string out;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const bool slot = pattern.compare(i, 2, "%s") == 0;
        out += slot ? std::string(sample_values[next++]) : std::string(1, pattern[i]);
        if (slot || pattern.compare(i, 2, "%%") == 0) ++i;
    }
    return out;
}

TEST(EveryExit, ComposesTheCReport) {
    int exits = 0;
    for (const kor::frame::RoutineInfo *info : kor::index::routines)
        for (int i = 0; i < info->nexits; ++i, ++exits) {
            const kor::frame::ExitInfo &e = info->exits[i];
            SCOPED_TRACE(std::string(info->c_name) + " exit " + e.name);
            // The definition's code and the message table agree on the name.
            ASSERT_TRUE(e.code >= 0 && e.code < KOR_ERRLIST_SIZE && kor_errlist[e.code]);
            EXPECT_EQ(std::string(kor_errlist[e.code]).find(std::string(e.code_name) + ":\n"), 0u);

            KorError fail = kor::test::fresh_error();
            kor::frame::report_c(*info, record_text(e).c_str(), e.outcome, &fail);
            EXPECT_EQ(fail.errnum, e.outcome);
            if (e.c_success) {  // reported at the Fortran-style interface only
                EXPECT_EQ(fail.code, 0);
                continue;
            }
            int next = 0;
            const std::string expected = std::string(e.code_name) + ":\n  " + fill(e.c_text, next);
            EXPECT_EQ(fail.code, e.code);
            EXPECT_EQ(fail.message, expected.substr(0, sizeof fail.message - 1));
            std::vector<std::string> values;
            EXPECT_TRUE(kor::test::match_exit_message(e, fail.message, values));
        }
    EXPECT_GT(exits, 300);
}

// A line may run past 80 characters once its values are in; it then goes on
// in further records that begin "** " again, so the records, each at most
// 80 characters, hold the line's words in order.
std::string words_of(const std::string &lines, bool records) {
    std::string out;
    std::stringstream s(lines);
    bool first = true;
    for (std::string record; std::getline(s, record);) {
        if (records) {
            EXPECT_LE(record.size(), 80u) << record;
            EXPECT_EQ(record.compare(0, 2, "**"), 0) << record;
            if (!first) record = record.substr(std::min<size_t>(3, record.size()));
        }
        first = false;
        for (char c : record)
            if (c != ' ') out += c;
    }
    return out;
}

TEST(EveryExit, ComposesTheFortranLines) {
    int split = 0;
    for (const kor::frame::RoutineInfo *info : kor::index::routines)
        for (int i = 0; i < info->nexits; ++i) {
            const kor::frame::ExitInfo &e = info->exits[i];
            SCOPED_TRACE(std::string(info->c_name) + " exit " + e.name);
            const std::string text = record_text(e);
            int64_t ifail = -1;  // noisy: the lines, then control returned
            CaptureStdout();
            kor::frame::report_fortran(*info, text.c_str(), e.outcome, &ifail);
            std::string out = GetCapturedStdout();
            EXPECT_EQ(ifail, e.outcome);
            const std::string tail = kor::test::abnormal_exit(info->fortran_name, e.outcome);
            ASSERT_GE(out.size(), tail.size());
            EXPECT_EQ(out.substr(out.size() - tail.size()), tail);
            out.resize(out.size() - tail.size());

            int next = 0;
            for (int l = 0; l < e.nlines; ++l) {
                const std::string line = "** " + fill(e.fortran_lines[l], next);
                const size_t records = std::max<size_t>(1, (line.size() + 79) / 80);
                size_t end = 0;  // the records of this line: as many as its words need
                std::string want = words_of(line, false), got;
                while (got.size() < want.size() && end < out.size()) {
                    end = out.find('\n', end) + 1;
                    got = words_of(out.substr(0, end), true);
                }
                EXPECT_EQ(got, want);
                split += records > 1;
                out = out.substr(end);
            }
            EXPECT_EQ(out, "");
            EXPECT_EQ(next, e.nvalues);

            ifail = 1;  // quiet: only IFAIL
            CaptureStdout();
            kor::frame::report_fortran(*info, text.c_str(), e.outcome, &ifail);
            EXPECT_EQ(GetCapturedStdout(), "");
            EXPECT_EQ(ifail, e.outcome);
        }
    EXPECT_GT(split, 0);  // some definition line needs a second record
}

}  // namespace
