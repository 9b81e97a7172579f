// c05ayc: zero of a continuous function, direct form.
#include <cmath>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "roots/brent_cases.hpp"
#include "support/process.hpp"

using namespace roots_test;

namespace {

struct Direct {
    double x = -7.0;  // a value no search below returns, to see that x is written
    int64_t calls = 0;
    KorError fail = KOR_ERROR_INIT;
};

Direct solve(double (*f)(double), double a, double b, double eps, double eta = 0.0,
             bool long_name = false) {
    Direct r;
    Counted counter{f};
    Kor_Comm comm{&counter, nullptr, nullptr};
    (long_name ? kor_zero_cont_func_brent : c05ayc)(a, b, eps, eta, counted, &r.x, &comm, &r.fail);
    r.calls = counter.calls;
    return r;
}

// c05ay as defined in terms of c05az: it evaluates f(a) and f(b) for its own
// sign check, starts the engine with ind = -1 and the absolute test, answers
// each request with a call of f, and stops with success at once when a
// value is 0.0 or below eta in magnitude.
Direct through_rcomm(double (*f)(double), double a, double b, double eps, double eta) {
    Direct r;
    const double fa = f(a);
    (void)f(b);
    r.calls = 2;
    double x = a, y = b, fx = fa, c[KOR_C05AZ_LC] = {};
    int64_t ind = -1;
    for (long n = 0; n < request_limit; ++n) {
        c05azc(&x, &y, fx, eps, Kor_TestAbsolute, c, &ind, &r.fail);
        if (ind == 0) break;
        fx = f(x);
        ++r.calls;
        if (std::fabs(fx) < eta || fx == 0.0) break;
    }
    r.x = x;
    return r;
}

std::vector<double> eps_values(const Case &c) {
    return {1e-3 * c.scale, 1e-7 * c.scale, 1e-11 * c.scale};
}

TEST(C05ay, FindsKnownZerosWithinEps) {
    for (const Case &c : cases())
        for (double eps : eps_values(c)) {
            SCOPED_TRACE(std::string(c.name) + " eps=" + testing::PrintToString(eps));
            const Direct r = solve(c.f, c.a, c.b, eps);
            EXPECT_EQ(r.fail.code, NE_NOERROR) << r.fail.message;
            EXPECT_EQ(r.fail.errnum, 0);
            EXPECT_LE(std::fabs(r.x - c.zero), eps + 2 * ulp(c.zero)) << r.x;
            // Secant and inverse quadratic steps converge superlinearly near
            // a simple zero: eps = 1e-11 of the bracket takes about 37
            // halvings, but far fewer values here.
            EXPECT_LT(r.calls, 20);
            // The long name is the same routine.
            const Direct l = solve(c.f, c.a, c.b, eps, 0.0, true);
            EXPECT_TRUE(same_bits(l.x, r.x) && l.calls == r.calls && l.fail.code == NE_NOERROR);
        }
}

TEST(C05ay, CallsAreThoseTheReverseCommunicationEngineRequests) {
    for (const Case &c : cases())
        for (double eps : eps_values(c))
            for (double eta : {0.0, 1e-9, 1e-3}) {
                SCOPED_TRACE(std::string(c.name) + " eps=" + testing::PrintToString(eps) +
                             " eta=" + testing::PrintToString(eta));
                const Direct r = solve(c.f, c.a, c.b, eps, eta);
                const Direct ref = through_rcomm(c.f, c.a, c.b, eps, eta);
                EXPECT_EQ(r.calls, ref.calls);
                EXPECT_TRUE(same_bits(r.x, ref.x)) << r.x << " vs " << ref.x;
                EXPECT_EQ(r.fail.code, NE_NOERROR);
            }
}

TEST(C05ay, EtaStopsAsSoonAsTheValueIsSmall) {
    for (const Case &c : cases()) {
        SCOPED_TRACE(c.name);
        const double eps = 1e-12 * c.scale;
        const Direct full = solve(c.f, c.a, c.b, eps, 0.0);
        // A loose eta ends the search at an iterate whose value is below it,
        // with fewer calls than the search to full accuracy.
        const double eta = 1e-2 * std::fabs(c.f(c.a));
        const Direct loose = solve(c.f, c.a, c.b, eps, eta);
        EXPECT_EQ(loose.fail.code, NE_NOERROR);
        EXPECT_LT(std::fabs(c.f(loose.x)), eta);
        EXPECT_LT(loose.calls, full.calls);
        // An eta above every value stops at the first point the engine asks
        // for, the second end, before the bracket has shrunk at all.
        const Direct at_once = solve(c.f, c.a, c.b, eps, 1e300);
        EXPECT_EQ(at_once.fail.code, NE_NOERROR);
        EXPECT_EQ(at_once.x, c.b);
        EXPECT_EQ(at_once.calls, 3);
        // The test is strict: a value equal to eta does not stop the search.
        const Direct tie = solve(c.f, c.a, c.b, eps, std::fabs(c.f(c.b)));
        EXPECT_NE(tie.x, c.b);
        EXPECT_GT(tie.calls, 3);
    }
}

double minus_x_plus_1(double x) { return -(x - 1.0); }  // -0.0 at x = 1
double minus_x_plus_3(double x) { return -(x - 3.0); }  // -0.0 at x = 3
double square_minus_4(double x) { return x * x - 4.0; }

TEST(C05ay, ZeroAtAnEndIsReturnedWithoutIteration) {
    struct Row {
        double (*f)(double);
        double a, b, zero;
    };
    const Row rows[] = {
        {square_minus_4, 2.0, 5.0, 2.0},   // f(a) = 0
        {square_minus_4, -1.0, 2.0, 2.0},  // f(b) = 0
        {minus_x_plus_1, 1.0, 3.0, 1.0},   // f(a) = -0.0 with f(b) < 0: -0.0 is a zero, not a sign
        {minus_x_plus_3, 1.0, 3.0, 3.0},   // f(b) = -0.0 with f(a) > 0
    };
    for (const Row &row : rows) {
        SCOPED_TRACE("a=" + std::to_string(row.a) + " b=" + std::to_string(row.b));
        const Direct r = solve(row.f, row.a, row.b, 1e-10);
        EXPECT_EQ(r.fail.code, NE_NOERROR) << r.fail.message;
        EXPECT_EQ(r.x, row.zero);
        EXPECT_EQ(r.calls, 3);  // f(a), f(b), and the engine's request for the second end
    }
}

double plus_one(double x) { return x + 1.0; }
double minus_one(double x) { return -x - 1.0; }
double nan_at_0(double x) { return x == 0.0 ? NAN : x * x - 2.0; }
double just_above_1(double x) { return (x - 1.0) - 0x1p-60; }  // zero in (1, 1 + 2^-52)
double pole(double x) { return 1.0 / (x - 0.5); }
double sqrt2_case(double x) { return x * x - 2.0; }

TEST(C05ay, EveryExitComposesItsMessage) {
    struct Row {
        const char *name;
        double (*f)(double);
        double a, b, eps;
        int code;
        int64_t errnum, calls;
        const char *message;
    };
    const Row rows[] = {
        {"eps negative", sqrt2_case, 0, 2, -1.0, NE_REAL, 1, 0,
         "NE_REAL:\n  On entry, eps = -1.0e+00.\n  Constraint: eps > 0.0."},
        {"eps zero", sqrt2_case, 0, 2, 0.0, NE_REAL, 1, 0,
         "NE_REAL:\n  On entry, eps = 0.0e+00.\n  Constraint: eps > 0.0."},
        {"eps minus zero", sqrt2_case, 0, 2, -0.0, NE_REAL, 1, 0,
         "NE_REAL:\n  On entry, eps = -0.0e+00.\n  Constraint: eps > 0.0."},
        {"eps checked before a == b", sqrt2_case, 1, 1, -2.5e-7, NE_REAL, 1, 0,
         "NE_REAL:\n  On entry, eps = -2.5e-07.\n  Constraint: eps > 0.0."},
        {"a == b", sqrt2_case, 1, 1, 1e-6, NE_REAL_2, 1, 0,
         "NE_REAL_2:\n  On entry, a = 1.0e+00 and b = 1.0e+00.\n  Constraint: a != b."},
        {"a == b checked before finiteness", sqrt2_case, INFINITY, INFINITY, 1e-6, NE_REAL_2, 1, 0,
         "NE_REAL_2:\n  On entry, a = Infinity and b = Infinity.\n  Constraint: a != b."},
        {"a infinite", sqrt2_case, -INFINITY, 2, 1e-6, NE_REAL_2, 1, 0,
         "NE_REAL_2:\n  On entry, a = -Infinity and b = 2.0e+00.\n"
         "  Constraint: a and b must be finite."},
        {"b NaN", sqrt2_case, 0, NAN, 1e-6, NE_REAL_2, 1, 0,
         "NE_REAL_2:\n  On entry, a = 0.0e+00 and b = NaN.\n  Constraint: a and b must be finite."},
        {"same sign, positive", plus_one, 0, 1, 1e-6, NE_FUNC_END_VAL, 1, 2,
         "NE_FUNC_END_VAL:\n  On entry, f(a) and f(b) have the same sign with neither equalling "
         "0.0:\n  f(a) = 1.0e+00 and f(b) = 2.0e+00."},
        {"same sign, negative", minus_one, 0, 0.5, 1e-6, NE_FUNC_END_VAL, 1, 2,
         "NE_FUNC_END_VAL:\n  On entry, f(a) and f(b) have the same sign with neither equalling "
         "0.0:\n  f(a) = -1.0e+00 and f(b) = -1.5e+00."},
        {"NaN at an end", nan_at_0, 0, 2, 1e-6, NE_FUNC_END_VAL, 1, 2,
         "NE_FUNC_END_VAL:\n  On entry, f(a) and f(b) have the same sign with neither equalling "
         "0.0:\n  f(a) = NaN and f(b) = 2.0e+00."},
        {"eps too small", just_above_1, 0.5, 1.5, 1e-300, NE_TOO_SMALL, 2, -1,
         "NE_TOO_SMALL:\n  No further improvement in the solution is possible.\n"
         "  eps is too small: eps = 1.0e-300.\n"
         "  The final value of x returned is an accurate approximation to the zero."},
        // A NaN eps passes the check; the search then runs to rounding level.
        {"eps NaN", sqrt2_case, 0, 2, NAN, NE_TOO_SMALL, 2, -1,
         "NE_TOO_SMALL:\n  No further improvement in the solution is possible.\n"
         "  eps is too small: eps = NaN.\n"
         "  The final value of x returned is an accurate approximation to the zero."},
        {"pole", pole, 0, 1, 1e-6, NE_PROBABLE_POLE, 3, -1,
         "NE_PROBABLE_POLE:\n  The function values in the interval [a,b] might contain\n"
         "  a pole rather than a zero. Reducing eps may help in distinguishing between\n"
         "  a pole and a zero."},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        testing::internal::CaptureStderr();
        const Direct r = solve(row.f, row.a, row.b, row.eps);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // print is 0: silent
        EXPECT_EQ(r.fail.code, row.code);
        EXPECT_EQ(r.fail.errnum, row.errnum);
        EXPECT_STREQ(r.fail.message, row.message);
        if (row.calls >= 0) {
            EXPECT_EQ(r.calls, row.calls);
        }
    }
    // The exits that end a search still return its best point.
    EXPECT_LE(std::fabs(solve(just_above_1, 0.5, 1.5, 1e-300).x - 1.0), 0x1p-52);
    EXPECT_LE(std::fabs(solve(sqrt2_case, 0, 2, NAN).x - M_SQRT2), 2 * ulp(M_SQRT2));
    EXPECT_LE(std::fabs(solve(pole, 0, 1, 1e-6).x - 0.5), 2e-6);
}

struct Seen {
    int calls = 0;
    int code = -1;
    std::string message, routine;
} seen;

void record_handler(const char *message, int code, const char *routine) {
    ++seen.calls;
    seen.code = code;
    seen.message = message;
    seen.routine = routine;
}

TEST(C05ay, HandlerAndPrintReportEveryOutcome) {
    Counted counter{sqrt2_case};
    Kor_Comm comm{&counter, nullptr, nullptr};
    double x = 0;
    KorError fail = KOR_ERROR_INIT;
    fail.handler = record_handler;
    fail.print = 1;
    fail.code = 99;  // stale values from an earlier call are cleared on entry
    fail.errnum = 99;

    seen = Seen{};
    testing::internal::CaptureStderr();
    c05ayc(0, 2, 1e-10, 0, counted, &x, &comm, &fail);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // success is never printed
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(fail.errnum, 0);
    EXPECT_STREQ(fail.message, "NE_NOERROR:\n  No error.");
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.code, 0);
    EXPECT_EQ(seen.message, "NE_NOERROR:\n  No error.");
    EXPECT_EQ(seen.routine, "c05ayc");

