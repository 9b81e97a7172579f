// The error exits: p01acc_c (C records), p01abzu_/p01abxu_ (IFAIL), the
// record parser p01abtn_, and the older exits p01acf_f and p01abw_f.
#include <cstring>
#include <string>
#include <vector>

#include "frame/errors.hpp"
#include "frame_support.hpp"
#include "support/process.hpp"
#include "x04aa_def.hpp"

namespace {

using kor::test::fresh_error;
using namespace testing::internal;  // CaptureStdout and friends

const std::string int_text = "NE_INT:\n  On entry, num_threads = 0.\n  Constraint: num_threads >= 1.";
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
    const struct { const char *text; int code; std::string stored; } cases[] = {
        {nullptr, 0, "NE_NOERROR:\n  No error."},  // success closes every call
        {int_text.c_str(), NE_INT, int_text},
        {nullptr, NE_BAD_PARAM, kor_errlist[NE_BAD_PARAM]},
    };
    for (const auto &c : cases) {
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
        EXPECT_EQ(fail.code, c.code);
        EXPECT_EQ(fail.message, c.stored);
    }
    // Success without a record is silent; codes without an entry never crash.
    CaptureStderr();
    p01acc_c(nullptr, 0, "x06aac", nullptr);
    KorError loud = fresh_error();
    loud.print = 1;
    p01acc_c(nullptr, 0, "x06aac", &loud);
    EXPECT_EQ(GetCapturedStderr(), "");
    for (int code : {716, 745, int(KOR_ERRLIST_SIZE), 100000, -3}) {
        KorError other = fresh_error();
        p01acc_c(nullptr, code, "c05ayc", &other);
        EXPECT_EQ(other.code, code);
        EXPECT_EQ(std::string(other.message).compare(0, 3, "NE_"), 0) << other.message;
    }
}

// The letter after the first N among the first five characters decides;
// without such an N the sixth character does.
TEST(frameCExit, ErrorOrWarningWhenPrinting) {
    const struct { const char *text; bool error; } cases[] = {
        {"NE_INT:\n  x", true}, {"NW_INT:\n  x", false}, {"abNEx", true},  {"xxNWE", false},
        {"NNE", false},         {"ABCDNE", true},        {"abcdeE", true}, {"abcdeW", false},
        {"ABCDEN", false},      {"nnnnnE", true},        {"abcde", false}, {"N", false},
        {"NE", true},           {"", false},             {"abcdefE", false},
    };
    for (const auto &c : cases) {
        for (int print : {1, 0}) {
            SCOPED_TRACE(std::string(c.text) + (print ? " printed" : " quiet"));
            KorError fail = fresh_error();
            fail.print = print;
            CaptureStderr();
            p01acc_c(c.text, NE_INT, "g05sac", &fail);
            const std::string head = c.error ? "Error detected by KOR routine g05sac:\n"
                                             : "Warning from KOR routine g05sac:\n";
            EXPECT_EQ(GetCapturedStderr(), print ? head + c.text + "\n" : "");
            EXPECT_EQ(fail.code, NE_INT);
            EXPECT_STREQ(fail.message, c.text);
        }
    }
}

TEST(frameCExit, LongMessageIsTruncatedAndTerminated) {
    std::string text = "NE_INT:\n  ";
    while (text.size() < 700) text += char('a' + text.size() % 26);
    KorError fail = fresh_error();
    std::memset(fail.message, 'Z', sizeof fail.message);
    p01acc_c(text.c_str(), NE_INT, "x06aac", &fail);
    EXPECT_EQ(std::string(fail.message, 512), text.substr(0, 511) + '\0');
}

TEST(frameCExit, NullRecordEndsTheProcess) {
    const auto error = kor::test::run_process(kor::test::probe("exit_probe"), {"null_error"});
    EXPECT_EQ(error.status, 1);
    EXPECT_EQ(error.out, "");
    EXPECT_EQ(error.err, "Error detected by KOR routine x06aac:\n" + int_text +
                             "\n...KOR Function Terminated\n");

    const auto warning = kor::test::run_process(kor::test::probe("exit_probe"), {"null_warning"});
    EXPECT_EQ(warning.status, 1);
    EXPECT_EQ(warning.out, "");
    const std::string head = "Warning from KOR routine c05azc:\nNW_TOO_MUCH_ACC_REQUESTED:\n  ";
    const std::string tail = "\n...KOR Function Terminated\n";
    EXPECT_EQ(warning.err.compare(0, head.size(), head), 0) << warning.err;
    ASSERT_GE(warning.err.size(), tail.size());
    EXPECT_EQ(warning.err.substr(warning.err.size() - tail.size()), tail);

    const auto success = kor::test::run_process(kor::test::probe("exit_probe"), {"null_success"});
    EXPECT_EQ(success.status, 0);
    EXPECT_EQ(success.out, "returned\n");
    EXPECT_EQ(success.err, "");
}

