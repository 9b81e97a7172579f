// The definition routines e04rb .. e04rt: every check with its message
// through both interfaces, identifiers that create and replace components,
// the rule that a new objective discards the old one with every Hessian
// structure, and a failed call leaving the handle as it was.
#include <cmath>
#include <limits>

#include "opt/problem.hpp"
#include "opt_support.hpp"

using namespace opt_test;
using kor::opt::Problem;

namespace {

Problem &data(const Handle &h) {
    Problem *p = nullptr;
    kor::opt::check_handle(h.get(), &p);
    return *p;
}

// Everything the handle holds, as the undocumented dump prints it (options
// aside): equal before and after a failed call.
std::string state(const Handle &h) { return printed(h.get(), "$DUMP$ALMOST$ALL$"); }

const double inf = std::numeric_limits<double>::infinity();
const double nan = std::numeric_limits<double>::quiet_NaN();

// ---------------------------------------------------------------------------
TEST(E04rh, ChecksInOrderPerVariable) {
    struct Case {
        R bl, bu;
        std::string message;
    };
    const std::vector<Case> cases = {
        {{0, 2, 0}, {1, 1, 1},
         "NE_BOUND:\n  On entry, j = 2, bl[j-1] = 2.0e+00 and bu[j-1] = 1.0e+00.\n  Constraint: bl[j-1] <= bu[j-1]."},
        {{0, nan, 0}, {1, 1, 1},
         "NE_BOUND:\n  On entry, j = 2, bl[j-1] = NaN and bu[j-1] = 1.0e+00.\n  Constraint: bl[j-1] <= bu[j-1]."},
        {{0, 0, 1e20}, {1, 1, 1e20},
         "NE_BOUND:\n  On entry, j = 3, bl[j-1] = 1.0e+20, bigbnd = 1.0e+20.\n  Constraint: bl[j-1] < bigbnd."},
        {{0, 0, inf}, {1, 1, inf},
         "NE_BOUND:\n  On entry, j = 3, bl[j-1] = Infinity, bigbnd = 1.0e+20.\n  Constraint: bl[j-1] < bigbnd."},
        {{-inf, 0, 0}, {-1e20, 1, 1},
         "NE_BOUND:\n  On entry, j = 1, bu[j-1] = -1.0e+20, bigbnd = 1.0e+20.\n  Constraint: bu[j-1] > -bigbnd."},
        // The first variable with a failure is reported, whatever the later ones hold.
        {{0, 5, 1e30}, {1, 4, 1e30},
         "NE_BOUND:\n  On entry, j = 2, bl[j-1] = 5.0e+00 and bu[j-1] = 4.0e+00.\n  Constraint: bl[j-1] <= bu[j-1]."},
    };
    for (Api api : both)
        for (const Case &c : cases) {
            Handle h(3);
            const std::string before = state(h);
            expect_failure(rh(api, h.get(), 3, c.bl.data(), c.bu.data()), c.message, 6);
            EXPECT_EQ(state(h), before);
        }
}

TEST(E04rh, NvarMustMatchTheHandle) {
    for (Api api : both) {
        Handle h(3);
        const R b = {0, 0, 0, 0};
        expect_failure(rh(api, h.get(), 4, b.data(), b.data()),
                       "NE_REF_MATCH:\n  On entry, nvar = 4, expected value = 3.\n  Constraint: nvar must match "
                       "the current number of variables of the model in the handle.",
                       3);
    }
}

TEST(E04rh, BoundsAtBigbndAreInfiniteAndEqualBoundsFix) {
    for (Api api : both) {
        Handle h(3);
        const R bl = {-1e20, 2.5, -inf}, bu = {1e20, 2.5, 7};
        expect_success(rh(api, h.get(), 3, bl.data(), bu.data()));
        const std::string text = printed(h.get(), "simple bounds");
        EXPECT_NE(text.find("x[1]                   -inf            inf"), std::string::npos) << text;
        EXPECT_NE(text.find("x[2]           2.500000e+00   2.500000e+00"), std::string::npos) << text;
        EXPECT_NE(text.find("x[3]                   -inf   7.000000e+00"), std::string::npos) << text;
        // A second call replaces the bounds.
        const R bl2 = {1, 1, 1}, bu2 = {2, 2, 2};
        expect_success(rh(api, h.get(), 3, bl2.data(), bu2.data()));
        EXPECT_EQ(data(h).bounds->first, bl2);
    }
}

TEST(E04rh, BigbndIsTheOptionInfiniteBoundSize) {
    Handle h(1);
    KorError e = KOR_ERROR_INIT;
    e04zmc(h.get(), "Infinite Bound Size = 1000", &e);
    ASSERT_EQ(e.code, 0) << e.message;
    const R bl = {1000}, bu = {2000};
    expect_failure(rh(Api::c, h.get(), 1, bl.data(), bu.data()),
                   "NE_BOUND:\n  On entry, j = 1, bl[j-1] = 1.0e+03, bigbnd = 1.0e+03.\n  Constraint: bl[j-1] < bigbnd.");
    const R bl2 = {999};
    expect_success(rh(Api::c, h.get(), 1, bl2.data(), bu.data()));
}

// ---------------------------------------------------------------------------
TEST(E04re, DenseLinearObjective) {
    for (Api api : both) {
        Handle h(3);
        const R c = {1, 0, -2};
        expect_failure(re(api, h.get(), 2, c.data()),
                       "NE_REF_MATCH:\n  On entry, nvar = 2, expected value = 3.\n  Constraint: nvar must match "
                       "the current number of variables of the model in the handle.");
        expect_success(re(api, h.get(), 3, c.data()));
        EXPECT_EQ(data(h).objective.kind, kor::opt::ObjectiveKind::linear);
        EXPECT_EQ(data(h).objective.cvec, c);
    }
}

// ---------------------------------------------------------------------------
TEST(E04rf, EveryCheck) {
    struct Case {
        int64_t nnzc;
        I idxc;
        int64_t nnzh;
        I irow, icol;
        std::string message;
    };
    const std::vector<Case> cases = {
        {-1, {1}, 0, {1}, {1}, "NE_INT:\n  On entry, nnzc = -1.\n  Constraint: nnzc >= 0."},
        {0, {1}, -3, {1}, {1}, "NE_INT:\n  On entry, nnzh = -3.\n  Constraint: nnzh >= 0."},
        {2, {1, 5}, 0, {1}, {1},
         "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, idxc[i-1] = 5 and n = 4.\n  Constraint: 1 <= idxc[i-1] <= n."},
        {2, {0, 1}, 0, {1}, {1},
         "NE_INVALID_INT_RANGE_1:\n  On entry, i = 1, idxc[i-1] = 0 and n = 4.\n  Constraint: 1 <= idxc[i-1] <= n."},
        {3, {1, 3, 3}, 0, {1}, {1},
         "NE_NOT_INCREASING:\n  On entry, i = 2, idxc[i-1] = 3 and idxc[i] = 3.\n  Constraint: idxc[i-1] < idxc[i] "
         "(ascending order)."},
        {2, {2, 1}, 0, {1}, {1},
         "NE_NOT_INCREASING:\n  On entry, i = 1, idxc[i-1] = 2 and idxc[i] = 1.\n  Constraint: idxc[i-1] < idxc[i] "
         "(ascending order)."},
        {0, {1}, 2, {1, 9}, {1, 9},
         "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, irowh[i-1] = 9 and n = 4.\n  Constraint: 1 <= irowh[i-1] <= n."},
        {0, {1}, 2, {1, 2}, {1, -2},
         "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, icolh[i-1] = -2 and n = 4.\n  Constraint: 1 <= icolh[i-1] <= n."},
        {0, {1}, 2, {1, 3}, {2, 2},
         "NE_INVALID_INT_RANGE_2:\n  On entry, i = 2, irowh[i-1] = 3 and icolh[i-1] = 2.\n  Constraint: irowh[i-1] <= "
         "icolh[i-1] (elements within the upper triangle)."},
        {0, {1}, 3, {1, 2, 1}, {4, 2, 4},
         "NE_NON_ZERO_DUP:\n  On entry, more than one element of h has row index 1 and column index 4.\n  "
         "Constraint: each element of h must have a unique row and column index."},
    };
    for (Api api : both)
        for (const Case &c : cases) {
            Handle h(4);
            const R values(8, 1.0);
            const std::string before = state(h);
            expect_failure(rf(api, h.get(), c.nnzc, c.idxc.data(), values.data(), c.nnzh, c.irow.data(),
                              c.icol.data(), values.data()),
                           c.message, 6);
            EXPECT_EQ(state(h), before);
        }
}

TEST(E04rf, RepeatedPairRefusedEvenWithEqualValues) {
    Handle h(3);
    const I row = {1, 2, 1}, col = {1, 3, 1};
    const R value = {2.0, 1.0, 2.0};
    const I idx = {1};
    for (Api api : both)
        expect_failure(rf(api, h.get(), 0, idx.data(), value.data(), 3, row.data(), col.data(), value.data()),
                       "NE_NON_ZERO_DUP:\n  On entry, more than one element of h has row index 1 and column index "
                       "1.\n  Constraint: each element of h must have a unique row and column index.");
}

TEST(E04rf, FirstRepeatInTheOrderGiven) {
    // (2,2) repeats at position 4, (1,1) only at position 5: (2,2) is named.
    Handle h(3);
    const I row = {1, 2, 3, 2, 1}, col = {1, 2, 3, 2, 1};
    const R value(5, 1.0);
    expect_failure(rf(Api::c, h.get(), 0, row.data(), value.data(), 5, row.data(), col.data(), value.data()),
                   "NE_NON_ZERO_DUP:\n  On entry, more than one element of h has row index 2 and column index 2.\n  "
                   "Constraint: each element of h must have a unique row and column index.");
}

// ---------------------------------------------------------------------------
TEST(E04rg, EveryCheck) {
    for (Api api : both) {
        Handle h(3);
        const I bad_range = {1, 4}, bad_order = {2, 2}, good = {1, 3};
        expect_failure(rg(api, h.get(), -1, good.data()), "NE_INT:\n  On entry, nnzfd = -1.\n  Constraint: nnzfd >= 0.");
        expect_failure(rg(api, h.get(), 2, bad_range.data()),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, idxfd[i-1] = 4 and n = 3.\n  Constraint: 1 <= "
                       "idxfd[i-1] <= n.");
        expect_failure(rg(api, h.get(), 2, bad_order.data()),
                       "NE_NOT_INCREASING:\n  On entry, i = 1, idxfd[i-1] = 2 and idxfd[i] = 2.\n  Constraint: "
                       "idxfd[i-1] < idxfd[i] (ascending order).");
        expect_success(rg(api, h.get(), 2, good.data()));
        EXPECT_EQ(data(h).objective.kind, kor::opt::ObjectiveKind::nonlinear);
        EXPECT_EQ(data(h).objective.idxfd, good);
    }
}

// ---------------------------------------------------------------------------
struct LinearBlock {
    int64_t nclin;
    R bl, bu;
    I irow, icol;
    R b;
};

// nnz: the count passed, when not that of the entries.
Report add_block(Api api, Handle &h, const LinearBlock &k, int64_t *idlc, int64_t nnz = INT64_MIN) {
    return rj(api, h.get(), k.nclin, k.bl.data(), k.bu.data(), nnz == INT64_MIN ? int64_t(k.irow.size()) : nnz,
              k.irow.data(), k.icol.data(), k.b.data(), idlc);
}

TEST(E04rj, EveryCheck) {
    struct Case {
        int64_t idlc;
        LinearBlock block;
        int64_t nnz;
        std::string message;
    };
    const LinearBlock ok = {2, {0, 1}, {1, 1}, {1, 2}, {1, 3}, {1, 1}};
    const std::vector<Case> cases = {
        {-1, ok, INT64_MIN, "NE_INT:\n  On entry, idlc = -1.\n  Constraint: idlc >= 0."},
        {0, ok, -5, "NE_INT:\n  On entry, nnzb = -5.\n  Constraint: nnzb >= 0."},
        {0, {-2, {0}, {0}, {1}, {1}, {1}}, INT64_MIN, "NE_INT:\n  On entry, nclin = -2.\n  Constraint: nclin >= 0."},
        {1, ok, INT64_MIN, "NE_INT_2:\n  On entry, idlc = 1 and nclin = 2.\n  Constraint: If idlc > 0, nclin = 1."},
        {4, {1, {0}, {1}, {1}, {1}, {1}}, INT64_MIN,
         "NE_REF_MATCH:\n  On entry, idlc = 4.\n  The given idlc does not match with any existing linear "
         "constraint.\n  The maximum idlc is 3."},
        {0, {2, {0, 3}, {1, 2}, {1}, {1}, {1}}, INT64_MIN,
         "NE_BOUND:\n  On entry, j = 2, bl[j-1] = 3.0e+00 and bu[j-1] = 2.0e+00.\n  Constraint: bl[j-1] <= bu[j-1]."},
        {0, {1, {1e25}, {1e25}, {1}, {1}, {1}}, INT64_MIN,
         "NE_BOUND:\n  On entry, j = 1, bl[j-1] = 1.0e+25, bigbnd = 1.0e+20.\n  Constraint: bl[j-1] < bigbnd."},
        {0, {1, {-1e25}, {-1e21}, {1}, {1}, {1}}, INT64_MIN,
         "NE_BOUND:\n  On entry, j = 1, bu[j-1] = -1.0e+21, bigbnd = 1.0e+20.\n  Constraint: bu[j-1] > -bigbnd."},
        {0, {2, {0, 0}, {1, 1}, {1, 3}, {1, 1}, {1, 1}}, INT64_MIN,
         "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, irowb[i-1] = 3 and nclin = 2.\n  Constraint: 1 <= irowb[i-1] <= nclin."},
        {0, {2, {0, 0}, {1, 1}, {1, 2}, {1, 5}, {1, 1}}, INT64_MIN,
         "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, icolb[i-1] = 5 and n = 4.\n  Constraint: 1 <= icolb[i-1] <= n."},
        {0, {2, {0, 0}, {1, 1}, {2, 1, 2}, {3, 3, 3}, {7, 7, 7}}, INT64_MIN,
         "NE_NON_ZERO_DUP:\n  On entry, more than one element of b has row index 2 and column index 3.\n  "
         "Constraint: each element of b must have a unique row and column index."},
    };
    for (Api api : both)
        for (const Case &c : cases) {
            Handle h(4);
            int64_t id = 0;
            const LinearBlock three = {3, {0, 0, 0}, {1, 1, 1}, {1, 2, 3}, {1, 2, 3}, {1, 1, 1}};
            expect_success(add_block(api, h, three, &id));
            const std::string before = state(h);
            id = c.idlc;
            expect_failure(add_block(api, h, c.block, &id, c.nnz), c.message);
            EXPECT_EQ(id, c.idlc);
            EXPECT_EQ(state(h), before);
        }
}

TEST(E04rj, BlocksAreNumberedOnAndRowsReplacedByIdentifier) {
    for (Api api : both) {
        Handle h(3);
        int64_t id = 0;
        expect_success(add_block(api, h, {2, {0, 1}, {1, 2}, {1, 2, 2}, {1, 2, 3}, {1, 2, 3}}, &id));
        EXPECT_EQ(id, 2);
        id = 0;
        expect_success(add_block(api, h, {1, {-1}, {4}, {1}, {3}, {9}}, &id));
        EXPECT_EQ(id, 3);
        id = 0;
        // (C callers pass arrays even for a count of 0.)
        expect_success(add_block(api, h, {0, {0}, {0}, {1}, {1}, {1}}, &id, 0));
        EXPECT_EQ(id, 3);  // an empty block adds nothing
        // Row 2 replaced: its bounds and entries go, the new ones take its number.
        id = 2;
        expect_success(add_block(api, h, {1, {5}, {6}, {1}, {1}, {-4}}, &id));
        EXPECT_EQ(id, 2);
        const kor::opt::LinearConstraints &lc = data(h).linear;
        EXPECT_EQ(lc.bl, (R{0, 5, -1}));
        EXPECT_EQ(lc.bu, (R{1, 6, 4}));
        const std::string text = printed(h.get(), "linear constraints detailed");
        EXPECT_NE(text.find("l[2]: bounds 5.000000e+00, 6.000000e+00; 1 nonzeros\n      x[1]  -4.000000e+00\n   l[3]"),
                  std::string::npos)
            << text;
        EXPECT_NE(text.find("l[1]: bounds 0.000000e+00, 1.000000e+00; 1 nonzeros\n      x[1]   1.000000e+00\n"),
                  std::string::npos)
            << text;
    }
}

TEST(E04rj, HugeCountsFailWithTheAllocationError) {
    Handle h(2);
    const R v = {0};
    const I i = {1};
    for (int64_t count : {INT64_MAX, int64_t(1) << 61, int64_t(1) << 52}) {
        int64_t id = 0;
        const Report c = rj(Api::c, h.get(), 1, v.data(), v.data(), count, i.data(), i.data(), v.data(), &id);
        EXPECT_EQ(c.code, NE_ALLOC_FAIL) << c.message;
        const Report f = rj(Api::fortran, h.get(), 1, v.data(), v.data(), count, i.data(), i.data(), v.data(), &id);
        EXPECT_EQ(f.outcome, -999);
        id = 0;
        const Report rows = rj(Api::c, h.get(), count, v.data(), v.data(), 1, i.data(), i.data(), v.data(), &id);
        EXPECT_EQ(rows.code, NE_ALLOC_FAIL) << rows.message;
    }
    EXPECT_EQ(data(h).linear.rows(), 0);
}

// ---------------------------------------------------------------------------
TEST(E04rk, EveryCheck) {
    const R lo = {0, 0}, hi = {1, 1}, crossed = {2, 0};
    const I one_two = {1, 2}, col = {1, 2}, bad_row = {1, 3}, bad_col = {4, 1}, dup_row = {1, 1}, dup_col = {2, 2};
    for (Api api : both) {
        Handle h(3);
        expect_failure(rk(api, h.get(), -1, lo.data(), hi.data(), 2, one_two.data(), col.data()),
                       "NE_INT:\n  On entry, ncnln = -1.\n  Constraint: ncnln >= 0.");
        expect_failure(rk(api, h.get(), 2, lo.data(), hi.data(), 0, one_two.data(), col.data()),
                       "NE_INT:\n  On entry, nnzgd = 0.\n  Constraint: nnzgd > 0.");
        expect_failure(rk(api, h.get(), 2, crossed.data(), hi.data(), 2, one_two.data(), col.data()),
                       "NE_BOUND:\n  On entry, j = 1, bl[j-1] = 2.0e+00 and bu[j-1] = 1.0e+00.\n  Constraint: "
                       "bl[j-1] <= bu[j-1].");
        expect_failure(rk(api, h.get(), 2, lo.data(), hi.data(), 2, bad_row.data(), col.data()),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, irowgd[i-1] = 3 and ncnln = 2.\n  Constraint: 1 "
                       "<= irowgd[i-1] <= ncnln.");
        expect_failure(rk(api, h.get(), 2, lo.data(), hi.data(), 2, one_two.data(), bad_col.data()),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 1, icolgd[i-1] = 4 and n = 3.\n  Constraint: 1 <= "
                       "icolgd[i-1] <= n.");
        expect_failure(rk(api, h.get(), 2, lo.data(), hi.data(), 2, dup_row.data(), dup_col.data()),
                       "NE_NON_ZERO_DUP:\n  On entry, more than one element of the structural Jacobian matrix has "
                       "row index 1 and column index 2.\n  Constraint: each element of the structural Jacobian "
                       "matrix must have a unique row and column index.");
        const R big = {-1e20, 0}, big_hi = {1e20, 1e21};
        expect_success(rk(api, h.get(), 2, big.data(), big_hi.data(), 2, one_two.data(), col.data()));
        EXPECT_EQ(data(h).nonlinear.count(), 2);
    }
}

// ---------------------------------------------------------------------------
TEST(E04rl, PhaseAndIndexChecks) {
    const I d1 = {1}, up_r = {1, 2}, up_c = {2, 3}, low_r = {2}, low_c = {1}, out = {4};
    for (Api api : both) {
        Handle h(3);
        expect_failure(rl(api, h.get(), 0, 0, d1.data(), d1.data()), "NE_INT:\n  On entry, nnzh = 0.\n  Constraint: nnzh > 0.");
        expect_failure(rl(api, h.get(), 1, 1, d1.data(), d1.data()),
                       "NE_INT_2:\n  On entry, idf = 1.\n  Constraint: -1 <= idf <= 0.");
        expect_failure(rl(api, h.get(), 0, 1, d1.data(), d1.data()),
                       "NE_PHASE:\n  Neither nonlinear objective nor nonlinear constraints are present.\n  The "
                       "structure of the Hessian cannot be defined.",
                       2);
        const R lo = {0}, hi = {1};
        expect_success(rk(api, h.get(), 1, lo.data(), hi.data(), 1, d1.data(), d1.data()));
        expect_failure(rl(api, h.get(), 0, 1, d1.data(), d1.data()),
                       "NE_PHASE:\n  No nonlinear objective has been defined, its Hessian cannot be set.", 2);
        expect_failure(rl(api, h.get(), -2, 1, d1.data(), d1.data()),
                       "NE_INT_2:\n  On entry, idf = -2.\n  Constraint: -1 <= idf <= 1.");
        expect_failure(rl(api, h.get(), 1, 1, out.data(), out.data()),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 1, irowh[i-1] = 4 and n = 3.\n  Constraint: 1 <= "
                       "irowh[i-1] <= n.");
        expect_failure(rl(api, h.get(), 1, 1, d1.data(), out.data()),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 1, icolh[i-1] = 4 and n = 3.\n  Constraint: 1 <= "
                       "icolh[i-1] <= n.");
        expect_failure(rl(api, h.get(), 1, 1, low_r.data(), low_c.data()),
                       "NE_INVALID_INT_RANGE_2:\n  On entry, i = 1, irowh[i-1] = 2 and icolh[i-1] = 1.\n  "
                       "Constraint: irowh[i-1] <= icolh[i-1] (elements within the upper triangle).");
        const I dr = {2, 2}, dc = {3, 3};
        expect_failure(rl(api, h.get(), 1, 2, dr.data(), dc.data()),
                       "NE_NON_ZERO_DUP:\n  On entry, more than one element of the Hessian has row index 2 and "
                       "column index 3.\n  Constraint: each element of the Hessian must have a unique row and "
                       "column index.");
        expect_success(rl(api, h.get(), 1, 2, up_r.data(), up_c.data()));
        EXPECT_EQ(data(h).hessians.count(1), 1u);
    }
}

TEST(E04rl, LagrangianAndPartStructuresReplaceEachOther) {
    Handle h(2);
    const I one = {1}, two = {2};
    const R lo = {0}, hi = {1};
    expect_success(rg(Api::c, h.get(), 1, one.data()));
    expect_success(rk(Api::c, h.get(), 1, lo.data(), hi.data(), 1, one.data(), two.data()));
    expect_success(rl(Api::c, h.get(), 0, 1, one.data(), one.data()));
    expect_success(rl(Api::c, h.get(), 1, 1, two.data(), two.data()));
    EXPECT_EQ(data(h).hessians.size(), 2u);
    expect_success(rl(Api::c, h.get(), -1, 1, one.data(), two.data()));
    ASSERT_EQ(data(h).hessians.size(), 1u);
    EXPECT_EQ(data(h).hessians.begin()->first, -1);
    expect_success(rl(Api::c, h.get(), 0, 1, two.data(), two.data()));
    ASSERT_EQ(data(h).hessians.size(), 1u);
    EXPECT_EQ(data(h).hessians.begin()->first, 0);
    // The same part again: the later structure replaces the earlier.
    expect_success(rl(Api::c, h.get(), 0, 1, one.data(), one.data()));
    EXPECT_EQ(data(h).hessians.at(0).row, one);
}

// ---------------------------------------------------------------------------
TEST(ObjectiveReplacement, EachObjectiveDiscardsTheOldOneAndEveryHessian) {
    const I one = {1}, two = {2}, both_idx = {1, 2};
    const R lo = {0}, hi = {1}, c2 = {3, 4}, v = {1.5};
    int64_t minus_one = -1;
    using Define = std::function<Report(void *)>;
    const std::vector<std::pair<std::string, Define>> objectives = {
        {"e04re", [&](void *h) { return re(Api::c, h, 2, c2.data()); }},
        {"e04rf", [&](void *h) { return rf(Api::c, h, 1, one.data(), v.data(), 1, one.data(), two.data(), v.data()); }},
        {"e04rg", [&](void *h) { return rg(Api::c, h, 2, both_idx.data()); }},
        {"e04rm", [&](void *h) { return rm(Api::c, h, 3, 0, 1, one.data(), one.data()); }},
        {"e04rs -1", [&](void *h) {
             minus_one = -1;
             return rs(Api::c, h, 2.0, 1, two.data(), v.data(), 0, one.data(), one.data(), v.data(), 0, 0, &minus_one);
         }},
        {"e04rt -1", [&](void *h) {
             minus_one = -1;
             return rt(Api::c, h, 0.0, 1, 1, one.data(), two.data(), v.data(), 0, one.data(), v.data(), 0, 0, &minus_one);
         }},
    };
    for (const auto &[name, define] : objectives) {
        SCOPED_TRACE(name);
        Handle h(2);
        // A nonlinear objective and constraint with Hessian structures.
        expect_success(rg(Api::c, h.get(), 1, one.data()));
        expect_success(rk(Api::c, h.get(), 1, lo.data(), hi.data(), 1, one.data(), two.data()));
        expect_success(rl(Api::c, h.get(), 0, 1, one.data(), one.data()));
        expect_success(rl(Api::c, h.get(), 1, 1, two.data(), two.data()));
        ASSERT_EQ(data(h).hessians.size(), 2u);
        expect_success(define(h.get()));
        EXPECT_TRUE(data(h).hessians.empty());
        EXPECT_EQ(minus_one, -1);
        // Nothing of the old objective's gradient structure remains.
        if (name != "e04rg") {
            EXPECT_TRUE(data(h).objective.idxfd.empty());
        }
        // The constraints are not the objective's: they stay.
        EXPECT_EQ(data(h).nonlinear.count(), 1);
    }
    // e04rk discards the Hessian structure as well.
    Handle h(2);
    expect_success(rg(Api::c, h.get(), 1, one.data()));
    expect_success(rl(Api::c, h.get(), 0, 1, one.data(), one.data()));
    expect_success(rk(Api::c, h.get(), 1, lo.data(), hi.data(), 1, one.data(), two.data()));
    EXPECT_TRUE(data(h).hessians.empty());
    EXPECT_EQ(data(h).objective.kind, kor::opt::ObjectiveKind::nonlinear);
}

TEST(ObjectiveReplacement, FailedDefinitionKeepsTheOldObjective) {
    Handle h(2);
    const R c = {1, 2};
    expect_success(re(Api::c, h.get(), 2, c.data()));
    const I bad = {3};
    expect_failure(rg(Api::c, h.get(), 1, bad.data()),
                   "NE_INVALID_INT_RANGE_1:\n  On entry, i = 1, idxfd[i-1] = 3 and n = 2.\n  Constraint: 1 <= idxfd[i-1] <= n.");
    EXPECT_EQ(data(h).objective.kind, kor::opt::ObjectiveKind::linear);
    EXPECT_EQ(data(h).objective.cvec, c);
}

// ---------------------------------------------------------------------------
TEST(E04rm, EveryCheck) {
    const I r = {1, 2}, c = {1, 1}, bad_r = {1, 4}, bad_c = {3, 1}, dr = {2, 2}, dc = {1, 1};
    for (Api api : both) {
        Handle h(3);
        expect_failure(rm(api, h.get(), -1, 0, 2, r.data(), c.data()), "NE_INT:\n  On entry, nres = -1.\n  Constraint: nres >= 0.");
        expect_failure(rm(api, h.get(), 2, 2, 2, r.data(), c.data()),
                       "NE_INT:\n  On entry, isparse = 2.\n  Constraint: isparse = 0 or 1.");
        expect_failure(rm(api, h.get(), 2, 1, 0, r.data(), c.data()), "NE_INT:\n  On entry, nnzrd = 0.\n  Constraint: nnzrd > 0.");
        expect_failure(rm(api, h.get(), 2, 1, 2, bad_r.data(), c.data()),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, irowrd[i-1] = 4 and n = 3.\n  Constraint: 1 <= "
                       "irowrd[i-1] <= n.");
        expect_failure(rm(api, h.get(), 2, 1, 2, r.data(), bad_c.data()),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 1, icolrd[i-1] = 3 and nres = 2.\n  Constraint: 1 <= "
                       "icolrd[i-1] <= nres.");
        expect_failure(rm(api, h.get(), 2, 1, 2, dr.data(), dc.data()),
                       "NE_NON_ZERO_DUP:\n  On entry, more than one element of the first derivative matrix has row "
                       "index 2 and column index 1.\n  Constraint: each element of the first derivative matrix must "
                       "have a unique row and column index.");
        // Dense: the structure arguments are not looked at.
        expect_success(rm(api, h.get(), 2, 0, -7, bad_r.data(), bad_c.data()));
        EXPECT_FALSE(data(h).objective.sparse_residuals);
        expect_success(rm(api, h.get(), 2, 1, 2, r.data(), c.data()));
        EXPECT_TRUE(data(h).objective.sparse_residuals);
        EXPECT_EQ(data(h).objective.kind, kor::opt::ObjectiveKind::least_squares);
    }
}

// ---------------------------------------------------------------------------
TEST(E04rb, EveryCheck) {
    const I g2 = {1, 2}, g3 = {1, 2, 3}, out = {1, 5}, rep = {2, 1, 3, 2};
    for (Api api : both) {
        Handle h(4);
        int64_t id = 0;
        expect_failure(rb(api, h.get(), "QUAD", -1, g2.data(), &id), "NE_INT:\n  On entry, lgroup = -1.\n  Constraint: lgroup >= 0.");
        id = -2;
        expect_failure(rb(api, h.get(), "QUAD", 2, g2.data(), &id), "NE_INT:\n  On entry, idgroup = -2.\n  Constraint: idgroup >= 0.");
        id = 0;
        expect_failure(rb(api, h.get(), "CONE", 2, g2.data(), &id),
                       "NE_STR_UNKNOWN:\n  On entry, gtype = CONE.\n  Constraint: gtype = \"QUAD\" or \"RQUAD\".");
        expect_failure(rb(api, h.get(), "QUAD", 1, g2.data(), &id),
                       "NE_INT:\n  On entry, lgroup = 1.\n  Constraint: lgroup = 0 or lgroup >= 2 for a quadratic cone.");
        expect_failure(rb(api, h.get(), "rquad", 2, g2.data(), &id),
                       "NE_INT:\n  On entry, lgroup = 2.\n  Constraint: lgroup = 0 or lgroup >= 3 for a rotated "
                       "quadratic cone.");
        id = 1;
        expect_failure(rb(api, h.get(), "QUAD", 2, g2.data(), &id),
                       "NE_REF_MATCH:\n  On entry, idgroup = 1.\n  The given idgroup does not match with any existing "
                       "cone constraint.\n  The maximum idgroup is 0.",
                       3);
        id = 0;
        expect_failure(rb(api, h.get(), "Q", 2, out.data(), &id),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, group[i-1] = 5 and n = 4.\n  Constraint: 1 <= "
                       "group[i-1] <= n.");
        expect_failure(rb(api, h.get(), "R", 4, rep.data(), &id),
                       "NE_REPEAT_CONEVAR_SM:\n  On entry, i = 4, group[i-1] = 2 is repeated.\n  Constraint: elements "
                       "in group cannot repeat.");
        EXPECT_TRUE(data(h).cones.empty());
        // Created with identifiers 1, 2; types by word or letter, any case.
        expect_success(rb(api, h.get(), " quad ", 2, g2.data(), &id));
        EXPECT_EQ(id, 1);
        id = 0;
        expect_success(rb(api, h.get(), "r", 3, g3.data(), &id));
        EXPECT_EQ(id, 2);
        // Cone 1 replaced by identifier; an empty cone is allowed.
        id = 1;
        expect_success(rb(api, h.get(), "RQUAD", 3, g3.data(), &id));
        EXPECT_EQ(id, 1);
        EXPECT_EQ(data(h).cones[0].type, kor::opt::ConeType::rotated_quadratic);
        EXPECT_EQ(data(h).cones[0].members, g3);
        id = 2;
        expect_success(rb(api, h.get(), "QUAD", 0, g2.data(), &id));
        EXPECT_TRUE(data(h).cones[1].members.empty());
        EXPECT_EQ(data(h).cones.size(), 2u);
    }
}

// ---------------------------------------------------------------------------
TEST(E04rc, EveryCheckAndTheProperties) {
    const I some = {1, 3}, out = {2, 0};
    for (Api api : both) {
        Handle h(3);
        expect_failure(rc(api, h.get(), "INT", 0, some.data()), "NE_INT:\n  On entry, lidx = 0.\n  Constraint: lidx >= 1.");
        expect_failure(rc(api, h.get(), "INTEGER", 2, some.data()),
                       "NE_STR_UNKNOWN:\n  On entry, ptype = INTEGER.\n  Constraint: ptype = \"BIN\", \"CONT\", \"GEN\", "
                       "\"INT\" or \"LIN\".");
        expect_failure(rc(api, h.get(), "BIN", 2, out.data()),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, idx[i-1] = 0 and n = 3.\n  Constraint: 1 <= idx[i-1] <= n.");
        expect_success(rc(api, h.get(), "bin", 2, some.data()));
        expect_success(rc(api, h.get(), "LIN", 1, some.data()));
        int64_t props[3];
        double none[1];
        expect_success(rw(api, h.get(), "XPROP", 0, 3, props, 0, none));
        EXPECT_EQ(I(props, props + 3), (I{11, 0, 1}));
        expect_success(rc(api, h.get(), "Cont", 1, some.data()));
        expect_success(rc(api, h.get(), "GEN", 1, some.data()));
        expect_success(rw(api, h.get(), "XPROP", 0, 3, props, 0, none));
        EXPECT_EQ(I(props, props + 3), (I{0, 0, 1}));
    }
}

// ---------------------------------------------------------------------------
// A 2-variable matrix inequality of dimension 3 in blocks 2 and 1.
struct Lmi {
    int64_t nvar = 2, dima = 3;
    I nnza = {1, 2, 1};
    I irow = {1, 1, 2, 3}, icol = {1, 2, 2, 3};
    R a = {1, 2, 3, 4};
    I blk = {2, 1};
};

Report add_lmi(Api api, Handle &h, const Lmi &m, int64_t *id, int64_t nnzasum = -1) {
    return rn(api, h.get(), m.nvar, m.dima, m.nnza.data(), nnzasum < 0 ? int64_t(m.irow.size()) : nnzasum,
              m.irow.data(), m.icol.data(), m.a.data(), int64_t(m.blk.size()), m.blk.data(), id);
}

TEST(E04rn, EveryCheck) {
    struct Case {
        std::function<void(Lmi &)> change;
        int64_t idblk;
        int64_t nnzasum;
        std::string message;
    };
    const std::vector<Case> cases = {
        {[](Lmi &m) { m.nvar = 3; }, 0, -1,
         "NE_REF_MATCH:\n  On entry, nvar = 3, expected value = 2.\n  Constraint: nvar must match the current number of "
         "variables of the model in the handle."},
        {[](Lmi &) {}, 1, -1, "NE_INT:\n  On entry, idblk = 1.\n  Constraint: idblk = 0."},
        {[](Lmi &m) { m.dima = 0; }, 0, -1, "NE_INT:\n  On entry, dima = 0.\n  Constraint: dima > 0."},
        {[](Lmi &m) { m.blk.clear(); }, 0, -1, "NE_INT:\n  On entry, nblk = 0.\n  Constraint: nblk > 0."},
        {[](Lmi &m) { m.nnza = {1, -1, 4}; }, 0, -1,
         "NE_INT:\n  On entry, i = 2, nnza[i-1] = -1.\n  Constraint: nnza[i-1] >= 0."},
        {[](Lmi &m) { m.nnza = {0, 0, 0}; }, 0, -1,
         "NE_INT:\n  On entry, sum(nnza) = 0.\n  Constraint: sum(nnza) >= 1."},
        {[](Lmi &) {}, 0, 3,
         "NE_INT_2:\n  On entry, nnzasum = 3 and sum(nnza) = 4.\n  Constraint: nnzasum >= sum(nnza)."},
        {[](Lmi &m) { m.blk = {3, 0}; }, 0, -1,
         "NE_INT:\n  On entry, i = 2, blksizea[i-1] = 0.\n  Constraint: blksizea[i-1] >= 1."},
        {[](Lmi &m) { m.blk = {1, 1}; }, 0, -1,
         "NE_INT_2:\n  On entry, sum(blksizea) = 2, dima = 3.\n  Constraint: sum(blksizea) = dima."},
        {[](Lmi &m) { m.irow[2] = 4; }, 0, -1,
         "NE_INVALID_INT_RANGE_1:\n  An error occurred in matrix A_i, i = 1.\n  On entry, j = 3, irowa[j-1] = 4 and "
         "dima = 3.\n  Constraint: 1 <= irowa[j-1] <= dima."},
        {[](Lmi &m) { m.icol[0] = 0; }, 0, -1,
         "NE_INVALID_INT_RANGE_1:\n  An error occurred in matrix A_i, i = 0.\n  On entry, j = 1, icola[j-1] = 0 and "
         "dima = 3.\n  Constraint: 1 <= icola[j-1] <= dima."},
        {[](Lmi &m) { m.irow[3] = 3, m.icol[3] = 2; }, 0, -1,
         "NE_INVALID_INT_RANGE_2:\n  An error occurred in matrix A_i, i = 2.\n  On entry, j = 4, irowa[j-1] = 3 and "
         "icola[j-1] = 2.\n  Constraint: irowa[j-1] <= icola[j-1] (elements within the upper triangle)."},
        {[](Lmi &m) { m.irow[2] = 2, m.icol[2] = 3; }, 0, -1,
         "NE_INVALID_INT_RANGE_2:\n  An error occurred in matrix A_i, i = 1.\n  On entry, j = 3, irowa[j-1] = 2 and "
         "icola[j-1] = 3.\n  Maximum column index in this row given by the block structure defined by blksizea is 2."},
        {[](Lmi &m) { m.irow[2] = 1, m.icol[2] = 2; }, 0, -1,
         "NE_NON_ZERO_DUP:\n  An error occurred in matrix A_i, i = 1.\n  On entry, more than one element of the matrix "
         "has row index 1 and column index 2.\n  Constraint: each element of A_i must have a unique row and column "
         "index."},
    };
    for (Api api : both)
        for (const Case &c : cases) {
            Handle h(2);
            Lmi m;
            c.change(m);
            int64_t id = c.idblk;
            const std::string before = state(h);
            expect_failure(add_lmi(api, h, m, &id, c.nnzasum), c.message);
            EXPECT_EQ(state(h), before);
        }
}

TEST(E04rn, SameElementInTwoMatricesIsNoRepeat) {
    for (Api api : both) {
        Handle h(2);
        Lmi m;
        m.irow = {1, 1, 2, 1};
        m.icol = {1, 1, 2, 1};  // (1,1) in A_0, A_1 and A_2
        int64_t id = 0;
        expect_success(add_lmi(api, h, m, &id));
        EXPECT_EQ(id, 1);
        id = 0;
        expect_success(add_lmi(api, h, m, &id));
        EXPECT_EQ(id, 2);
        const std::string text = printed(h.get(), "matrix constraints");
        EXPECT_NE(text.find("matrix constraint 2: dimension 3, 2 diagonal blocks, polynomial of order 1"),
                  std::string::npos)
            << text;
    }
}

// ---------------------------------------------------------------------------
TEST(E04rp, EveryCheck) {
    const I qi = {1, 2}, qj = {2, 2}, nnzq = {1, 2}, row = {1, 1, 3}, col = {1, 2, 3};
    const R q = {1, 2, 3};
    for (Api api : both) {
        Handle h(2);
        Lmi m;
        int64_t id = 0;
        expect_success(add_lmi(Api::c, h, m, &id));
        auto call = [&](int64_t idblk, int64_t nq, const I &a, const I &b, int64_t dimq, const I &counts,
                        int64_t sum, const I &r, const I &c) {
            return rp(api, h.get(), idblk, nq, a.data(), b.data(), dimq, counts.data(), sum, r.data(), c.data(), q.data());
        };
        expect_failure(call(-1, 2, qi, qj, 3, nnzq, 3, row, col), "NE_INT:\n  On entry, idblk = -1.\n  Constraint: idblk >= 0.");
        expect_failure(call(1, 0, qi, qj, 3, nnzq, 3, row, col), "NE_INT:\n  On entry, nq = 0.\n  Constraint: nq > 0.");
        expect_failure(call(1, 2, qi, qj, 0, nnzq, 3, row, col), "NE_INT:\n  On entry, dimq = 0.\n  Constraint: dimq > 0.");
        expect_failure(call(2, 2, qi, qj, 3, nnzq, 3, row, col),
                       "NE_REF_MATCH:\n  On entry, idblk = 2.\n  The given idblk does not match with any existing "
                       "matrix constraint.\n  The maximum idblk is 1.");
        expect_failure(call(0, 2, qi, qj, 3, nnzq, 3, row, col),
                       "NE_REF_MATCH:\n  On entry, idblk = 0.\n  The given idblk does not match with any existing "
                       "matrix constraint.\n  The maximum idblk is 1.");
        expect_failure(call(1, 2, qi, qj, 4, nnzq, 3, row, col),
                       "NE_REF_MATCH:\n  On entry, dimq = 4, expected value = 3.\n  Constraint: dimq must match the "
                       "dimension of the matrix constraint idblk.");
        expect_failure(call(1, 2, qi, qj, 3, I{1, 0}, 3, row, col),
                       "NE_INT:\n  On entry, i = 2, nnzq[i-1] = 0.\n  Constraint: nnzq[i-1] > 0.");
        expect_failure(call(1, 2, qi, qj, 3, nnzq, 2, row, col),
                       "NE_INT_2:\n  On entry, nnzqsum = 2 and sum(nnzq) = 3.\n  Constraint: nnzqsum >= sum(nnzq).");
        expect_failure(call(1, 2, I{1, 3}, qj, 3, nnzq, 3, row, col),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, qi[i-1] = 3 and n = 2.\n  Constraint: 1 <= qi[i-1] <= n.");
        expect_failure(call(1, 2, qi, I{0, 1}, 3, nnzq, 3, row, col),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 1, qj[i-1] = 0 and n = 2.\n  Constraint: 1 <= qj[i-1] <= n.");
        expect_failure(call(1, 2, I{1, 1}, I{2, 2}, 3, nnzq, 3, row, col),
                       "NE_NON_ZERO_DUP:\n  On entry, more than one bilinear term has qi[i-1] = 1 and qj[i-1] = 2.\n  "
                       "Constraint: each pair qi[i-1], qj[i-1] must be unique.");
        expect_failure(call(1, 2, qi, qj, 3, nnzq, 3, I{1, 1, 4}, col),
                       "NE_INVALID_INT_RANGE_1:\n  An error occurred in matrix Q_k, k = 2.\n  On entry, j = 3, irowq[j-1] "
                       "= 4 and dimq = 3.\n  Constraint: 1 <= irowq[j-1] <= dimq.");
        expect_failure(call(1, 2, qi, qj, 3, nnzq, 3, row, I{0, 2, 3}),
                       "NE_INVALID_INT_RANGE_1:\n  An error occurred in matrix Q_k, k = 1.\n  On entry, j = 1, icolq[j-1] "
                       "= 0 and dimq = 3.\n  Constraint: 1 <= icolq[j-1] <= dimq.");
        expect_failure(call(1, 2, qi, qj, 3, nnzq, 3, I{1, 2, 2}, I{1, 3, 3}),
                       "NE_NON_ZERO_DUP:\n  An error occurred in matrix Q_k, k = 2.\n  On entry, more than one element of "
                       "the matrix has row index 2 and column index 3.\n  Constraint: each element of Q_k must have a "
                       "unique row and column index.");
        EXPECT_FALSE(data(h).matrices[0].bilinear);
        expect_success(call(1, 2, qi, qj, 3, nnzq, 3, row, col));
        const std::string text = printed(h.get(), "matrix constraints");
        EXPECT_NE(text.find("polynomial of order 2"), std::string::npos) << text;
        expect_failure(call(1, 2, qi, qj, 3, nnzq, 3, row, col),
                       "NE_ALREADY_DEFINED:\n  On entry, idblk = 1.\n  The bilinear terms of this matrix constraint have "
                       "already been defined; they may be given only once.",
                       3);
    }
}

// ---------------------------------------------------------------------------
TEST(E04rs, EveryCheck) {
    const I r = {1, 3}, qr = {1, 2}, qc = {2, 3};
    const R v = {1, 2};
    for (Api api : both) {
        Handle h(3);
        auto call = [&](int64_t id, int64_t nnzr, const I &idx, int64_t nnzq, const I &row, const I &col, double bl,
                        double bu) {
            int64_t idqc = id;
            Report rep = rs(api, h.get(), 0.5, nnzr, idx.data(), v.data(), nnzq, row.data(), col.data(), v.data(), bl,
                            bu, &idqc);
            EXPECT_EQ(idqc, id);
            return rep;
        };
        expect_failure(call(-2, 2, r, 2, qr, qc, 0, 1), "NE_INT:\n  On entry, idqc = -2.\n  Constraint: idqc >= -1.");
        expect_failure(call(1, 2, r, 2, qr, qc, 0, 1),
                       "NE_REF_MATCH:\n  On entry, idqc = 1.\n  The given idqc does not match with any existing "
                       "quadratic constraint.\n  The maximum idqc is 0.");
        expect_failure(call(0, 2, r, -1, qr, qc, 0, 1), "NE_INT:\n  On entry, nnzq = -1.\n  Constraint: nnzq >= 0.");
        expect_failure(call(0, -1, r, 2, qr, qc, 0, 1), "NE_INT:\n  On entry, nnzr = -1.\n  Constraint: nnzr >= 0.");
        expect_failure(call(0, 0, r, 0, qr, qc, 0, 1),
                       "NE_INT_2:\n  On entry, nnzr = 0 and nnzq = 0.\n  Constraint: nnzr and nnzq cannot be zero at the "
                       "same time.");
        expect_failure(call(0, 2, r, 2, qr, qc, 2, 1),
                       "NE_BOUND:\n  On entry, bl = 2.0e+00 and bu = 1.0e+00.\n  Constraint: bl <= bu.");
        expect_failure(call(0, 2, r, 2, qr, qc, 1e20, 1e21),
                       "NE_BOUND:\n  On entry, bl = 1.0e+20, bigbnd = 1.0e+20.\n  Constraint: bl < bigbnd.");
        expect_failure(call(0, 2, r, 2, qr, qc, -1e22, -1e20),
                       "NE_BOUND:\n  On entry, bu = -1.0e+20, bigbnd = 1.0e+20.\n  Constraint: bu > -bigbnd.");
        expect_failure(call(0, 2, I{1, 4}, 2, qr, qc, 0, 1),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, idxr[i-1] = 4 and n = 3.\n  Constraint: 1 <= "
                       "idxr[i-1] <= n.");
        expect_failure(call(0, 2, I{2, 2}, 2, qr, qc, 0, 1),
                       "NE_NON_ZERO_DUP:\n  On entry, more than one element of r has index 2.\n  Constraint: each "
                       "element of idxr must be unique.");
        expect_failure(call(0, 2, r, 2, I{1, 5}, qc, 0, 1),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, irowq[i-1] = 5 and n = 3.\n  Constraint: 1 <= "
                       "irowq[i-1] <= n.");
        expect_failure(call(0, 2, r, 2, qr, I{2, 0}, 0, 1),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, icolq[i-1] = 0 and n = 3.\n  Constraint: 1 <= "
                       "icolq[i-1] <= n.");
        expect_failure(call(0, 2, r, 2, I{1, 3}, I{2, 2}, 0, 1),
                       "NE_INVALID_INT_RANGE_2:\n  On entry, i = 2, irowq[i-1] = 3 and icolq[i-1] = 2.\n  Constraint: "
                       "irowq[i-1] <= icolq[i-1] (elements within the upper triangle).");
        expect_failure(call(0, 2, r, 2, I{2, 2}, I{3, 3}, 0, 1),
                       "NE_NON_ZERO_DUP:\n  On entry, more than one element of q has row index 2 and column index 3.\n  "
                       "Constraint: each element of q must have a unique row and column index.");
        // For the objective the bounds are not looked at.
        int64_t id = -1;
        expect_success(rs(api, h.get(), 0.5, 2, r.data(), v.data(), 0, qr.data(), qc.data(), v.data(), 5, 1, &id));
        EXPECT_EQ(id, -1);
        EXPECT_EQ(data(h).objective.kind, kor::opt::ObjectiveKind::quadratic);
        EXPECT_EQ(data(h).objective.constant, 0.5);
        EXPECT_TRUE(data(h).quadratic.empty());
        id = 0;
        expect_success(rs(api, h.get(), 0, 2, r.data(), v.data(), 2, qr.data(), qc.data(), v.data(), -1, 1, &id));
        EXPECT_EQ(id, 1);
        id = 0;
        expect_success(rs(api, h.get(), 0, 1, r.data(), v.data(), 0, qr.data(), qc.data(), v.data(), -2, 2, &id));
        EXPECT_EQ(id, 2);
        id = 1;
        expect_success(rs(api, h.get(), 7, 1, r.data(), v.data(), 0, qr.data(), qc.data(), v.data(), -3, 3, &id));
        EXPECT_EQ(id, 1);
        EXPECT_EQ(data(h).quadratic[0].constant, 7.0);
        EXPECT_EQ(data(h).quadratic[0].bl, -3.0);
        EXPECT_EQ(data(h).quadratic.size(), 2u);
    }
}

TEST(E04rt, EveryCheckAndReplacingAcrossForms) {
    const I fr = {1, 2}, fc = {1, 3}, r = {2};
    const R v = {1, 2};
    for (Api api : both) {
        Handle h(3);
        auto call = [&](int64_t id, int64_t mf, int64_t nnzf, const I &row, const I &col, int64_t nnzr, const I &idx,
                        double bl = 0, double bu = 1) {
            int64_t idqc = id;
            return rt(api, h.get(), 0, mf, nnzf, row.data(), col.data(), v.data(), nnzr, idx.data(), v.data(), bl, bu, &idqc);
        };
        expect_failure(call(-3, 2, 2, fr, fc, 1, r), "NE_INT:\n  On entry, idqc = -3.\n  Constraint: idqc >= -1.");
        expect_failure(call(2, 2, 2, fr, fc, 1, r),
                       "NE_REF_MATCH:\n  On entry, idqc = 2.\n  The given idqc does not match with any existing "
                       "quadratic constraint.\n  The maximum idqc is 0.");
        expect_failure(call(0, 2, -1, fr, fc, 1, r), "NE_INT:\n  On entry, nnzf = -1.\n  Constraint: nnzf >= 0.");
        expect_failure(call(0, 0, 2, fr, fc, 1, r), "NE_INT:\n  On entry, mf = 0.\n  Constraint: mf > 0.");
        expect_failure(call(0, 2, 2, fr, fc, -1, r), "NE_INT:\n  On entry, nnzr = -1.\n  Constraint: nnzr >= 0.");
        expect_failure(call(0, 2, 0, fr, fc, 0, r),
                       "NE_INT_2:\n  On entry, nnzr = 0 and nnzf = 0.\n  Constraint: nnzr and nnzf cannot be zero at the "
                       "same time.");
        expect_failure(call(0, 2, 2, fr, fc, 1, r, 1, 0),
                       "NE_BOUND:\n  On entry, bl = 1.0e+00 and bu = 0.0e+00.\n  Constraint: bl <= bu.");
        expect_failure(call(0, 2, 2, fr, fc, 1, I{9}),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 1, idxr[i-1] = 9 and n = 3.\n  Constraint: 1 <= "
                       "idxr[i-1] <= n.");
        expect_failure(call(0, 2, 2, I{1, 3}, fc, 1, r),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, irowf[i-1] = 3 and mf = 2.\n  Constraint: 1 <= "
                       "irowf[i-1] <= mf.");
        expect_failure(call(0, 2, 2, fr, I{1, 4}, 1, r),
                       "NE_INVALID_INT_RANGE_1:\n  On entry, i = 2, icolf[i-1] = 4 and n = 3.\n  Constraint: 1 <= "
                       "icolf[i-1] <= n.");
        expect_failure(call(0, 2, 2, I{2, 2}, I{3, 3}, 1, r),
                       "NE_NON_ZERO_DUP:\n  On entry, more than one element of F has row index 2 and column index 3.\n  "
                       "Constraint: each element of F must have a unique row and column index.");
        // A factorized constraint, then replaced by a plain one with e04rs.
        int64_t id = 0;
        expect_success(rt(api, h.get(), 0, 2, 2, fr.data(), fc.data(), v.data(), 1, r.data(), v.data(), 0, 1, &id));
        EXPECT_EQ(id, 1);
        EXPECT_TRUE(data(h).quadratic[0].factorized);
        const std::string text = printed(h.get(), "quadratic constraints detailed");
        EXPECT_NE(text.find("quadratic part (factorized quadratic term)"), std::string::npos) << text;
        expect_success(rs(api, h.get(), 0, 1, r.data(), v.data(), 0, fr.data(), fc.data(), v.data(), 0, 1, &id));
        EXPECT_FALSE(data(h).quadratic[0].factorized);
    }
}

}  // namespace

namespace {

// Counts no memory can hold fail with the allocation error before the
// caller's arrays (of one element here) are read.
TEST(HugeCounts, EveryDefinitionRoutineFailsWithTheAllocationError) {
    const int64_t huge = int64_t(1) << 60;
    const I one = {1};
    const R zero = {0};
    Handle h(2);
    const I g = {1, 2};
    const I nnza_huge = {huge, 0, 0};
    using Call = std::function<Report(Api)>;
    const std::vector<std::pair<std::string, Call>> calls = {
        {"e04rf nnzc", [&](Api a) { return rf(a, h.get(), huge, one.data(), zero.data(), 0, one.data(), one.data(), zero.data()); }},
        {"e04rf nnzh", [&](Api a) { return rf(a, h.get(), 0, one.data(), zero.data(), huge, one.data(), one.data(), zero.data()); }},
        {"e04rg", [&](Api a) { return rg(a, h.get(), huge, one.data()); }},
        {"e04rk ncnln", [&](Api a) { return rk(a, h.get(), huge, zero.data(), zero.data(), 1, one.data(), one.data()); }},
        {"e04rk nnzgd", [&](Api a) { return rk(a, h.get(), 1, zero.data(), zero.data(), huge, one.data(), one.data()); }},
        {"e04rm", [&](Api a) { return rm(a, h.get(), 1, 1, huge, one.data(), one.data()); }},
        {"e04rb", [&](Api a) {
             int64_t id = 0;
             return rb(a, h.get(), "QUAD", huge, g.data(), &id);
         }},
        {"e04rc", [&](Api a) { return rc(a, h.get(), "INT", huge, one.data()); }},
        {"e04rn", [&](Api a) {
             int64_t id = 0;
             return rn(a, h.get(), 2, 1, nnza_huge.data(), huge, one.data(), one.data(), zero.data(), 1, one.data(), &id);
         }},
        {"e04rs", [&](Api a) {
             int64_t id = 0;
             return rs(a, h.get(), 0, huge, one.data(), zero.data(), 0, one.data(), one.data(), zero.data(), 0, 1, &id);
         }},
        {"e04rt", [&](Api a) {
             int64_t id = 0;
             return rt(a, h.get(), 0, 1, huge, one.data(), one.data(), zero.data(), 0, one.data(), zero.data(), 0, 1, &id);
         }},
    };
    const std::string before = state(h);
    for (const auto &[what, call] : calls) {
        SCOPED_TRACE(what);
        const Report c = call(Api::c);
        EXPECT_EQ(c.code, NE_ALLOC_FAIL) << c.message;
        EXPECT_EQ(c.message, "NE_ALLOC_FAIL:\n  Dynamic memory allocation failed.");
        const Report f = call(Api::fortran);
        EXPECT_EQ(f.outcome, -999);
    }
    EXPECT_EQ(state(h), before);
    // e04rp, on a matrix inequality to extend.
    Lmi m;
    Handle k(2);
    int64_t id = 0;
    expect_success(add_lmi(Api::c, k, m, &id));
    const Report p = rp(Api::c, k.get(), 1, huge, one.data(), one.data(), 3, one.data(), 1, one.data(), one.data(), zero.data());
    EXPECT_EQ(p.code, NE_ALLOC_FAIL) << p.message;
}

}  // namespace