    seen = Seen{};
    testing::internal::CaptureStderr();
    c05ayc(0, 2, -1.0, 0, counted, &x, &comm, &fail);
    const char *text = "NE_REAL:\n  On entry, eps = -1.0e+00.\n  Constraint: eps > 0.0.";
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              std::string("Error detected by KOR routine c05ayc:\n") + text + "\n");
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.code, NE_REAL);
    EXPECT_EQ(seen.message, text);
    EXPECT_EQ(seen.routine, "c05ayc");
    EXPECT_EQ(fail.errnum, 1);
}

TEST(C05ay, NullPointersAreReportedBeforeAnyCall) {
    struct Row {
        bool null_f, null_x;
        const char *message;
    };
    const Row rows[] = {
        {false, true, "NE_BAD_PARAM:\n  On entry, parameter x had an illegal value."},
        {true, false, "NE_BAD_PARAM:\n  On entry, parameter f had an illegal value."},
        {true, true, "NE_BAD_PARAM:\n  On entry, parameter f had an illegal value."},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.message);
        Counted counter{sqrt2_case};
        Kor_Comm comm{&counter, nullptr, nullptr};
        double x = 0;
        KorError fail = KOR_ERROR_INIT;
        fail.errnum = 3;  // a stale value is cleared
        c05ayc(0, 2, 1e-6, 0, row.null_f ? nullptr : counted, row.null_x ? nullptr : &x, &comm,
               &fail);
        EXPECT_EQ(fail.code, NE_BAD_PARAM);
        EXPECT_EQ(fail.errnum, 0);
        EXPECT_STREQ(fail.message, row.message);
        EXPECT_EQ(counter.calls, 0);
    }
}

