// The interface steps around an engine (report_c, report_fortran), the
// user-function adapters and the argument trace, through c05ay's layers.
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "c05ay_def.hpp"
#include "frame/interface.hpp"
#include "frame_support.hpp"
#include "x04aa_def.hpp"

namespace {

using kor::test::fresh_error;
using namespace testing::internal;  // CaptureStdout and friends

// An error record text as an engine leaves it: 199 characters padded with
// `pad`, then a NUL.
std::string record(const std::string &content, char pad = ' ') {
    std::string text = content;
    text.resize(199, pad);
    return text + '\0';
}

const std::string internal_error = kor_errlist[NE_INTERNAL_ERROR];
const std::string unknown = record("\x01" "1\x01" "9999\x01" "0\x01");
const std::string real_2 = record("\x01" "1\x01" "1002\x01" "2\x01" "1.5e+00\x01" "abc\x01");
const std::string pole = record("\x01" "3\x01" "1005\x01" "0\x01");

TEST(frameCInterface, OutcomeAndRecordToCode) {
    const struct { std::string text; int64_t outcome; int code; std::string message; } cases[] = {
        {unknown, 1, NE_INTERNAL_ERROR, internal_error},
        {record(""), 1, NE_INTERNAL_ERROR, internal_error},  // what an abandoned engine leaves
        {record("garbage"), 2, NE_INTERNAL_ERROR, internal_error},
        {record("\x01" "1\x01" "1002\x01"), 1, NE_INTERNAL_ERROR, internal_error},
        {record("\x01" "1\x01" "1002\x01" "1\x01" "1.5e+00\x01", '\0'), 1, NE_INTERNAL_ERROR, internal_error},
        {record("x"), -999, NE_ALLOC_FAIL, "NE_ALLOC_FAIL:\n  Dynamic memory allocation failed."},
        {real_2, 1, NE_REAL_2, "NE_REAL_2:\n  On entry, a = 1.5e+00 and b = abc.\n  Constraint: a != b."},
        {record("\x01" "2\x01" "1004\x01" "1\x01" "1e-300\x01"), 2, NE_TOO_SMALL,
         "NE_TOO_SMALL:\n  No further improvement in the solution is possible.\n  eps is too small: "
         "eps = 1e-300.\n  The final value of x returned is an accurate approximation to the zero."},
        {pole, 3, NE_PROBABLE_POLE,
         "NE_PROBABLE_POLE:\n  The function values in the interval [a,b] might contain\n  a pole rather "
         "than a zero. Reducing eps may help in distinguishing between\n  a pole and a zero."},
        // A value field is read up to 25 characters.
        {record("\x01" "1\x01" "1001\x01" "1\x01" "123456789012345678901234567890\x01"), 1, NE_REAL,
         "NE_REAL:\n  On entry, eps = 1234567890123456789012345.\n  Constraint: eps > 0.0."},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text.substr(0, 40)));
        KorError fail = fresh_error();
        kor::frame::report_c(kor::c05ay::info, c.text.c_str(), c.outcome, &fail);
        EXPECT_EQ(fail.code, c.code);
        EXPECT_EQ(fail.message, c.message);
        EXPECT_EQ(fail.errnum, c.outcome);
    }
    KorError untouched = fresh_error();
    untouched.code = 5;
    kor::frame::report_c(kor::c05ay::info, record("").c_str(), 0, &untouched);
    EXPECT_EQ(untouched.code, 5);
    EXPECT_EQ(untouched.errnum, 0);
}

// A record's count must match its exit: otherwise the blank padding after
// the last value would be read as the missing one.
TEST(frameCInterface, ShortRecordWithBlankPaddingIsAnInternalError) {
    KorError fail = fresh_error();
    const std::string text = record("\x01" "1\x01" "1002\x01" "1\x01" "1.5e+00\x01");
    kor::frame::report_c(kor::c05ay::info, text.c_str(), 1, &fail);
    EXPECT_EQ(fail.code, NE_INTERNAL_ERROR) << fail.message;
}

