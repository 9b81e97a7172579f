// The error exits: p01acc_c (C records), p01abzu_/p01abxu_ (IFAIL), the
// record parser p01abtn_, and the older exits p01acf_f and p01abw_f.  How
// every routine's exits compose through them is in tests/interfaces.
#include <cstring>
#include <string>
#include <vector>

#include "frame/errors.hpp"
#include "frame_support.hpp"
#include "support/fortran_report.hpp"
#include "support/process.hpp"
#include "x04aa_def.hpp"

namespace {

using kor::test::fresh_error;
using namespace testing::internal;  // CaptureStdout and friends

const std::string soft = " ** KOR soft failure - control returned\n";
const std::string hard = " ** KOR hard failure - execution terminated\n";

// What the handler saw, including the record as it stood during the call.
struct Seen {
    std::string text, routine, message_then;
    int code = -1, code_then = -1, calls = 0;
} seen;
const KorError *watched = nullptr;
void handler(const char *text, int code, const char *routine) {
    seen = {text, routine, watched->message, code, watched->code, seen.calls + 1};
}

TEST(frameCExit, HandlerSeesEveryReportBeforeTheCopy) {
    const std::string own = "NE_INT:\n  On entry, n = 0.";
    const struct { const char *text; int code; std::string stored; } cases[] = {
        {nullptr, 0, "NE_NOERROR:\n  No error."},  // success closes every call
        {own.c_str(), NE_INT, own},
        {nullptr, NE_BAD_PARAM, kor_errlist[NE_BAD_PARAM]},
        {nullptr, 716, kor_errlist[NE_INTERNAL_ERROR]},  // a code without an entry
        {nullptr, 100000, kor_errlist[NE_INTERNAL_ERROR]},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.code);
        KorError fail = fresh_error();
        fail.code = 33;
        fail.handler = handler;
        std::strcpy(fail.message, "previous");
        watched = &fail;
        seen = {};
        p01acc_c(c.text, c.code, "c05ayc", &fail);
        EXPECT_EQ(seen.calls, 1);
        EXPECT_EQ(seen.code, c.code);
        EXPECT_EQ(seen.code_then, c.code);
        EXPECT_EQ(seen.message_then, "previous");
        EXPECT_EQ(seen.text, c.stored);
        EXPECT_EQ(seen.routine, "c05ayc");
        EXPECT_EQ(fail.message, c.stored);
    }
    // A long text is cut to the record's 511 characters and terminated.
    std::string text = "NE_INT:\n  " + std::string(700, 'a');
    KorError fail = fresh_error();
    p01acc_c(text.c_str(), NE_INT, "x06aac", &fail);
    EXPECT_EQ(std::string(fail.message), text.substr(0, 511));
}

// The letter after the first N among the first five characters decides;
// without such an N the sixth character does.  Success prints nothing.
TEST(frameCExit, ErrorOrWarningWhenPrinting) {
    const struct { const char *text; bool error; } cases[] = {
        {"NE_INT:\n  x", true}, {"NW_INT:\n  x", false}, {"abNEx", true},  {"xxNWE", false},
        {"NNE", false},         {"ABCDNE", true},        {"abcdeE", true}, {"abcdeW", false},
        {"ABCDEN", false},      {"abcde", false},        {"NE", true},     {"abcdefE", false},
    };
    for (const auto &c : cases)
        for (int print : {1, 0}) {
            SCOPED_TRACE(std::string(c.text) + (print ? " printed" : " quiet"));
            KorError fail = fresh_error();
            fail.print = print;
            CaptureStderr();
            p01acc_c(c.text, NE_INT, "g05sac", &fail);
            const std::string head = c.error ? "Error detected by KOR routine g05sac:\n"
                                             : "Warning from KOR routine g05sac:\n";
            EXPECT_EQ(GetCapturedStderr(), print ? head + c.text + "\n" : "");
        }
    CaptureStderr();
    KorError loud = fresh_error();
    loud.print = 1;
    p01acc_c(nullptr, 0, "x06aac", &loud);
    p01acc_c(nullptr, 0, "x06aac", nullptr);
    EXPECT_EQ(GetCapturedStderr(), "");
}

// p01abzu_ with two message lines, IFAIL on entry ifail_in.
std::string exit_with(int64_t ifail_in, int64_t outcome, int64_t *ifail_out) {
    std::vector<char> lines(160, ' ');
    std::memcpy(lines.data(), "** First line.", 14);
    std::memcpy(lines.data() + 80, "** Second  line.", 16);
    const int64_t nlines = 2;
    *ifail_out = ifail_in;
    CaptureStdout();
    p01abzu_(ifail_out, &outcome, "C05AYF", lines.data(), &nlines, 6, 80);
    return GetCapturedStdout();
}

const std::string two_lines = "** First line.\n** Second  line.\n";

TEST(frameFortranExit, IfailOnEntrySelectsHowToFail) {
    // -1 prints and returns; any value but 0 and -1 is quiet; outcome 0
    // only stores 0.  The outcome is right-justified in 6 columns.
    const struct { int64_t ifail, outcome; bool prints; } cases[] = {
        {-1, 3, true},  {1, 3, false},    {2, 3, false},     {-2, 3, false},  {999, 3, false},
        {-1, -999, true}, {-1, 123456, true}, {-1, -12345, true}, {0, 0, false}, {-1, 0, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.ifail) + " " + std::to_string(c.outcome));
        int64_t ifail = 0;
        const std::string out = exit_with(c.ifail, c.outcome, &ifail);
        EXPECT_EQ(out, c.prints ? two_lines + kor::test::abnormal_exit("C05AYF", c.outcome) : "");
        EXPECT_EQ(ifail, c.outcome);
    }
}