// f(x) = x^2 - ruser[0]; every call checks that it is handed the caller's
// record and counts itself in iuser[0].
Kor_Comm *expected_comm;
int64_t foreign_comm_calls;
double comm_user(double x, Kor_Comm *comm) {
    if (comm != expected_comm) ++foreign_comm_calls;
    if (!comm) return x * x - 3.0;
    ++comm->iuser[0];
    return x * x - comm->ruser[0];
}

TEST(C05ay, CommIsHandedUnchangedToF) {
    int64_t iuser[2] = {0, 42};
    double ruser[1] = {3.0};
    int tag = 0;
    Kor_Comm comm{&tag, iuser, ruser};
    for (Kor_Comm *passed : {&comm, static_cast<Kor_Comm *>(nullptr)}) {
        expected_comm = passed;
        foreign_comm_calls = 0;
        double x = 0;
        KorError fail = KOR_ERROR_INIT;
        c05ayc(0, 3, 1e-12, 0, comm_user, &x, passed, &fail);
        EXPECT_EQ(fail.code, NE_NOERROR);
        EXPECT_LE(std::fabs(x - std::sqrt(3.0)), 1e-12 + 2 * ulp(1.7));
        EXPECT_EQ(foreign_comm_calls, 0);
    }
    EXPECT_GT(iuser[0], 2);
    EXPECT_EQ(comm.data, &tag);
    EXPECT_EQ(comm.iuser, iuser);
    EXPECT_EQ(comm.ruser, ruser);
    EXPECT_EQ(iuser[1], 42);
    EXPECT_EQ(ruser[0], 3.0);
}