const std::string abnormal = " ** ABNORMAL EXIT from KOR Library routine C05AYF: IFAIL =";
const std::string soft = " ** KOR soft failure - control returned\n";

TEST(frameFortranInterface, OutcomeAndRecordToLines) {
    const struct { std::string text; int64_t outcome; std::string lines; } cases[] = {
        {unknown, 1, "** Unexpected error (    1, 9999)\n"},
        {record(""), 1, "** Unexpected error (    1,    0)\n"},
        {record("\x01" "2\x01" "77\x01" "0\x01"), 2, "** Unexpected error (    2,   77)\n"},
        {record(""), -999, "** Dynamic memory allocation failed.\n"},
        {real_2, 1, "** On entry, a = 1.5e+00 and b = abc\n** Constraint: a /= b.\n"},
        {pole, 3, "** The function values in the interval [a,b] might contain\n** a pole rather than a "
                  "zero. Reducing eps may help in distinguishing between\n** a pole and a zero.\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text.substr(0, 40)));
        int64_t ifail = -1;
        CaptureStdout();
        kor::frame::report_fortran(kor::c05ay::info, c.text.c_str(), c.outcome, &ifail);
        char field[8];
        std::snprintf(field, sizeof field, "%6lld", (long long)c.outcome);
        EXPECT_EQ(GetCapturedStdout(), c.lines + abnormal + field + "\n" + soft);
        EXPECT_EQ(ifail, c.outcome);
    }
    int64_t ifail = 0;  // hard, but outcome 0 reports nothing
    kor::frame::report_fortran(kor::c05ay::info, record("").c_str(), 0, &ifail);
    EXPECT_EQ(ifail, 0);
}

TEST(frameFortranInterface, UnexpectedErrorThroughRedirectedUnit) {
    kor::test::SettingsGuard guard;
    kor::test::ScratchDir dir;
    int64_t unit = kor::test::open_unit(dir.file("err.txt"), 1), six = 6;
    const int64_t set = 1;
    x04aaf_(&set, &unit);
    for (int64_t ifail : {1, -1}) {  // quiet, then noisy
        kor::frame::report_fortran(kor::c05ay::info, unknown.c_str(), 1, &ifail);
        EXPECT_EQ(ifail, 1);
    }
    x04aaf_(&set, &six);
    kor::test::close_unit(unit);
    EXPECT_EQ(kor::test::read_file(dir.file("err.txt")),
              "** Unexpected error (    1, 9999)\n" + abnormal + "     1\n" + soft);
}

// --- c05ayc end to end, and the user-function adapters ---------------------

struct Counter {
    int calls = 0, stop_at = 0;      // stop_at: set the context's status at this call
    CallbackContext *ctx = nullptr;  // the context, when the test owns it
    std::vector<int32_t> direct_flags;
    std::vector<double> xs;
    const Kor_Comm *comm_seen = nullptr;
};

double cubic(double x, Kor_Comm *comm) {
    Counter *c = static_cast<Counter *>(comm->data);
    ++c->calls;
    c->xs.push_back(x);
    c->comm_seen = comm;
    if (c->ctx) {
        c->direct_flags.push_back(c->ctx->direct_call);
        if (c->calls == c->stop_at) c->ctx->status = 7;
    }
    return x * x * x - 2.0;
}

struct Handled {
    int calls = 0, code = -1;
    int64_t errnum = -1;
    const KorError *fail = nullptr;
} handled;
void count_handler(const char *, int code, const char *) {
    handled = {handled.calls + 1, code, handled.fail->errnum, handled.fail};
}

TEST(frameCInterface, C05aycThroughAllLayers) {
    Counter counter;
    Kor_Comm comm{&counter, nullptr, nullptr};
    KorError fail = fresh_error();
    fail.code = 99;
    fail.errnum = 7;
    fail.handler = count_handler;
    handled = {0, -1, -1, &fail};
    double x = 0.0;
    c05ayc(0.0, 2.0, 1e-12, 0.0, cubic, &x, &comm, &fail);
    EXPECT_EQ(fail.code, 0);
    EXPECT_EQ(fail.errnum, 0);
    EXPECT_STREQ(fail.message, "NE_NOERROR:\n  No error.");
    EXPECT_EQ(handled.calls, 1);
    EXPECT_EQ(handled.code, 0);
    EXPECT_NEAR(x, std::cbrt(2.0), 1e-11);
    EXPECT_GT(counter.calls, 2);
    EXPECT_EQ(counter.comm_seen, &comm);

    // An engine failure: errnum holds the outcome before the handler runs,
    // and the argument check comes before any call of f.
    handled.calls = 0;
    const int calls_before = counter.calls;
    c05ayc(0.0, 2.0, -1.0, 0.0, cubic, &x, &comm, &fail);
    EXPECT_EQ(fail.code, NE_REAL);
    EXPECT_EQ(fail.errnum, 1);
    EXPECT_EQ(handled.calls, 1);
    EXPECT_EQ(handled.errnum, 1);
    EXPECT_EQ(counter.calls, calls_before);
    const std::string head = "NE_REAL:\n  On entry, eps = ", tail = ".\n  Constraint: eps > 0.0.";
    const std::string message = fail.message;
    ASSERT_GT(message.size(), head.size() + tail.size());
    EXPECT_EQ(message.compare(0, head.size(), head), 0) << message;
    EXPECT_EQ(message.substr(message.size() - tail.size()), tail);
    EXPECT_EQ(std::strtod(message.c_str() + head.size(), nullptr), -1.0);
}

struct EngineRun {
    double x = 0.0;
    int64_t outcome = 1;
    std::string errbuf;
    CallbackContext ctx;
};

// Calls the engine layer directly, as c05ayc would, with a context of ours.
EngineRun run_engine(int32_t direct_call, Counter &counter) {
    EngineRun run;
    y90haan_(&run.ctx);
    run.ctx.direct_call = direct_call;
    counter.ctx = &run.ctx;
    Kor_Comm comm{&counter, nullptr, nullptr};
    char errbuf[200];
    kor::frame::clear_record(errbuf);
    const double a = 0.0, b = 2.0, eps = 1e-12, eta = 0.0;
    c05ayfn_(&run.ctx, &a, &b, &eps, &eta, reinterpret_cast<KorUserFn>(cubic), c05ayc_f_helper,
             &comm, nullptr, &run.x, errbuf, &run.outcome, 200);
    run.errbuf.assign(errbuf, 200);
    counter.ctx = nullptr;
    return run;
}

TEST(frameAdapters, DeferredCallsReachTheUserFunctionOncePerRequest) {
    Counter direct, deferred;
    const EngineRun d = run_engine(1, direct), r = run_engine(0, deferred);
    EXPECT_EQ(d.outcome, 0);
    EXPECT_EQ(r.outcome, 0);
    EXPECT_EQ(std::memcmp(&d.x, &r.x, sizeof d.x), 0);
    EXPECT_GT(direct.calls, 2);
    EXPECT_EQ(deferred.xs, direct.xs);  // same requests, one call each
    // The user function runs with direct calls allowed; the caller's flag is
    // back in place afterwards.
    for (int32_t f : deferred.direct_flags) EXPECT_EQ(f, 1);
    EXPECT_EQ(r.ctx.direct_call, 0);
    EXPECT_EQ(r.ctx.status, 0);
    EXPECT_EQ(d.ctx.direct_call, 1);
}

TEST(frameAdapters, EachLayerOnItsOwn) {
    for (int32_t flag : {0, 1, 5}) {
        SCOPED_TRACE(flag);
        Counter counter;
        Kor_Comm comm{&counter, nullptr, nullptr};
        CallbackContext ctx;
        y90haan_(&ctx);
        ctx.direct_call = flag;
        counter.ctx = &ctx;
        kor::frame::RealOfReal::Call call{3.0, 0.0};
        const KorUserFn fn = reinterpret_cast<KorUserFn>(cubic);

        c05ayf_internal_fh_(c05ayc_f_helper, fn, &ctx, &call, &comm, nullptr);
        EXPECT_EQ(counter.calls, flag == 1 ? 1 : 0);
        EXPECT_EQ(ctx.status, flag == 1 ? 0 : kor::frame::deferred_call);
        ctx.status = 0;
        counter.calls = 0;
        EXPECT_EQ(c05ayf_marshal_fh_(c05ayc_f_helper, fn, &ctx, &call, &comm, nullptr), 0);
        EXPECT_EQ(counter.calls, 1);
        EXPECT_EQ(call.value, 25.0);
        EXPECT_EQ(ctx.direct_call, flag);
        c05ayf_print_fh_(c05ayc_f_helper, fn, &ctx, &call, &comm, nullptr);
        EXPECT_EQ(counter.calls, 2);
        EXPECT_EQ(ctx.direct_call, flag);
        EXPECT_EQ(ctx.status, 0);
    }
}

int64_t *iuser_seen = nullptr;
double *ruser_seen = nullptr;
double fortran_square(const double *x, int64_t *iuser, double *ruser) {
    iuser_seen = iuser;
    ruser_seen = ruser;
    ++iuser[0];
    return *x * *x + ruser[0];
}

TEST(frameAdapters, FortranAdapterPassesIuserAndRuser) {
    CallbackContext ctx;
    y90haan_(&ctx);
    ctx.direct_call = 0;
    int64_t iuser[2] = {0, 0};
    double ruser[1] = {0.5};
    kor::frame::RealOfReal::Call call{2.0, 0.0};
    EXPECT_EQ(c05ayf_marshal_fh_(c05ayf_fh_, reinterpret_cast<KorUserFn>(fortran_square), &ctx,
                                 &call, iuser, ruser), 0);
    EXPECT_EQ(call.value, 4.5);
    EXPECT_EQ(iuser[0], 1);
    EXPECT_EQ(iuser_seen, iuser);
    EXPECT_EQ(ruser_seen, ruser);
    EXPECT_EQ(ctx.direct_call, 0);
}

TEST(frameAdapters, NonZeroStatusAbandonsTheEngine) {
    for (int stop_at : {1, 2, 4}) {
        SCOPED_TRACE(stop_at);
        Counter counter;
        counter.stop_at = stop_at;
        const EngineRun run = run_engine(1, counter);
        EXPECT_EQ(counter.calls, stop_at);
        EXPECT_EQ(run.outcome, 1);
        EXPECT_EQ(run.errbuf, record(""));
        EXPECT_EQ(run.ctx.status, 7);
    }
}

// --- the argument trace -------------------------------------------------------

TEST(frameTrace, SwitchGetAndSet) {
    kor::test::SettingsGuard guard;
    const int64_t get = 0, set = 1, three = 3;
    for (int64_t v : {1, 0, 5, 0}) {
        int64_t value = v, now = -1;
        y90gczn_(&set, &value);
        y90gczn_(&get, &now);
        EXPECT_EQ(now, v);
        EXPECT_EQ(kor::frame::trace_on(), v != 0);
    }
    y90gcft_(&three);
    int64_t now = 0;
    y90gczn_(&get, &now);
    EXPECT_EQ(now, 3);
}

struct Block {
    std::string header;
    std::vector<std::string> names, lines;
    double value(const std::string &name) const {
        const std::string head = "   " + name + " = ";
        for (const std::string &l : lines)
            if (l.compare(0, head.size(), head) == 0) return std::strtod(l.c_str() + head.size(), nullptr);
        ADD_FAILURE() << "no " << name << " in " << header;
        return NAN;
    }
};

// Splits a trace into blocks: a header, argument lines, a rule of 75 '-'.
std::vector<Block> blocks_of(const std::string &text) {
    std::vector<Block> blocks;
    bool open = false;
    size_t start = 0;
    for (size_t eol; (eol = text.find('\n', start)) != std::string::npos; start = eol + 1) {
        const std::string line = text.substr(start, eol - start);
        if (!open) {
            blocks.push_back(Block{line, {}, {}});
            open = true;
        } else if (line == std::string(75, '-')) {
            open = false;
        } else {
            EXPECT_EQ(line.compare(0, 3, "   "), 0) << line;
            blocks.back().names.push_back(line.substr(3, line.find_first_of(" (", 3) - 3));
            blocks.back().lines.push_back(line);
        }
    }
    EXPECT_FALSE(open) << "block without its rule line";
    EXPECT_EQ(start, text.size()) << "unterminated last line";
    return blocks;
}

std::string traced_c05ayc(int64_t trace_switch, Counter &counter, double *x) {
    kor::test::SettingsGuard guard;
    kor::test::ScratchDir dir;
    int64_t unit = kor::test::open_unit(dir.file("trace.txt"), 1), off = 0;
    x04abc(1, &unit);
    const int64_t set = 1;
    y90gczn_(&set, &trace_switch);
    Kor_Comm comm{&counter, nullptr, nullptr};
    KorError fail = fresh_error();
    c05ayc(0.5, 1.5, 1e-6, 0.0, cubic, x, &comm, &fail);
    EXPECT_EQ(fail.code, 0) << fail.message;
    y90gczn_(&set, &off);
    kor::test::close_unit(unit);
    return kor::test::read_file(dir.file("trace.txt"));
}

TEST(frameTrace, C05aycWritesEntryExitAndCallbackBlocks) {
    Counter counter;
    double x = 0.0;
    const std::vector<Block> blocks = blocks_of(traced_c05ayc(1, counter, &x));
    ASSERT_GT(counter.calls, 2);
    ASSERT_EQ(blocks.size(), size_t(2 + 2 * counter.calls));

    const Block &entry = blocks.front(), &exit = blocks.back();
    EXPECT_EQ(entry.header, " c05ayfv: entry");
    EXPECT_EQ(exit.header, " c05ayfv: exit");
    for (const Block *b : {&entry, &exit}) {
        EXPECT_EQ(b->names, (std::vector<std::string>{"a", "b", "eps", "eta", "x", "iuser", "ruser",
                                                      "errbuf", "ifail"}));
        EXPECT_EQ(b->value("a"), 0.5);
        EXPECT_EQ(b->value("b"), 1.5);
        EXPECT_EQ(b->value("eps"), 1e-6);
        EXPECT_EQ(b->value("eta"), 0.0);
        EXPECT_EQ(b->lines[7].compare(0, 18, "   errbuf(200) = '"), 0) << b->lines[7];
    }
    EXPECT_EQ(entry.value("ifail"), 1.0);
    EXPECT_EQ(exit.value("ifail"), 0.0);
    EXPECT_EQ(exit.value("x"), x);

    // An entry and an exit block per user call, with its argument and (after
    // the call) its result.
    for (int i = 0; i < counter.calls; ++i) {
        const Block &before = blocks[1 + 2 * i], &after = blocks[2 + 2 * i];
        EXPECT_EQ(before.header, " c05ayfv:f: entry");
        EXPECT_EQ(after.header, " c05ayfv:f: exit");
        for (const Block *b : {&before, &after}) {
            EXPECT_EQ(b->names, (std::vector<std::string>{"x", "retval", "iuser", "ruser"}));
            EXPECT_EQ(b->value("x"), counter.xs[i]);
        }
        EXPECT_EQ(after.value("retval"), counter.xs[i] * counter.xs[i] * counter.xs[i] - 2.0);
    }

    Counter quiet;
    EXPECT_EQ(traced_c05ayc(0, quiet, &x), "");  // switch off: nothing at all
    EXPECT_EQ(quiet.calls, counter.calls);
}

}  // namespace
