// The interface steps around an engine (report_c, report_fortran), text
// values of any length, the user-function adapters, exceptions from user
// functions and the argument trace.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "c05ay_def.hpp"
#include "e04zm_def.hpp"
#include "frame/interface.hpp"
#include "frame_support.hpp"
#include "support/exits.hpp"
#include "support/fortran_report.hpp"

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

TEST(frameInterfaces, RecordsTheEngineDidNotWriteProperly) {
    const struct { std::string text; int64_t outcome; int code; std::string message; } cases[] = {
        {unknown, 1, NE_INTERNAL_ERROR, internal_error},
        {record(""), 1, NE_INTERNAL_ERROR, internal_error},  // what an abandoned engine leaves
        {record("\x01" "1\x01" "1002\x01"), 1, NE_INTERNAL_ERROR, internal_error},
        // The count must match the exit, else the padding would be read as a value.
        {record("\x01" "1\x01" "1002\x01" "1\x01" "1.5e+00\x01"), 1, NE_INTERNAL_ERROR, internal_error},
        {record("x"), -999, NE_ALLOC_FAIL, "NE_ALLOC_FAIL:\n  Dynamic memory allocation failed."},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text.substr(0, 30)));
        KorError fail = fresh_error();
        kor::frame::report_c(kor::c05ay::info, c.text.c_str(), c.outcome, &fail);
        EXPECT_EQ(fail.code, c.code);
        EXPECT_EQ(fail.message, c.message);
        EXPECT_EQ(fail.errnum, c.outcome);
    }
    // A value field reaches a C report with at most 25 characters.
    KorError fail = fresh_error();
    kor::frame::report_c(kor::c05ay::info,
                         record("\x01" "1\x01" "1001\x01" "1\x01" "123456789012345678901234567890\x01").c_str(),
                         1, &fail);
    EXPECT_EQ(kor::test::exit_values<kor::c05ay::Exit::eps_not_positive>(kor::c05ay::info, fail),
              std::vector<std::string>{"1234567890123456789012345"});

    const struct { std::string text; int64_t outcome; std::string line; } fortran[] = {
        {unknown, 1, "** Unexpected error (    1, 9999)\n"},
        {record(""), 3, "** Unexpected error (    3,    0)\n"},
        {record(""), -999, "** Dynamic memory allocation failed.\n"},
    };
    for (const auto &c : fortran) {
        int64_t ifail = -1;
        CaptureStdout();
        kor::frame::report_fortran(kor::c05ay::info, c.text.c_str(), c.outcome, &ifail);
        EXPECT_EQ(GetCapturedStdout(), c.line + kor::test::abnormal_exit("C05AYF", c.outcome));
        EXPECT_EQ(ifail, c.outcome);
    }
}

// A text value travels whole beside the record: the C message quotes it
// all, and a Fortran line that grows past 80 characters goes on in records
// that begin "** " again, broken after a blank.
TEST(frameInterfaces, TextValuesOfAnyLength) {
    std::string words;
    for (int i = 1; i <= 24; ++i) words += (i > 1 ? " w" : "w") + std::to_string(100 + i);
    void *handle = nullptr;
    KorError fail = fresh_error();
    e04rac(&handle, 1, &fail);
    e04zmc(handle, words.c_str(), &fail);
    EXPECT_EQ(kor::test::exit_values<kor::e04zm::Exit::unknown_option>(kor::e04zm::info, fail),
              std::vector<std::string>{'"' + words + '"'});

    int64_t ifail = -1;
    CaptureStdout();
    e04zmf_(&handle, words.data(), &ifail, words.size());
    EXPECT_EQ(GetCapturedStdout(),
              "** On entry, the option supplied in optstr was not recognized:\n"
              "** optstr = \"w101 w102 w103 w104 w105 w106 w107 w108 w109 w110 w111 w112 w113\n"
              "** w114 w115 w116 w117 w118 w119 w120 w121 w122 w123 w124\".\n" +
                  kor::test::abnormal_exit("E04ZMF", fail.errnum));
    e04rzc(&handle, &fail);

    // An engine layer called without the interface's store keeps 25
    // characters of a text in the record itself.
    CallbackContext ctx;
    y90haan_(&ctx);
    char text[200];
    int64_t outcome = 1;
    kor::frame::Record rec(kor::e04zm::info, &ctx, text, 200, &outcome);
    rec.raise<kor::e04zm::Exit::unknown_option>(std::string_view(words));
    fail = fresh_error();
    kor::frame::report_c(kor::e04zm::info, text, outcome, &fail);
    EXPECT_EQ(kor::test::exit_values<kor::e04zm::Exit::unknown_option>(kor::e04zm::info, fail),
              std::vector<std::string>{words.substr(0, 25)});
}