// Every result of a batch of searches, as bits.
std::vector<uint64_t> solve_all() {
    std::vector<uint64_t> out;
    auto bits = [&out](double v) { out.push_back(0), std::memcpy(&out.back(), &v, sizeof v); };
    for (const Case &c : cases())
        for (double eps : eps_values(c)) {
            const Direct r = solve(c.f, c.a, c.b, eps);
            const Search s = drive(c.f, c.a, c.b, eps, Kor_TestMixed);
            bits(r.x), bits(s.x), bits(s.y);
            out.insert(out.end(), {uint64_t(r.calls), uint64_t(r.fail.code), uint64_t(s.requests)});
        }
    return out;
}

TEST(C05ay, ConcurrentSearchesMatchTheSerialRun) {
    const std::vector<uint64_t> serial = solve_all();
    std::vector<std::vector<uint64_t>> results(8);
    std::vector<std::thread> threads;
    for (auto &r : results)
        threads.emplace_back([&r] {
            for (int round = 0; round < 20; ++round) r = solve_all();
        });
    for (auto &t : threads) t.join();
    for (const auto &r : results) EXPECT_TRUE(r == serial);
}

TEST(C05ay, NullFailEndsTheProcessOnError) {
    using kor::test::probe;
    using kor::test::run_process;
    const auto error = run_process(probe("c05_null_fail_probe"), {"ay_error"});
    EXPECT_EQ(error.status, 1);
    EXPECT_EQ(error.out, "");  // the probe's line after the call is never reached
    EXPECT_EQ(error.err,
              "Error detected by KOR routine c05ayc:\nNE_REAL:\n  On entry, eps = -1.0e+00.\n"
              "  Constraint: eps > 0.0.\n...KOR Function Terminated\n");

    const auto success = run_process(probe("c05_null_fail_probe"), {"ay_success"});
    EXPECT_EQ(success.status, 0);
    EXPECT_EQ(success.err, "");
    EXPECT_LE(std::fabs(std::strtod(success.out.c_str(), nullptr) - M_SQRT2), 1e-10);
}

}  // namespace
