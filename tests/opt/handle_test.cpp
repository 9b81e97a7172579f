// The handle: creation and destruction (e04ra, e04rz), the nine-word header
// and its validation by every routine, and the phase that refuses changes
// while a solver runs.
#include <cstring>

#include "opt/handle.hpp"
#include "opt_support.hpp"

using namespace opt_test;

namespace {

// Calls every routine that takes a handle once, with arguments that would be
// accepted by a valid handle of 2 variables, and returns what each reported.
std::vector<std::pair<std::string, Report>> every_routine(Api api, void *h, bool definitions_only) {
    static const I one = {1}, two = {1, 2}, pair = {1, 2};
    static const R zero = {0.0}, zeros = {0.0, 0.0}, ones = {1.0, 1.0};
    std::vector<std::pair<std::string, Report>> out;
    int64_t id = 0;
    out.emplace_back("e04rh", rh(api, h, 2, zeros.data(), ones.data()));
    out.emplace_back("e04re", re(api, h, 2, ones.data()));
    out.emplace_back("e04rf", rf(api, h, 1, one.data(), zero.data(), 1, one.data(), one.data(), zero.data()));
    out.emplace_back("e04rg", rg(api, h, 1, one.data()));
    id = 0;
    out.emplace_back("e04rj", rj(api, h, 1, zero.data(), zero.data(), 1, one.data(), one.data(), zero.data(), &id));
    out.emplace_back("e04rk", rk(api, h, 1, zero.data(), zero.data(), 1, one.data(), one.data()));
    out.emplace_back("e04rl", rl(api, h, -1, 1, one.data(), one.data()));
    out.emplace_back("e04rm", rm(api, h, 1, 0, 1, one.data(), one.data()));
    id = 0;
    out.emplace_back("e04rb", rb(api, h, "QUAD", 2, two.data(), &id));
    out.emplace_back("e04rc", rc(api, h, "INT", 1, one.data()));
    {
        const I nnza = {0, 1, 0}, blk = {1};
        int64_t idblk = 0;
        out.emplace_back("e04rn", rn(api, h, 2, 1, nnza.data(), 1, one.data(), one.data(), zero.data(), 1,
                                     blk.data(), &idblk));
        out.emplace_back("e04rp", rp(api, h, 1, 1, one.data(), pair.data(), 1, one.data(), 1, one.data(),
                                     one.data(), zero.data()));
    }
    id = 0;
    out.emplace_back("e04rs", rs(api, h, 0.0, 1, one.data(), zero.data(), 0, one.data(), one.data(),
                                 zero.data(), -1.0, 1.0, &id));
    id = 0;
    out.emplace_back("e04rt", rt(api, h, 0.0, 1, 1, one.data(), one.data(), zero.data(), 0, one.data(),
                                 zero.data(), -1.0, 1.0, &id));
    if (!definitions_only) {
        int64_t iarr[2] = {0, 0};
        double rarr[2] = {0, 0};
        out.emplace_back("e04rw", rw(api, h, "XPROP", 0, 2, iarr, 0, rarr));
        out.emplace_back("e04rx", rx(api, h, "PRIMAL VARIABLES", 0, 2, rarr));
        out.emplace_back("e04ry", ry(api, h, -1, "OVERVIEW"));
    }
    void *copy = h;
    out.emplace_back("e04rz", rz(api, &copy));
    return out;
}

TEST(Handle, HeaderHoldsTheNineWords) {
    Handle h(3);
    const int64_t *w = static_cast<const int64_t *>(h.get());
    const int64_t expected[8] = {65535, 'T', 'A', 'L', 'V', 'S', 'H', 'L'};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(w[i], expected[i]) << "word " << i;
    EXPECT_NE(w[8], 0);
    kor::opt::Problem *p = nullptr;
    EXPECT_EQ(kor::opt::check_handle(h.get(), &p), kor::opt::HandleStatus::valid);
    EXPECT_EQ(reinterpret_cast<intptr_t>(p), w[8]);
}

TEST(Handle, NegativeNvarRefusedAndNoHandleReturned) {
    for (Api api : both) {
        void *h = reinterpret_cast<void *>(0x1);
        const Report r = ra(api, &h, -1);
        expect_failure(r, "NE_INT:\n  On entry, nvar = -1.\n  Constraint: nvar >= 0.");
        EXPECT_EQ(h, nullptr);
    }
}

TEST(Handle, ZeroVariablesMakeAValidHandle) {
    for (Api api : both) {
        void *h = nullptr;
        expect_success(ra(api, &h, 0));
        ASSERT_NE(h, nullptr);
        const std::string text = printed(h, "overview");
        EXPECT_NE(text.find("No of variables:         0"), std::string::npos) << text;
        expect_success(rz(api, &h));
        EXPECT_EQ(h, nullptr);
    }
}

TEST(Handle, CountNoMemoryHoldsFailsWithTheAllocationError) {
    void *h = nullptr;
    const Report c = ra(Api::c, &h, INT64_MAX / 2);
    EXPECT_EQ(c.code, NE_ALLOC_FAIL);
    EXPECT_EQ(c.message, "NE_ALLOC_FAIL:\n  Dynamic memory allocation failed.");
    EXPECT_EQ(h, nullptr);
    const Report f = ra(Api::fortran, &h, INT64_MAX / 2);
    EXPECT_EQ(f.outcome, -999);
    ASSERT_EQ(f.lines.size(), 1u);
    EXPECT_EQ(f.lines[0], "** Dynamic memory allocation failed.");
    EXPECT_EQ(h, nullptr);
}

TEST(Handle, NullHandleReportedByEveryRoutine) {
    for (Api api : both)
        for (const auto &[routine, report] : every_routine(api, nullptr, false)) {
            SCOPED_TRACE(routine);
            expect_failure(report, handle_null, 1);
        }
}

TEST(Handle, FreedHandleIsNullAndALaterCallReportsIt) {
    for (Api api : both) {
        void *h = nullptr;
        expect_success(ra(api, &h, 2));
        expect_success(rz(api, &h));
        EXPECT_EQ(h, nullptr);
        expect_failure(ry(api, h, -1, "OVERVIEW"), handle_null, 1);
        expect_failure(rz(api, &h), handle_null, 1);
    }
}

TEST(Handle, MemoryThatIsNotAHandleDoesNotBelongToTheSuite) {
    // Words 0-4 wrong in turn: each makes the block foreign.
    for (int word = 0; word < 5; ++word) {
        int64_t block[9] = {65535, 'T', 'A', 'L', 'V', 'S', 'H', 'L', 0};
        block[word] ^= 1;
        for (Api api : both)
            for (const auto &[routine, report] : every_routine(api, block, false)) {
                SCOPED_TRACE(routine + " word " + std::to_string(word));
                expect_failure(report, handle_foreign, 1);
            }
    }
    // Text in place of a header.
    char text[128] = "this is not an optimization handle";
    for (Api api : both) expect_failure(ry(api, text, -1, "OVERVIEW"), handle_foreign, 1);
}

TEST(Handle, CorruptedHeaderIsReportedWithoutFollowingItsPointer) {
    Handle live(2);
    const int64_t *w = static_cast<const int64_t *>(live.get());
    struct Case {
        const char *what;
        int word;
        int64_t value;
    };
    // An address that faults if read: the data word must not be followed
    // unless it names live problem data.
    const int64_t unmapped = 16;
    const Case cases[] = {{"kind tag S", 5, 'X'}, {"kind tag H", 6, 0}, {"kind tag L", 7, 77},
                          {"null data", 8, 0},    {"unmapped data", 8, unmapped},
                          {"data of another handle's header", 8, w[8] + 8}};
    for (const Case &c : cases) {
        int64_t block[9];
        std::memcpy(block, w, sizeof block);
        block[c.word] = c.value;
        for (Api api : both)
            for (const auto &[routine, report] : every_routine(api, block, false)) {
                SCOPED_TRACE(routine + std::string(" ") + c.what);
                expect_failure(report, handle_corrupted, 1);
            }
    }
    // A copy of a valid header is not the handle: its data belong to another.
    int64_t copy[9];
    std::memcpy(copy, w, sizeof copy);
    for (Api api : both) expect_failure(ry(api, copy, -1, "OVERVIEW"), handle_corrupted, 1);
    // The live handle is untouched by all this.
    for (Api api : both) expect_success(ry(api, live.get(), -1, "OVERVIEW"));
}

TEST(Handle, SolverPhaseRefusesEveryDefinitionAndTheFree) {
    Handle h(2);
    kor::opt::Problem *p = nullptr;
    ASSERT_EQ(kor::opt::check_handle(h.get(), &p), kor::opt::HandleStatus::valid);
    const std::string before = printed(h.get(), "overview, simple bounds, objective");
    {
        kor::opt::SolverPhase phase(*p);
        EXPECT_TRUE(kor::opt::solver_running(*p));
        for (Api api : both)
            for (const auto &[routine, report] : every_routine(api, h.get(), true)) {
                SCOPED_TRACE(routine);
                expect_failure(report, solver_running, 2);
            }
        // Printing and reading stay allowed, for a solver's monitors.
        const std::string during = printed(h.get(), "overview");
        EXPECT_NE(during.find("Status:                  Problem is being solved, no changes allowed."),
                  std::string::npos)
            << during;
        int64_t props[2];
        double none[1];
        for (Api api : both) {
            expect_success(rw(api, h.get(), "XPROP", 0, 2, props, 0, none));
            expect_failure(rw(api, h.get(), "XPROP", 1, 2, props, 0, none),
                           "NE_PHASE:\n  The request cannot be processed at this phase.", 2);
        }
    }
    EXPECT_FALSE(kor::opt::solver_running(*p));
    // Nothing changed while the solver ran.
    EXPECT_EQ(printed(h.get(), "overview, simple bounds, objective"), before);
    const R lo = {0, 0}, hi = {1, 1};
    for (Api api : both) expect_success(rh(api, h.get(), 2, lo.data(), hi.data()));
}

TEST(Handle, DistinctHandlesShareNoState) {
    Handle a(2), b(3);
    const R lo = {0, 0}, hi = {1, 1};
    expect_success(rh(Api::c, a.get(), 2, lo.data(), hi.data()));
    EXPECT_NE(printed(a.get(), "overview").find("Simple bounds:           defined"), std::string::npos);
    EXPECT_NE(printed(b.get(), "overview").find("Simple bounds:           not defined"), std::string::npos);
    kor::opt::Problem *p = nullptr;
    kor::opt::check_handle(a.get(), &p);
    kor::opt::SolverPhase phase(*p);
    const R lo3 = {0, 0, 0}, hi3 = {1, 1, 1};
    expect_success(rh(Api::c, b.get(), 3, lo3.data(), hi3.data()));
}

TEST(Handle, NullHandleAddressRefusedByTheCInterface) {
    KorError e = KOR_ERROR_INIT;
    e04rac(nullptr, 2, &e);
    EXPECT_EQ(e.code, NE_BAD_PARAM);
    EXPECT_EQ(std::string(e.message), "NE_BAD_PARAM:\n  On entry, parameter handle had an illegal value.");
    e04rzc(nullptr, &e);
    EXPECT_EQ(e.code, NE_BAD_PARAM);
}

TEST(Handle, LongNamesAreTheSameRoutines) {
    KorError e = KOR_ERROR_INIT;
    void *h = nullptr;
    kor_opt_handle_init(&h, 2, &e);
    ASSERT_EQ(e.code, 0);
    const double lo[2] = {0, 0}, hi[2] = {1, 5};
    kor_opt_handle_set_simplebounds(h, 2, lo, hi, &e);
    EXPECT_EQ(e.code, 0);
    kor_opt_handle_set_simplebounds(h, 3, lo, hi, &e);
    EXPECT_EQ(std::string(e.message),
              "NE_REF_MATCH:\n  On entry, nvar = 3, expected value = 2.\n  Constraint: nvar must match the "
              "current number of variables of the model in the handle.");
    kor_opt_handle_free(&h, &e);
    EXPECT_EQ(e.code, 0);
    EXPECT_EQ(h, nullptr);
}

}  // namespace