// c05ay's lines for eps = 0.0; the value is the engine's own text, so it is
// read back rather than compared as text.
void expect_eps_report(const std::string &out, const std::string &rest) {
    const std::string head = "** On entry, eps = ";
    ASSERT_EQ(out.compare(0, head.size(), head), 0) << out;
    const size_t eol = out.find('\n');
    ASSERT_NE(eol, std::string::npos);
    EXPECT_EQ(std::strtod(out.substr(head.size(), eol - head.size()).c_str(), nullptr), 0.0);
    EXPECT_EQ(out.substr(eol + 1), "** Constraint: eps > 0.0.\n"
                                   " ** ABNORMAL EXIT from KOR Library routine C05AYF: IFAIL =     1\n" + rest);
}

TEST(frameFortranExit, HardFailureStopsAfterPrinting) {
    const auto stopped = kor::test::run_process(kor::test::probe("exit_probe"), {"hard"});
    EXPECT_EQ(stopped.status, 1);
    EXPECT_EQ(stopped.err, "");
    expect_eps_report(stopped.out, hard);

    const auto returned = kor::test::run_process(kor::test::probe("exit_probe"), {"soft"});
    EXPECT_EQ(returned.status, 0);
    expect_eps_report(returned.out, soft + "returned ifail=1\n");

    // A silenced error unit still stops the process, without a word.
    const auto silent = kor::test::run_process(kor::test::probe("exit_probe"), {"hard_silenced"});
    EXPECT_EQ(silent.status, 1);
    EXPECT_EQ(silent.out + silent.err, "");
}

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

std::string noisy(const char *outcome_field) {
    return "** First line.\n** Second  line.\n"
           " ** ABNORMAL EXIT from KOR Library routine C05AYF: IFAIL =" + std::string(outcome_field) +
           "\n" + soft;
}

TEST(frameFortranExit, IfailOnEntrySelectsHowToFail) {
    const struct { int64_t ifail, outcome; const char *field; } cases[] = {
        {-1, 3, "     3"},   {1, 3, nullptr},       {2, 3, nullptr},        {-2, 3, nullptr},
        {10, 3, nullptr},    {-100, 3, nullptr},    {999, 3, nullptr},      {-1, -999, "  -999"},
        {-1, 123456, "123456"}, {-1, -12345, "-12345"},
        {0, 0, ""}, {-1, 0, ""}, {1, 0, ""},  // outcome 0 only stores 0
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::to_string(c.ifail) + " " + std::to_string(c.outcome));
        int64_t ifail = 0;
        const std::string out = exit_with(c.ifail, c.outcome, &ifail);
        EXPECT_EQ(out, c.field && *c.field ? noisy(c.field) : "");
        EXPECT_EQ(ifail, c.outcome);
    }
    const std::vector<char> line(80, ' ');
    const int64_t one = 1, outcome = 4, yes = 1, no = 0;
    CaptureStdout();
    p01abxu_(&yes, &no, &outcome, "S14ABF", line.data(), &one, 6, 80);  // quiet
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(frameFortranExit, ErrorUnitSilencesOrRedirects) {
    kor::test::SettingsGuard guard;
    kor::test::ScratchDir dir;
    const int64_t set = 1, get = 0;
    int64_t off = -1, ifail = 0, unit = kor::test::open_unit(dir.file("errors.txt"), 1), now = 0;
    x04aaf_(&set, &off);
    EXPECT_EQ(exit_with(-1, 2, &ifail), "");
    EXPECT_EQ(ifail, 2);
    x04aaf_(&set, &unit);
    x04aaf_(&get, &now);
    EXPECT_EQ(now, unit);
    EXPECT_EQ(exit_with(-1, 2, &ifail), "");
    int64_t six = 6;
    x04aaf_(&set, &six);
    kor::test::close_unit(unit);
    EXPECT_EQ(kor::test::read_file(dir.file("errors.txt")), noisy("     2"));
}