TEST(frameFortranExit, ErrorUnitSilencesOrRedirects) {
    kor::test::SettingsGuard guard;
    kor::test::ScratchDir dir;
    const int64_t set = 1;
    int64_t off = -1, six = 6, ifail = 0, unit = kor::test::open_unit(dir.file("errors.txt"), 1);
    x04aaf_(&set, &off);
    EXPECT_EQ(exit_with(-1, 2, &ifail), "");
    x04aaf_(&set, &unit);
    EXPECT_EQ(exit_with(-1, 2, &ifail), "");
    x04aaf_(&set, &six);
    kor::test::close_unit(unit);
    EXPECT_EQ(kor::test::read_file(dir.file("errors.txt")),
              two_lines + kor::test::abnormal_exit("C05AYF", 2));

    // A hard failure with the unit switched off still stops, without a word.
    const auto silent = kor::test::run_process(kor::test::probe("exit_probe"), {"hard_silenced"});
    EXPECT_EQ(silent.status, 1);
    EXPECT_EQ(silent.out + silent.err, "");
}

// --- p01abtn_ ---------------------------------------------------------------

struct Parsed {
    int64_t message = 77, status = 77;
    std::vector<std::string> fields;  // 12, then the slot after them (untouched: '#')
};

// Parses `content` padded with `pad` to 199 characters, then a NUL.
Parsed parse(const std::string &content, char pad = ' ') {
    std::string text = content;
    text.resize(199, pad);
    text.push_back('\0');
    std::vector<char> fields(13 * 80, '#');
    Parsed p;
    p01abtn_(text.data(), &p.message, fields.data(), &p.status, 200, 80);
    for (int i = 0; i < 13; ++i) p.fields.emplace_back(fields.data() + 80 * i, 80);
    return p;
}

std::string field(const std::string &s, char pad = ' ') { return s + std::string(80 - s.size(), pad); }

TEST(frameRecordParser, FieldsOfWellFormedAndMalformedRecords) {
    // At most 12 values are kept, each at most 80 characters.
    std::string many = "\x01" "1\x01" "1001\x01" "14\x01";
    for (int i = 1; i <= 14; ++i) many += (i == 2 ? std::string(100, 'x') : "v" + std::to_string(i)) + "\x01";
    const Parsed p = parse(many);
    EXPECT_EQ(p.status, 0);
    EXPECT_EQ(p.message, 1001);
    EXPECT_EQ(p.fields[0], field("v1"));
    EXPECT_EQ(p.fields[1], std::string(80, 'x'));
    EXPECT_EQ(p.fields[11], field("v12"));
    EXPECT_EQ(p.fields[12], field("", '#'));
    const Parsed none = parse("\x01" "3\x01" "1005\x01" "0\x01", '\0');
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.message, 1005);
    EXPECT_EQ(none.fields[0], field(""));

    const char *malformed[] = {
        "",                                       // all blank
        "\x01",                                   // only the mark
        "1\x01" "1001\x01" "1\x01" "2.0\x01",     // first character not the mark
        "\x01" "1\x01" "1001\x01" "1\x01" "2.0",  // last non-blank not the mark
        "\x01" "1\x01" "10x1\x01" "0\x01",        // message not a number
        "\x01" "1\x01" "1001\x01",                // no count
    };
    for (const char *c : malformed) {
        SCOPED_TRACE(testing::PrintToString(std::string(c)));
        const Parsed q = parse(c);
        EXPECT_EQ(q.status, -1000);
        EXPECT_EQ(q.fields[0], field(""));
    }
}

// --- p01acf_f and p01abw_f ----------------------------------------------------

TEST(frameOlderExits, TwoDigitIfailRuleAndInvalidParameterReport) {
    const std::string abnormal = " ** ABNORMAL EXIT from KOR Library routine X06AAF: N =      3\n";
    const struct { int64_t ifail; bool text; const std::string *last; } cases[] = {
        {-13, true, nullptr}, {-1, true, &soft},      {0, true, &hard},      {1, false, nullptr},
        {2, false, nullptr},  {10, true, &hard},      {11, true, &soft},     {21, true, &soft},
        {101, false, nullptr}, {110, true, &hard},    {-2, false, nullptr},  {-11, false, nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ifail);
        int64_t ifail = c.ifail;
        CaptureStdout();
        CaptureStderr();
        p01acf_f(&ifail, 3, "X06AAF", "N", "own report text");
        EXPECT_EQ(GetCapturedStderr(), c.text ? "own report text\n" : "");
        EXPECT_EQ(GetCapturedStdout(), c.last ? abnormal + *c.last : "");
        EXPECT_EQ(ifail, 3);
    }
    // Without a variable the line ends with the name in 6 columns.
    int64_t ifail = -1;
    CaptureStdout();
    p01acf_f(&ifail, 4, "ABCDEFGH", nullptr, nullptr);
    EXPECT_EQ(GetCapturedStdout(), " ** ABNORMAL EXIT from KOR Library routine ABCDEF\n" + soft);

    const std::string report = " \n *****  Parameter  N  is invalid in routine  X  *****\n"
                               "        Value supplied is\n        5\n";
    int64_t count = 0;
    for (int64_t sw : {0, 1, 101, 11, 2}) {
        CaptureStdout();
        p01abw_f("NMAX", "X04ABC", "57", &count, sw);
        EXPECT_EQ(GetCapturedStdout(), sw == 1 || sw == 101 ? "" : report) << sw;
    }
    EXPECT_EQ(count, 5);
}

}  // namespace