// --- the user-function adapters -------------------------------------------

struct Counter {
    int calls = 0, stop_at = 0;      // stop_at: set the context's status at this call
    CallbackContext *ctx = nullptr;  // the context, when the test owns it
    std::vector<int32_t> direct_flags;
    std::vector<double> xs;
};

double cubic(double x, Kor_Comm *comm) {
    Counter *c = static_cast<Counter *>(comm->data);
    ++c->calls;
    c->xs.push_back(x);
    if (c->ctx) {
        c->direct_flags.push_back(c->ctx->direct_call);
        if (c->calls == c->stop_at) c->ctx->status = 7;
    }
    return x * x * x - 2.0;
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
    EXPECT_EQ(d.x, r.x);
    EXPECT_EQ(deferred.xs, direct.xs);  // same requests, one call each
    // The user function runs with direct calls allowed; the caller's flag is
    // back in place afterwards.
    for (int32_t f : deferred.direct_flags) EXPECT_EQ(f, 1);
    EXPECT_EQ(r.ctx.direct_call, 0);
    EXPECT_EQ(r.ctx.status, 0);

    // Each layer on its own: the guarded adapter declines unless the flag is 1.
    for (int32_t flag : {0, 1, 5}) {
        SCOPED_TRACE(flag);
        Counter counter;
        Kor_Comm comm{&counter, nullptr, nullptr};
        CallbackContext ctx;
        y90haan_(&ctx);
        ctx.direct_call = flag;
        kor::frame::RealOfReal::Call call{3.0, 0.0};
        const KorUserFn fn = reinterpret_cast<KorUserFn>(cubic);
        c05ayf_internal_fh_(c05ayc_f_helper, fn, &ctx, &call, &comm, nullptr);
        EXPECT_EQ(counter.calls, flag == 1 ? 1 : 0);
        EXPECT_EQ(ctx.status, flag == 1 ? 0 : kor::frame::deferred_call);
        ctx.status = 0;
        EXPECT_EQ(c05ayf_marshal_fh_(c05ayc_f_helper, fn, &ctx, &call, &comm, nullptr), 0);
        c05ayf_print_fh_(c05ayc_f_helper, fn, &ctx, &call, &comm, nullptr);
        EXPECT_EQ(counter.calls, flag == 1 ? 3 : 2);
        EXPECT_EQ(call.value, 25.0);
        EXPECT_EQ(ctx.direct_call, flag);
    }
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

// A C++ exception from a user function reaches the caller as it was
// thrown (a std::bad_alloc of the caller's is not taken for the library's
// allocation failure), and leaves nothing of the library's half done.
struct Thrown {};
template <class E>
double throwing(double x, Kor_Comm *) {
    if (x > 0.5) throw E();
    return x - 0.75;
}
void throwing_vector(const double *, int64_t, double *, int64_t *, Kor_Comm *) { throw Thrown(); }

TEST(frameAdapters, ExceptionsFromUserFunctionsReachTheCaller) {
    kor::test::SettingsGuard guard;
    const int64_t set = 1, get = 0;
    int64_t trace = 0, unit = 9;
    y90gczn_(&set, &trace);
    x04abc(1, &unit);
    KorError fail = fresh_error();
    double x = 0.0;
    EXPECT_THROW(c05ayc(0.0, 1.0, 1e-9, 0.0, throwing<Thrown>, &x, nullptr, &fail), Thrown);
    EXPECT_THROW(c05ayc(0.0, 1.0, 1e-9, 0.0, throwing<std::bad_alloc>, &x, nullptr, &fail),
                 std::bad_alloc);
    double rinfo[40], result, abserr;
    int64_t iinfo[10];
    EXPECT_THROW(d01rjc(throwing_vector, 0.0, 1.0, 0.0, 1e-9, 10, &result, &abserr, rinfo, iinfo,
                        nullptr, &fail),
                 Thrown);
    int64_t iuser[1], ifail = 0;
    double ruser[1];
    const double a = 0.0, b = 1.0, eps = 1e-9, eta = 0.0;
    auto fortran = [](const double *v, int64_t *, double *) { return throwing<Thrown>(*v, nullptr); };
    EXPECT_THROW(c05ayf_(&a, &b, &eps, &eta, reinterpret_cast<KorUserFn>(+fortran), &x, iuser, ruser,
                         &ifail),
                 Thrown);
    y90gczn_(&get, &trace);
    EXPECT_EQ(trace, 0);
    EXPECT_EQ(kor::frame::units::advisory_unit(), 9);
    c05ayc(0.0, 1.0, 1e-9, 0.0, [](double v, Kor_Comm *) { return v - 0.75; }, &x, nullptr, &fail);
    kor::test::expect_success(fail);
    EXPECT_NEAR(x, 0.75, 1e-9);
}

// --- the argument trace -------------------------------------------------------

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
    for (const std::string &line : kor::test::split_lines(text)) {
        if (!open) {
            blocks.push_back(Block{line, {}, {}});
            open = true;
        } else if (line == std::string(75, '-')) {
            open = false;
        } else {
            blocks.back().names.push_back(line.substr(3, line.find_first_of(" (", 3) - 3));
            blocks.back().lines.push_back(line);
        }
    }
    EXPECT_FALSE(open) << "block without its rule line";
    return blocks;
}