// --- p01abtn_ ---------------------------------------------------------------

struct Parsed {
    int64_t message = 77, status = 77;
    std::vector<std::string> fields;  // 12, then the slot after them (untouched: '#')
};

// Parses `content` as an engine leaves it: padded with `pad` to 199
// characters, then a NUL.
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

TEST(frameRecordParser, WellFormedRecords) {
    const Parsed two = parse("\x01" "1\x01" "1002\x01" "2\x01" "1.5e+00\x01" "-2.0e+00\x01");
    EXPECT_EQ(two.status, 0);
    EXPECT_EQ(two.message, 1002);
    EXPECT_EQ(two.fields[0], field("1.5e+00"));
    EXPECT_EQ(two.fields[1], field("-2.0e+00"));
    for (int i = 2; i < 12; ++i) EXPECT_EQ(two.fields[i], field(""));

    const Parsed none = parse("\x01" "3\x01" "1005\x01" "0\x01", '\0');
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.message, 1005);
    EXPECT_EQ(none.fields[0], field(""));

    // At most 12 values are kept, each at most 80 characters.
    std::string text = "\x01" "1\x01" "1001\x01" "14\x01";
    for (int i = 1; i <= 14; ++i) text += "v" + std::to_string(i) + "\x01";
    const Parsed many = parse(text);
    EXPECT_EQ(many.status, 0);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(many.fields[i], field("v" + std::to_string(i + 1)));
    EXPECT_EQ(many.fields[12], field("", '#'));
    const Parsed wide = parse("\x01" "1\x01" "1002\x01" "2\x01" + std::string(100, 'x') + "\x01" "next\x01");
    EXPECT_EQ(wide.status, 0);
    EXPECT_EQ(wide.fields[0], std::string(80, 'x'));
    EXPECT_EQ(wide.fields[1], field("next"));
}

TEST(frameRecordParser, MalformedRecordsGiveMinus1000) {
    const char *cases[] = {
        "",                                       // all blank
        "\x01",                                   // only the mark
        "1\x01" "1001\x01" "1\x01" "2.0\x01",     // first character not the mark
        "\x01" "1\x01" "1001\x01" "1\x01" "2.0",  // last non-blank not the mark
        " \x01" "1\x01" "1001\x01" "0\x01",       // leading blank
    };
    for (const char *c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::string(c)));
        const Parsed p = parse(c);
        EXPECT_EQ(p.status, -1000);
        EXPECT_EQ(p.message, 0);
        for (int i = 0; i < 12; ++i) EXPECT_EQ(p.fields[i], field(""));
    }
}

// --- p01acf_f and p01abw_f ----------------------------------------------------

TEST(frameOlderExits, TwoDigitIfailRule) {
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
        const std::string err = GetCapturedStderr(), out = GetCapturedStdout();
        EXPECT_EQ(err.find("own report text") != std::string::npos, c.text) << err;
        EXPECT_EQ(out, c.last ? abnormal + *c.last : "");
        EXPECT_EQ(ifail, 3);
    }
    // Without a variable the line ends with the name in 6 columns.
    const struct { int64_t ifail; const char *name, *line; const std::string *last; } bare[] = {
        {-1, "AB", " ** ABNORMAL EXIT from KOR Library routine     AB\n", &soft},
        {0, "ABCDEFGH", " ** ABNORMAL EXIT from KOR Library routine ABCDEF\n", &hard},
    };
    for (const auto &b : bare) {
        int64_t ifail = b.ifail;
        CaptureStdout();
        CaptureStderr();
        p01acf_f(&ifail, 4, b.name, nullptr, nullptr);
        EXPECT_EQ(GetCapturedStderr(), "");
        EXPECT_EQ(GetCapturedStdout(), b.line + *b.last);
    }
}

TEST(frameOlderExits, InvalidParameterReport) {
    const std::string report = " \n *****  Parameter  N  is invalid in routine  X  *****\n"
                               "        Value supplied is\n        5\n";
    const struct { int64_t sw; bool prints; } cases[] = {
        {0, true}, {1, false}, {101, false}, {11, true}, {2, true}, {10, true},
    };
    int64_t count = 0;
    for (const auto &c : cases) {
        CaptureStdout();
        p01abw_f("NMAX", "X04ABC", "57", &count, c.sw);
        EXPECT_EQ(GetCapturedStdout(), c.prints ? report : "") << c.sw;
    }
    EXPECT_EQ(count, 6);
}

}  // namespace
