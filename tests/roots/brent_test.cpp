// c05ay and c05az (Brent's method): zeros against high-precision references (tests/data/roots), c05ay's
// calls against c05az's requests, the bracket and tolerance of every error test, every exit with its values.
#include <algorithm>
#include <cmath>
#include <map>

#include <gsl/gsl_roots.h>

#include "c05ay_def.hpp"
#include "c05az_def.hpp"
#include "support/data.hpp"
#include "support/exits.hpp"
#include "support/numbers.hpp"

namespace {

using kor::test::same_bits;
using Fn = double (*)(double);
namespace ay = kor::c05ay;
namespace az = kor::c05az;

const std::map<std::string, Fn> functions = {  // those of zeros.tsv, by the names there
    {"square_minus_2", [](double x) { return x * x - 2.0; }}, {"dottie", [](double x) { return std::cos(x) - x; }},
    {"wallis", [](double x) { return (x * x - 2.0) * x - 5.0; }}, {"omega", [](double x) { return std::exp(-x) - x; }},
    {"plastic", [](double x) { return (x * x - 1.0) * x - 1.0; }}, {"zero_at_0", [](double x) { return std::sin(x); }},
    {"three_simple_zeros", [](double x) { return (x - 1.0) * (x - 2.0) * (x - 3.0); }},
    {"steep_tanh", [](double x) { return std::tanh(50.0 * (x - 0.3)); }},
    {"zero_near_0", [](double x) { return std::expm1(x) - 1e-8; }}, {"zero_near_1e6", [](double x) { return x * x - 2e12; }}};
const Fn sqrt2 = functions.at("square_minus_2"), pole = [](double x) { return 1.0 / (x - 0.5); };
const Fn just_above_1 = [](double x) { return (x - 1.0) - 0x1p-60; };  // zero in (1, 1 + 2^-52)

// Expects exit `check` with `values` (NaN matching NaN); a null check means success.
using Check = std::vector<double> (*)(const kor::frame::RoutineInfo &, const KorError &);
template <class Tag> const Check exit_of = &kor::test::exit_reals<Tag>;
void expect_exit(Check check, const kor::frame::RoutineInfo &info, const KorError &fail, const std::vector<double> &values) {
    if (!check) return kor::test::expect_success(fail);
    const std::vector<double> got = check(info, fail);
    EXPECT_TRUE(std::equal(got.begin(), got.end(), values.begin(), values.end(), same_bits)) << testing::PrintToString(got);
}

// A search: its results (x = -7: not written) and every point at which f was called or asked for.
struct Search { double x = -7.0, y = 0.0; int64_t ind = 0; KorError fail = KOR_ERROR_INIT; std::vector<double> asked; };

// c05ayc, with the points at which it called f.
Search solve(Fn f, double a, double b, double eps, double eta = 0.0) {
    struct Data { Fn f; Search s; } d{f, {}};
    const auto counted = [](double x, Kor_Comm *c) { auto *d = static_cast<Data *>(c->data); return d->s.asked.push_back(x), d->f(x); };
    Kor_Comm comm{&d, nullptr, nullptr};
    c05ayc(a, b, eps, eta, counted, &d.s.x, &comm, &d.s.fail);
    return d.s;
}

// c05azc to its end, each request (for the first end, ind 2, the second, 3, then iterates, 4) answered by
// f(x); start 1, or -1 with f(x) given.  With eta >= 0 it stops as c05ay does, once |f| < eta or f = 0.
Search drive(Fn f, double x, double y, double tolx, Kor_ErrorTest ir, int64_t start = 1, double eta = -1) {
    Search s;
    s.x = x, s.y = y, s.ind = start;
    double c[KOR_C05AZ_LC] = {}, fx = start == -1 ? f(x) : 0.0;
    while (s.asked.size() < 2000) {
        c05azc(&s.x, &s.y, fx, tolx, ir, c, &s.ind, &s.fail);
        if (s.ind == 0 || s.fail.code != NE_NOERROR) break;
        EXPECT_EQ(s.ind, std::min<int64_t>(s.asked.size() + (start == -1 ? 3 : 2), 4));
        s.asked.push_back(s.x), fx = f(s.x);
        if (eta >= 0 && (std::fabs(fx) < eta || fx == 0.0)) break;
    }
    EXPECT_LT(s.asked.size(), 2000u) << "no end";
    return s;
}

TEST(Roots, KnownZerosForEveryErrorTest) {
    for (const auto &row : kor::test::read_table("roots/zeros.tsv")) {
        const Fn f = functions.at(row.text(0));
        const double a = row.real(1), b = row.real(2), zero = row.real(3), scale = row.real(4);
        for (double eps : {1e-3 * scale, 1e-7 * scale, 1e-11 * scale})
            for (double eta : {0.0, 1e-9, 1e-3, std::fabs(f(b)), 1e300}) {
                SCOPED_TRACE(row.text(0) + " eps=" + std::to_string(eps) + " eta=" + std::to_string(eta));
                Search r = solve(f, a, b, eps, eta), s = drive(f, a, b, eps, Kor_TestAbsolute, -1, eta);
                kor::test::expect_success(r.fail);
                s.asked.insert(s.asked.begin(), {a, b});  // c05ay's own sign check, then c05az's requests
                EXPECT_TRUE(r.asked == s.asked && same_bits(r.x, s.x)) << r.x << " vs " << s.x;
                if (!(std::fabs(f(r.x)) < eta)) { EXPECT_LE(std::fabs(r.x - zero), eps + 2 * kor::test::ulp(zero)); }
            }
        for (Kor_ErrorTest ir : {Kor_TestMixed, Kor_TestAbsolute, Kor_TestRelative})
            for (double t : {1e-4, 1e-9, 1e-13}) {
                // ir = 2 with the zero at 0.0: |m| >= |b|/2 > u |b| while 0.0 is inside, so the end is x = 0.0.
                const double tolx = ir == Kor_TestAbsolute ? t * scale : t, wr = ir != Kor_TestAbsolute, wa = ir != Kor_TestRelative;
                SCOPED_TRACE(row.text(0) + " ir=" + std::to_string(ir) + " tolx=" + std::to_string(tolx));
                const Search s = drive(f, a, b, tolx, ir), given = drive(f, a, b, tolx, ir, -1);
                kor::test::expect_success(s.fail);
                // With ind = -1, the same search less the request for the first end.
                EXPECT_TRUE(given.asked == std::vector<double>(s.asked.begin() + 1, s.asked.end()) && given.x == s.x);
                // tol = tolx max(wr |x|, wa); the bracket is within 2 tol unless x is an exact zero.
                const double tol = tolx * std::max(wr * std::fabs(s.x), wa) * (1 + 1e-15);
                if (f(s.x) != 0.0) { EXPECT_LE(std::fabs(s.x - s.y), 2 * tol); }
                EXPECT_LE(std::fabs(s.x - zero), 2 * tol + 2 * kor::test::ulp(zero));
                EXPECT_EQ(s.x, s.asked.back());  // the answer is the point last asked for
            }
    }
}

// One call and how it must end: the exit (null: success) with its values, x within x_error (c05ay: -7 when
// not written; c05az: x as given), the number of points asked for (-1: any).
struct Ending { const char *name; Search (*run)(); Check exit; std::vector<double> values; double x, x_error; int points; };
void expect_endings(const kor::frame::RoutineInfo &info, const std::vector<Ending> &rows) {
    for (const Ending &row : rows) {
        SCOPED_TRACE(row.name);
        const Search s = row.run();
        expect_exit(row.exit, info, s.fail, row.values);
        EXPECT_TRUE(same_bits(s.x, row.x) || std::fabs(s.x - row.x) <= row.x_error) << s.x;
        if (row.points >= 0) { EXPECT_EQ(s.asked.size(), size_t(row.points)); }
    }
}
const Fn plus_one = [](double x) { return x + 1.0; }, minus_3_5 = [](double x) { return x - 3.5; };
const Kor_ErrorTest mixed = Kor_TestMixed, absolute = Kor_TestAbsolute, ir3 = Kor_ErrorTest(3);

TEST(Roots, EveryExitWithItsValuesNanArgumentsIncluded) {
    const Check eps = exit_of<ay::Exit::eps_not_positive>, ay_ends = exit_of<ay::Exit::ends_not_finite>;
    const Check empty = exit_of<ay::Exit::empty_interval>, ay_sign = exit_of<ay::Exit::no_sign_change>;
    const Check initial = exit_of<az::Exit::ind_initial>, later = exit_of<az::Exit::ind_intermediate>;
    const Check tolx = exit_of<az::Exit::tolx_not_positive>, ir = exit_of<az::Exit::ir_invalid>, az_ends = exit_of<az::Exit::ends_not_finite>;
    const Check sign = exit_of<az::Exit::no_sign_change>, pole_exit = exit_of<az::Exit::probable_pole>;
    expect_endings(ay::info, {
        {"eps NaN", [] { return solve(sqrt2, 0, 2, NAN); }, eps, {NAN}, -7, 0, 0},
        {"a NaN", [] { return solve(sqrt2, NAN, 2, 1e-6); }, ay_ends, {NAN, 2}, -7, 0, 0},
        {"b NaN", [] { return solve(sqrt2, 0, NAN, 1e-6); }, ay_ends, {0, NAN}, -7, 0, 0},
        {"eps -0", [] { return solve(sqrt2, 0, 2, -0.0); }, eps, {-0.0}, -7, 0, 0},
        {"eps before a != b", [] { return solve(sqrt2, 1, 1, -2.5e-7); }, eps, {-2.5e-7}, -7, 0, 0},
        {"a == b", [] { return solve(sqrt2, 1, 1, 1e-6); }, empty, {1, 1}, -7, 0, 0},
        {"a != b before finite", [] { return solve(sqrt2, INFINITY, INFINITY, 1e-6); }, empty, {INFINITY, INFINITY}, -7, 0, 0},
        {"same sign +", [] { return solve(plus_one, 0, 1, 1e-6); }, ay_sign, {1, 2}, -7, 0, 2},
        {"NaN at a", [] { return solve([](double x) { return x == 0 ? NAN : x; }, 0, 2, 1e-6); }, ay_sign, {NAN, 2}, -7, 0, 2},
        {"eps too small", [] { return solve(just_above_1, 0.5, 1.5, 1e-300); }, exit_of<ay::Exit::eps_too_small>, {1e-300}, 1, 0x1p-52, -1},
        {"pole", [] { return solve(pole, 0, 1, 1e-6); }, exit_of<ay::Exit::probable_pole>, {}, 0.5, 2e-6, -1},
        // A zero at an end, -0.0 a zero and not a sign: f(a), f(b), f(b) again for the engine, no iterate.
        {"f(a) = -0", [] { return solve([](double x) { return -(x - 1.0); }, 1, 3, 1e-10); }, nullptr, {}, 1, 0, 3},
        {"f(b) = -0", [] { return solve([](double x) { return -(x - 3.0); }, 1, 3, 1e-10); }, nullptr, {}, 3, 0, 3}});
    expect_endings(az::info, {
        {"tolx NaN", [] { return drive(sqrt2, 0, 2, NAN, mixed); }, tolx, {NAN}, 0, 0, 0},
        {"x NaN", [] { return drive(sqrt2, NAN, 2, 1e-6, mixed); }, az_ends, {NAN, 2}, NAN, 0, 0},
        {"y NaN", [] { return drive(sqrt2, 0, NAN, 1e-6, mixed); }, az_ends, {0, NAN}, 0, 0, 0},
        {"tolx 0", [] { return drive(sqrt2, 0, 2, 0.0, mixed); }, tolx, {0.0}, 0, 0, 0},
        {"tolx < 0", [] { return drive(sqrt2, 0, 2, -1e-8, mixed, -1); }, tolx, {-1e-8}, 0, 0, 0},
        {"ir 3", [] { return drive(sqrt2, 0, 2, 1e-8, ir3); }, ir, {3}, 0, 0, 0},
        {"ind 4, fresh c", [] { return drive(sqrt2, 0, 2, 1e-8, mixed, 4); }, later, {4}, 0, 0, 0},
        {"ind before tolx", [] { return drive(sqrt2, 0, 2, 0.0, ir3, -2); }, initial, {-2}, 0, 0, 0},
        {"tolx before ir", [] { return drive(sqrt2, NAN, 2, -1.0, ir3); }, tolx, {-1.0}, NAN, 0, 0},
        {"ir before the ends", [] { return drive(sqrt2, NAN, 2, 1.0, ir3); }, ir, {3}, NAN, 0, 0},
        {"same sign: f at the x, y returned, x the second end", [] { return drive(plus_one, 0, 1, 1e-8, mixed); }, sign, {2, 1}, 1, 0, 2},
        {"same sign, ind -1", [] { return drive(plus_one, 0, 1, 1e-8, mixed, -1); }, sign, {2, 1}, 1, 0, 1},
        {"NaN at an end", [] { return drive([](double t) { return t == 0 ? NAN : -t; }, 0, 1, 1e-8, mixed); }, sign, {-1, NAN}, 1, 0, 2},
        {"pole", [] { return drive(pole, 0, 1, 1e-6, absolute); }, pole_exit, {}, 0.5, 2e-6, -1},
        {"NaN on (0.2, 0.8): the bracket closes on 0.8, where f has no value", [] { return drive([](double t) { return t > 0.2 && t < 0.8 ? NAN : t - 0.5; }, 0, 1, 1e-10, absolute); }, pole_exit, {}, 0.8, 1e-9, -1},
        {"|m| <= u |b| ends the search", [] { return drive(just_above_1, 0.5, 1.5, 1e-30, absolute); }, exit_of<az::Exit::too_much_accuracy>, {1e-30}, 1, 0x1p-52, -1},
        {"a jump whose final value only equals the end values is no pole", [] { return drive([](double t) { return t < 0.3 ? -1.0 : 1.0; }, 0, 1, 1e-6, absolute); }, nullptr, {}, 0.3, 2e-6, -1},
        // From [2, 4] on x - 3.5, b = 4 and |m| = 1: tol = |m| stops at once; tol = 0.95 steps by tol, and stops.
        {"relative tol = |m|", [] { return drive(minus_3_5, 2, 4, 0.25, Kor_TestRelative); }, nullptr, {}, 4, 0, 3},
        {"relative tol < |m|", [] { return drive(minus_3_5, 2, 4, 0.2375, Kor_TestRelative); }, nullptr, {}, 4 - 0.95, 0, 4},
        {"absolute tol = |m|", [] { return drive(minus_3_5, 2, 4, 1.0, absolute); }, nullptr, {}, 4, 0, 3},
        {"absolute tol < |m|", [] { return drive(minus_3_5, 2, 4, 0.95, absolute); }, nullptr, {}, 4 - 0.95, 0, 4},
        {"an iterate of value -0.0 ends the search", [] { return drive([](double t) { return -(t - 0.5); }, 0, 1, 1e-12, mixed); }, nullptr, {}, 0.5, 0, -1}});
}

TEST(C05az, IteratesAreThoseOfGslsBrentSolver) {
    // GSL's Brent solver, another implementation of the published algorithm, steps by 0.5 eps |b| at least: with the
    // relative test and tolx = 2^-53 both evaluate f at the same points, and c05az then asks for the root GSL settles on.
    for (const auto &row : kor::test::read_table("roots/zeros.tsv")) {
        struct { Fn f; std::vector<double> points; } gsl{functions.at(row.text(0)), {}};
        gsl_function g{[](double x, void *p) { auto *r = static_cast<decltype(gsl) *>(p); return r->points.push_back(x), r->f(x); }, &gsl};
        const double a = std::min(row.real(1), row.real(2)), b = std::max(row.real(1), row.real(2));
        gsl_root_fsolver *solver = gsl_root_fsolver_alloc(gsl_root_fsolver_brent);
        gsl_root_fsolver_set(solver, &g, a, b);
        for (size_t n = 0; n != gsl.points.size() && n < 100;) n = gsl.points.size(), gsl_root_fsolver_iterate(solver);
        gsl.points.push_back(gsl_root_fsolver_root(solver));
        gsl_root_fsolver_free(solver);
        EXPECT_EQ(drive(gsl.f, a, b, 0x1p-53, Kor_TestRelative).asked, gsl.points) << row.text(0);
    }
}

TEST(C05az, ReentryWithChangedArgumentsIsRejected) {
    Search s;  // on x^2 - 2
    double c[KOR_C05AZ_LC];
    auto step = [&](double tolx = 1e-12) { c05azc(&s.x, &s.y, sqrt2(s.x), tolx, mixed, c, &s.ind, &s.fail); };
    auto start = [&](int64_t returned) { s = Search{}, s.x = 0.0, s.y = 2.0, s.ind = 1; while (s.ind != returned) step(); };
    start(4), step(NAN);  // tolx is checked on every entry
    expect_exit(exit_of<az::Exit::tolx_not_positive>, az::info, s.fail, {NAN});
    for (const auto &[returned, passed] : std::vector<std::pair<int, int>>{{2, 3}, {3, 4}, {4, 3}, {4, 2}, {3, 2}}) {
        start(returned), s.ind = passed, step();
        expect_exit(exit_of<az::Exit::ind_intermediate>, az::info, s.fail, {double(passed)});
    }
    // One element of c changed at the third iterate is caught, or holds no state and the search ends as
    // an undisturbed one.  The state (three points and values, two steps, pole bound, flag) takes ten.
    const Search plain = drive(sqrt2, 0, 2, 1e-12, mixed);
    int caught = 0;
    for (int i = 0; i < KOR_C05AZ_LC; ++i) {
        start(4), step(), step(), c[i] = c[i] == 0.5 ? 0.25 : 0.5;
        for (int n = 0; n < 1000 && s.ind != 0 && s.fail.code == 0; ++n) step();
        if (s.fail.code == NE_NOERROR) { EXPECT_TRUE(same_bits(s.x, plain.x) && same_bits(s.y, plain.y)) << i; }
        else caught += kor::test::exit_values<az::Exit::ind_intermediate>(az::info, s.fail) == std::vector<std::string>{"4"};
    }
    EXPECT_GE(caught, 10);
}

TEST(C05az, NanAndInfiniteValuesNeverHang) {
    // Termination (drive's bound), never a success where f is NaN: a jumble of signs, NaNs, infinities, zeros.
    const Fn jumble = [](double t) {
        const double values[] = {NAN, INFINITY, -INFINITY, 0.0, -0.0, 1.0, -1.0, 1e-300};
        return t == 0.0 || t == 1.0 ? t - 0.5 : values[uint64_t(t * 0x1p40) * 0x9e3779b97f4a7c15ull >> 61];
    };
    for (Fn f : {jumble, Fn([](double t) -> double { return t < 0.5 ? -INFINITY : INFINITY; })})
        for (Kor_ErrorTest ir : {Kor_TestMixed, Kor_TestAbsolute, Kor_TestRelative})
            for (double tolx : {0.25, 1e-12, 1e-300})
                if (const Search s = drive(f, 0, 1, tolx, ir); s.fail.code == NE_NOERROR) { EXPECT_FALSE(std::isnan(f(s.x))) << s.x; }
}

}  // namespace