// The advisory output of `call` with the trace switch at `level`.
template <class Call>
std::string traced(int64_t level, Call call) {
    kor::test::SettingsGuard guard;
    kor::test::ScratchDir dir;
    int64_t unit = kor::test::open_unit(dir.file("trace.txt"), 1), off = 0, now = -1;
    x04abc(1, &unit);
    const int64_t set = 1, get = 0;
    y90gcft_(&level);
    y90gczn_(&get, &now);
    EXPECT_EQ(now, level);
    call();
    y90gczn_(&set, &off);
    kor::test::close_unit(unit);
    return kor::test::read_file(dir.file("trace.txt"));
}

std::string traced_c05ayc(int64_t level, Counter &counter, double *x) {
    return traced(level, [&] {
        Kor_Comm comm{&counter, nullptr, nullptr};
        KorError fail = fresh_error();
        c05ayc(0.5, 1.5, 1e-6, 0.0, cubic, x, &comm, &fail);
        kor::test::expect_success(fail);
    });
}

TEST(frameTrace, C05aycWritesEntryExitAndCallbackBlocks) {
    Counter counter;
    double x = 0.0;
    const std::vector<Block> blocks = blocks_of(traced_c05ayc(3, counter, &x));
    ASSERT_GT(counter.calls, 2);
    ASSERT_EQ(blocks.size(), size_t(2 + 2 * counter.calls));
    const Block &entry = blocks.front(), &exit = blocks.back();
    EXPECT_EQ(entry.header, " c05ayfv: entry");
    EXPECT_EQ(exit.header, " c05ayfv: exit");
    for (const Block *b : {&entry, &exit}) {
        EXPECT_EQ(b->names, (std::vector<std::string>{"a", "b", "eps", "eta", "x", "iuser", "ruser",
                                                      "errbuf", "ifail"}));
        EXPECT_EQ(b->value("b"), 1.5);
        EXPECT_EQ(b->value("eps"), 1e-6);
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
        EXPECT_EQ(after.names, (std::vector<std::string>{"x", "retval", "iuser", "ruser"}));
        EXPECT_EQ(after.value("x"), counter.xs[i]);
        EXPECT_EQ(after.value("retval"), counter.xs[i] * counter.xs[i] * counter.xs[i] - 2.0);
    }
    Counter quiet;
    EXPECT_EQ(traced_c05ayc(0, quiet, &x), "");  // switch off: nothing at all
    EXPECT_EQ(quiet.calls, counter.calls);
}

// An array is traced whole, element by element over as many records as it
// needs: the ranks of 15 values, as given on entry and as returned on exit.
TEST(frameTrace, ArraysWholeOnEntryAndExit) {
    std::vector<double> rv(15);
    for (size_t i = 0; i < rv.size(); ++i) rv[i] = double(i * 7 % 15) - 3.25;
    std::vector<int64_t> irank(15, 0);
    const auto lines = kor::test::split_lines(traced(1, [&] { m01dac(rv.data(), 15, Kor_Ascending, irank.data(), nullptr); }));
    const auto exit = std::find(lines.begin(), lines.end(), " m01dafv: exit");
    // The values of NAME(15) in the first block from line `from` on.
    const auto values = [&](const std::string &name, auto from) {
        std::vector<double> out;
        for (auto at = std::find(from, lines.end(), "   " + name + "(15) =");
             at != lines.end() && ++at != lines.end() && at->compare(0, 6, "      ") == 0;) {
            std::istringstream in(*at);
            for (double v; in >> v;) out.push_back(v);
        }
        return out;
    };
    EXPECT_EQ(values("rv", lines.begin()), rv);
    EXPECT_EQ(values("irank", exit), std::vector<double>(irank.begin(), irank.end()));
}

}  // namespace
