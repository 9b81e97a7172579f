// e04rw and e04rx: the data items by keyword, the length and phase checks,
// the read-only and write-only items, and results not yet written.
#include "opt/problem.hpp"
#include "opt_support.hpp"

using namespace opt_test;

namespace {

kor::opt::Problem &data(const Handle &h) {
    kor::opt::Problem *p = nullptr;
    kor::opt::check_handle(h.get(), &p);
    return *p;
}

const std::string not_available = "NE_PHASE:\n  The requested information is not available.";

TEST(E04rw, ChecksInOrder) {
    Handle h(3);
    int64_t iarr[8] = {};
    double rarr[8] = {};
    for (Api api : both) {
        expect_failure(rw(api, h.get(), "XPROP", 2, 3, iarr, 0, rarr), "NE_INT:\n  On entry, ioflag = 2.\n  Constraint: ioflag = 0 or 1.", 6);
        expect_failure(rw(api, h.get(), "XPROPS", 0, 3, iarr, 0, rarr), "NE_STR_UNKNOWN:\n  The provided cmdstr is not recognised.", 6);
        expect_failure(rw(api, h.get(), "IROWB", 1, 0, iarr, 0, rarr),
                       "NE_WRITE_ERROR:\n  Writing mode is not supported for the given cmdstr.", 5);
        expect_failure(rw(api, h.get(), "BLX", 0, 0, iarr, 3, rarr), not_available, 2);
        expect_failure(rw(api, h.get(), "BLC", 0, 0, iarr, 0, rarr), not_available, 2);
        expect_failure(rw(api, h.get(), "CVEC", 0, 0, iarr, 3, rarr), not_available, 2);
        expect_failure(rw(api, h.get(), "IDXCC", 0, 0, iarr, 0, rarr), not_available, 2);
        expect_failure(rw(api, h.get(), "XPROP", 0, 4, iarr, 0, rarr),
                       "NE_REF_MATCH:\n  On entry, liarr = 4, expected value = 3.\n  Constraint: liarr must match the "
                       "size of the data identified in cmdstr.",
                       6);
        expect_failure(rw(api, h.get(), "BLB", 0, 0, iarr, 1, rarr),
                       "NE_REF_MATCH:\n  On entry, lrarr = 1, expected value = 0.\n  Constraint: lrarr must match the "
                       "size of the data identified in cmdstr.",
                       6);
        int64_t bad[3] = {0, 3, 1};
        expect_failure(rw(api, h.get(), "XPROP", 1, 3, bad, 0, rarr),
                       "NE_INT:\n  On entry, i = 2, iarr[i-1] = 3.\n  Constraint: iarr[i-1] = 0, 1, 2, 10, 11 or 12 for XPROP.");
    }
}

TEST(E04rw, ItemsReadAndWritten) {
    for (Api api : both) {
        Handle h(3);
        double none[1];
        int64_t inone[1];
        // Simple bounds, written and read back; a crossing write refused.
        const R bl = {0, 0, 0}, bu = {5, 5, 5};
        expect_success(rh(Api::c, h.get(), 3, bl.data(), bu.data()));
        R lower = {1, 2, 3};
        expect_success(rw(api, h.get(), "blx", 1, 0, inone, 3, lower.data()));
        R back(3);
        expect_success(rw(api, h.get(), " BLX ", 0, 0, inone, 3, back.data()));
        EXPECT_EQ(back, lower);
        R crossing = {1, 6, 3};
        expect_failure(rw(api, h.get(), "BLX", 1, 0, inone, 3, crossing.data()),
                       "NE_BOUND:\n  On entry, i = 2, the lower bound 6.0e+00 and the upper bound 5.0e+00.\n  "
                       "Constraint: lower bound <= upper bound.");
        EXPECT_EQ(data(h).bounds->first, lower);
        // Linear constraints by columns.
        const R lbl = {0, 1}, lbu = {2, 3}, b = {1, 2, 3, 4};
        const I row = {2, 1, 2, 1}, col = {3, 1, 1, 3};
        int64_t id = 0;
        expect_success(rj(Api::c, h.get(), 2, lbl.data(), lbu.data(), 4, row.data(), col.data(), b.data(), &id));
        int64_t rows[4], starts[4];
        expect_success(rw(api, h.get(), "IROWB", 0, 4, rows, 0, none));
        expect_success(rw(api, h.get(), "ICCOLB", 0, 4, starts, 0, none));
        EXPECT_EQ(I(rows, rows + 4), (I{1, 2, 1, 2}));    // column 1: rows 1, 2; column 3: rows 1, 2
        EXPECT_EQ(I(starts, starts + 4), (I{1, 3, 3, 5}));
        R ubb(2);
        expect_success(rw(api, h.get(), "BUB", 0, 0, inone, 2, ubb.data()));
        EXPECT_EQ(ubb, lbu);
        // Cones.
        const I g = {3, 1};
        id = 0;
        expect_success(rb(Api::c, h.get(), "QUAD", 2, g.data(), &id));
        int64_t members[2], types[1];
        expect_success(rw(api, h.get(), "IDXCC", 0, 2, members, 0, none));
        expect_success(rw(api, h.get(), "CCTYPE", 0, 1, types, 0, none));
        EXPECT_EQ(I(members, members + 2), g);
        EXPECT_EQ(types[0], 1);
        // A sparse linear objective part: IDXC and CVEC in the same order.
        const I idx = {1, 3};
        const R c = {4, 5};
        expect_success(rf(Api::c, h.get(), 2, idx.data(), c.data(), 0, idx.data(), idx.data(), c.data()));
        int64_t got_idx[2];
        R got_c(2);
        expect_success(rw(api, h.get(), "IDXC", 0, 2, got_idx, 0, none));
        expect_success(rw(api, h.get(), "CVEC", 0, 0, inone, 2, got_c.data()));
        EXPECT_EQ(I(got_idx, got_idx + 2), idx);
        EXPECT_EQ(got_c, c);
        // Nonlinear constraint bounds.
        const R nbl = {-1}, nbu = {1};
        expect_success(rk(Api::c, h.get(), 1, nbl.data(), nbu.data(), 1, idx.data(), idx.data()));
        R nb(1);
        expect_success(rw(api, h.get(), "BUC", 0, 0, inone, 1, nb.data()));
        EXPECT_EQ(nb[0], 1);
        // Properties written.
        int64_t props[3] = {12, 1, 10};
        expect_success(rw(api, h.get(), "XPROP", 1, 3, props, 0, none));
        EXPECT_EQ(data(h).properties[0].integrality, kor::opt::Integrality::integer);
        EXPECT_TRUE(data(h).properties[0].linear);
        EXPECT_EQ(data(h).properties[1].integrality, kor::opt::Integrality::binary);
    }
}

TEST(E04rx, ResultsNotYetWrittenAreNotAvailable) {
    Handle h(2);
    double r[4];
    for (Api api : both)
        for (const char *k : {"PRIMAL VARIABLES", "DUAL VARIABLES", "DUAL CONE VARIABLES", "DUAL CONE",
                              "DUAL MATRIX VARIABLES", "DUAL MATRIX", "RESIDUAL WEIGHTS", "COVARIANCE MATRIX",
                              "HESSIAN MATRIX", "SLACK VARIABLES", "SLACK", "SLK"}) {
            SCOPED_TRACE(k);
            expect_failure(rx(api, h.get(), k, 0, 2, r), not_available, 2);
        }
}

TEST(E04rx, ResultsASolverLeftAndTheChecks) {
    Handle h(2);
    kor::opt::store_result(data(h), kor::opt::ResultItem::primal_variables, {1.5, -2});
    kor::opt::store_result(data(h), kor::opt::ResultItem::slack_variables, {0.25});
    for (Api api : both) {
        R x(2), s(1);
        expect_success(rx(api, h.get(), "primal  variables", 0, 2, x.data()));
        EXPECT_EQ(x, (R{1.5, -2}));
        for (const char *k : {"SLACK VARIABLES", "Slack", "slk"}) {
            s[0] = 0;
            expect_success(rx(api, h.get(), k, 0, 1, s.data()));
            EXPECT_EQ(s[0], 0.25);
        }
        expect_failure(rx(api, h.get(), "PRIMAL VARIABLES", 0, 3, x.data()),
                       "NE_REF_MATCH:\n  On entry, lrarr = 3, expected value = 2.\n  Constraint: lrarr must match the "
                       "size of the data identified in cmdstr.",
                       6);
        expect_failure(rx(api, h.get(), "PRIMAL VARIABLES", 1, 2, x.data()),
                       "NE_WRITE_ERROR:\n  Writing mode is not supported for the given cmdstr.", 5);
        expect_failure(rx(api, h.get(), "MCS LIST", 0, 6, x.data()),
                       "NE_READ_ERROR:\n  Reading mode is not supported for the given cmdstr.", 5);
        expect_failure(rx(api, h.get(), "PRIMAL", 0, 2, x.data()),
                       "NE_STR_UNKNOWN:\n  The provided cmdstr is not recognised.", 6);
        expect_failure(rx(api, h.get(), "SLK", -1, 1, x.data()), "NE_INT:\n  On entry, ioflag = -1.\n  Constraint: ioflag = 0 or 1.", 6);
        R list = {0, 1, 2, 3, 4, 5};
        expect_failure(rx(api, h.get(), "MCSL", 1, 5, list.data()),
                       "NE_REF_MATCH:\n  On entry, lrarr = 5, expected value = 6.\n  Constraint: lrarr must match the "
                       "size of the data identified in cmdstr.",
                       6);
        expect_success(rx(api, h.get(), "MCSL", 1, 6, list.data()));
        EXPECT_EQ(data(h).results.at(kor::opt::ResultItem::mcs_list), list);
    }
    kor::opt::SolverPhase phase(data(h));
    R list(6), x(2);
    expect_failure(rx(Api::c, h.get(), "MCS LIST", 1, 6, list.data()),
                   "NE_PHASE:\n  The request cannot be processed at this phase.", 2);
    expect_success(rx(Api::c, h.get(), "PRIMAL VARIABLES", 0, 2, x.data()));
}

}  // namespace
