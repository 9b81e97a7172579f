// The handle's life (e04ra, e04rz), the header every routine validates without following a
// damaged one, and the solver phase, which refuses changes but allows printing and reading.
#include <cstring>

#include "opt_support.hpp"

using namespace opt_test;

namespace {

struct Report {
    std::string routine;
    const kor::frame::RoutineInfo &info;
    KorError fail;
};

// Every routine that takes a handle, once, with arguments a handle of 2 variables accepts in
// turn; `changes`: only those that change the handle or its options.
std::vector<Report> every_routine(void *h, bool changes, int64_t unit = -1) {
    static const I one = {1}, two = {1, 2}, nnza = {0, 1, 0};
    static const R zero = {0.0, 0.0}, ones = {1.0, 1.0};
    std::vector<Report> out;
    int64_t id = 0;
    auto add = [&](const char *name, const kor::frame::RoutineInfo &info, auto call) {
        KorError f = fresh_error();
        id = 0;
        call(&f);
        out.push_back({name, info, f});
    };
    add("e04rh", kor::e04rh::info, [&](KorError *f) { e04rhc(h, 2, zero.data(), ones.data(), f); });
    add("e04re", kor::e04re::info, [&](KorError *f) { e04rec(h, 2, ones.data(), f); });
    add("e04rf", kor::e04rf::info, [&](KorError *f) { e04rfc(h, 1, one.data(), zero.data(), 1, one.data(), one.data(), zero.data(), f); });
    add("e04rg", kor::e04rg::info, [&](KorError *f) { e04rgc(h, 1, one.data(), f); });
    add("e04rj", kor::e04rj::info, [&](KorError *f) { e04rjc(h, 1, zero.data(), zero.data(), 1, one.data(), one.data(), zero.data(), &id, f); });
    add("e04rk", kor::e04rk::info, [&](KorError *f) { e04rkc(h, 1, zero.data(), zero.data(), 1, one.data(), one.data(), f); });
    add("e04rl", kor::e04rl::info, [&](KorError *f) { e04rlc(h, -1, 1, one.data(), one.data(), f); });
    add("e04rm", kor::e04rm::info, [&](KorError *f) { e04rmc(h, 1, 0, 1, one.data(), one.data(), f); });
    add("e04rb", kor::e04rb::info, [&](KorError *f) { e04rbc(h, "QUAD", 2, two.data(), &id, f); });
    add("e04rc", kor::e04rc::info, [&](KorError *f) { e04rcc(h, "INT", 1, one.data(), f); });
    add("e04rn", kor::e04rn::info, [&](KorError *f) { e04rnc(h, 2, 1, nnza.data(), 1, one.data(), one.data(), zero.data(), 1, one.data(), &id, f); });
    add("e04rp", kor::e04rp::info, [&](KorError *f) { e04rpc(h, 1, 1, one.data(), two.data(), 1, one.data(), 1, one.data(), one.data(), zero.data(), f); });
    add("e04rs", kor::e04rs::info, [&](KorError *f) { e04rsc(h, 0.0, 1, one.data(), zero.data(), 0, one.data(), one.data(), zero.data(), -1.0, 1.0, &id, f); });
    add("e04rt", kor::e04rt::info, [&](KorError *f) { e04rtc(h, 0.0, 1, 1, one.data(), one.data(), zero.data(), 0, one.data(), zero.data(), -1.0, 1.0, &id, f); });
    add("e04zm", kor::e04zm::info, [&](KorError *f) { e04zmc(h, "Print Level = 3", f); });
    int64_t i, t;
    double r;
    char c[31];
    add("e04zn", kor::e04zn::info, [&](KorError *f) { e04znc(h, "Print Level", &i, &r, c, sizeof c, &t, f); });
    add("e04zp", kor::e04zp::info, [&](KorError *f) { e04zpc(h, unit, f); });
    if (!changes) {
        int64_t iarr[2] = {0, 0};
        double list[6] = {};
        add("e04rw", kor::e04rw::info, [&](KorError *f) { e04rwc(h, "XPROP", 0, 2, iarr, 0, nullptr, f); });
        add("e04rx", kor::e04rx::info, [&](KorError *f) { e04rxc(h, "MCS LIST", 1, 6, list, f); });
        add("e04ry", kor::e04ry::info, [&](KorError *f) { e04ryc(h, -1, "OVERVIEW", f); });
    }
    void *copy = h;
    add("e04rz", kor::e04rz::info, [&](KorError *f) { e04rzc(&copy, f); });
    return out;
}

// The report is the routine's exit of that name.
void expect_named(const Report &r, const std::string &exit) {
    SCOPED_TRACE(r.routine + " " + exit);
    const kor::frame::ExitInfo *e = nullptr;
    for (int i = 0; i < r.info.nexits; ++i)
        if (exit == r.info.exits[i].name) e = &r.info.exits[i];
    ASSERT_NE(e, nullptr);
    std::vector<std::string> values;
    EXPECT_EQ(r.fail.code, e->code) << r.fail.message;
    EXPECT_EQ(r.fail.errnum, e->outcome);
    EXPECT_TRUE(kor::test::match_exit_message(*e, r.fail.message, values)) << r.fail.message;
}

TEST(Handle, CreatedWithTheNineWordHeaderAndFreedToNull) {
    for (int64_t nvar : {0, 3}) {
        void *h = nullptr;
        KorError f = fresh_error();
        e04rac(&h, nvar, &f);
        expect_success(f);
        const int64_t *w = static_cast<const int64_t *>(h);
        EXPECT_EQ(I(w, w + 8), (I{65535, 'T', 'A', 'L', 'V', 'S', 'H', 'L'}));
        kor::opt::Problem *p = nullptr;
        EXPECT_EQ(kor::opt::check_handle(h, &p), kor::opt::HandleStatus::valid);
        EXPECT_EQ(reinterpret_cast<intptr_t>(p), w[8]);
        EXPECT_EQ(p->nvar, nvar);
        e04rzc(&h, &f);
        expect_success(f);
        EXPECT_EQ(h, nullptr);
        // Every routine reports a freed (null) handle.
        for (const Report &r : every_routine(h, false)) expect_named(r, "handle_null");
    }
}

TEST(Handle, RefusedCreationsReturnNoHandle) {
    void *h = reinterpret_cast<void *>(0x1);
    KorError f = fresh_error();
    e04rac(&h, -1, &f);
    EXPECT_EQ(exit_reals<kor::e04ra::Exit::nvar_negative>(kor::e04ra::info, f), (R{-1}));
    EXPECT_EQ(h, nullptr);
    h = reinterpret_cast<void *>(0x1);
    e04rac(&h, INT64_MAX / 2, &f);  // a count no memory holds
    EXPECT_EQ(f.code, NE_ALLOC_FAIL);
    EXPECT_EQ(h, nullptr);
}

TEST(Handle, MemoryThatIsNotAHandleDoesNotBelongToTheSuite) {
    // Words 0-4 wrong in turn: each makes the block foreign.
    for (int word = 0; word < 5; ++word) {
        int64_t block[9] = {65535, 'T', 'A', 'L', 'V', 'S', 'H', 'L', 0};
        block[word] ^= 1;
        for (const Report &r : every_routine(block, false)) expect_named(r, "handle_foreign");
    }
    char text[128] = "this is not an optimization handle";
    for (const Report &r : every_routine(text, false)) expect_named(r, "handle_foreign");
}

TEST(Handle, CorruptedHeaderIsReportedWithoutFollowingItsPointer) {
    Handle live(2);
    const int64_t *w = static_cast<const int64_t *>(live.get());
    const std::string before = state(live);
    // Data words that fault if read (16), or name no live handle's data, are not followed.
    const std::pair<int, int64_t> damages[] = {{5, 'X'}, {6, 0}, {7, 77}, {8, 0}, {8, 16}, {8, w[8] + 8}, {8, w[8]}};
    for (const auto &[word, value] : damages) {
        SCOPED_TRACE("word " + std::to_string(word) + " = " + std::to_string(value));
        int64_t block[9];
        std::memcpy(block, w, sizeof block);
        block[word] = value;  // the last: a copy of a valid header is not the handle
        for (const Report &r : every_routine(block, false)) expect_named(r, "handle_corrupted");
    }
    EXPECT_EQ(state(live), before);
}

TEST(Handle, SolverPhaseRefusesEveryChangeButPrintingAndReading) {
    Handle h(2);
    ScratchDir dir;
    write_file(dir.file("o.txt"), "Begin\nPrint Level = 4\nEnd\n");
    const int64_t unit = open_unit(dir.file("o.txt"), 0);
    const std::string before = printed(h.get(), "$DUMP$ALL$");
    {
        kor::opt::SolverPhase phase(h.problem());
        for (const Report &r : every_routine(h.get(), true, unit))
            expect_named(r, r.routine[3] == 'z' ? "options_locked" : "solver_running");
        KorError f = fresh_error();
        // Writing data is refused; printing and reading are allowed, for a solver's monitors.
        int64_t props[2];
        double list[6] = {};
        e04rwc(h.get(), "XPROP", 1, 2, props, 0, nullptr, &f);
        expect_exit(kor::e04rw::info, want<kor::e04rw::Exit::phase_forbids>(), f);
        e04rxc(h.get(), "MCS LIST", 1, 6, list, &f);
        expect_exit(kor::e04rx::info, want<kor::e04rx::Exit::phase_forbids>(), f);
        e04rwc(h.get(), "XPROP", 0, 2, props, 0, nullptr, &f);
        expect_success(f);
        const std::string during = printed(h.get(), "overview");
        EXPECT_NE(during.find("Problem is being solved, no changes allowed."), std::string::npos) << during;
    }
    // Nothing changed while the solver ran, not even the unit's position.
    EXPECT_EQ(printed(h.get(), "$DUMP$ALL$"), before);
    KorError f = fresh_error();
    e04zpc(h.get(), unit, &f);
    close_unit(unit);
    EXPECT_EQ(h.store().get(kor::opt::slot::print_level), 4);
    const R lo = {0, 0}, hi = {1, 1};
    e04rhc(h.get(), 2, lo.data(), hi.data(), &f);
    expect_success(f);
}

TEST(Handle, DistinctHandlesShareNoState) {
    Handle a(2), b(3);
    const R lo = {0, 0, 0}, hi = {1, 1, 1};
    KorError f = fresh_error();
    kor::opt::SolverPhase phase(a.problem());
    e04rhc(b.get(), 3, lo.data(), hi.data(), &f);
    expect_success(f);
    EXPECT_FALSE(a.problem().bounds.has_value());
}

}  // namespace
