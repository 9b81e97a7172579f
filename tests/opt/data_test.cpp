// e04rw and e04rx: the items by keyword, read and written, their length,
// mode and availability checks, and results not yet written.
#include "opt_support.hpp"

using namespace opt_test;

namespace {

struct Data {
    std::string cmd = "XPROP";
    int64_t ioflag = 0, liarr = 3, lrarr = 0;
    I iarr = {0, 0, 0};
    R rarr = {0, 0, 0};
};

void data_call(void *h, Data &a, KorError *f) {
    e04rwc(h, a.cmd.c_str(), a.ioflag, a.liarr, a.iarr.data(), a.lrarr, a.rarr.data(), f);
}

TEST(E04rw, EveryExit) {
    using E = kor::e04rw::Exit;
    expect_cases<Data>(kor::e04rw::info, 3, {
        {[](Data &a) { a.ioflag = 2, a.cmd = "XPROPS"; }, want<E::ioflag_invalid>({2})},
        {[](Data &a) { a.cmd = "XPROPS", a.ioflag = 1; }, want<E::cmdstr_unknown>()},
        {[](Data &a) { a.cmd = "IROWB", a.ioflag = 1, a.liarr = 0; }, want<E::write_not_supported>()},
        {[](Data &a) { a.cmd = "BLX", a.lrarr = 3; }, want<E::not_available>()},
        {[](Data &a) { a.cmd = "BUC"; }, want<E::not_available>()},
        {[](Data &a) { a.cmd = "CVEC", a.lrarr = 3; }, want<E::not_available>()},
        {[](Data &a) { a.cmd = "IDXCC", a.liarr = 0; }, want<E::not_available>()},
        {[](Data &a) { a.cmd = "CCTYPE", a.liarr = 0; }, want<E::not_available>()},
        {[](Data &a) { a.cmd = "IDXC", a.liarr = 0; }, want<E::not_available>()},
        {[](Data &a) { a.liarr = 4, a.iarr.resize(4); }, want<E::liarr_mismatch>({4, 3})},
        {[](Data &a) { a.cmd = "ICCOLB", a.liarr = 3; }, want<E::liarr_mismatch>({3, 4})},
        {[](Data &a) { a.cmd = "BLB", a.lrarr = 1; }, want<E::lrarr_mismatch>({1, 0})},
        {[](Data &a) { a.ioflag = 1, a.iarr = {0, 3, 1}; }, want<E::xprop_invalid>({2, 3})},
        {[](Data &a) { a.ioflag = 1, a.iarr = {12, 13, -1}; }, want<E::xprop_invalid>({2, 13})},
        {[](Data &a) { a.cmd = " xprop ", a.ioflag = 1, a.iarr = {0, 11, 10}; }, {}},
    }, [](void *h, Data a, KorError *f) { data_call(h, a, f); });
}

TEST(E04rw, ItemsReadAndWritten) {
    Handle h(3);
    KorError f = fresh_error();
    // An item of n values read (both arrays of that length: the item's type picks one).
    auto read = [&](const char *cmd, int64_t n) {
        Data a{cmd, 0, n, n, I(size_t(n)), R(size_t(n))};
        data_call(h.get(), a, &f);
        expect_success(f);
        return a;
    };
    auto write = [&](const char *cmd, R v) {
        Data a{cmd, 1, 0, int64_t(v.size()), {}, v};
        data_call(h.get(), a, &f);
    };
    using E = kor::e04rw::Exit;
    EXPECT_EQ(read("XPROP", 3).iarr, (I{0, 0, 0}));  // every variable continuous, general
    EXPECT_EQ(read("ICCOLB", 4).iarr, (I{1, 1, 1, 1}));
    // Bounds written and read back; a crossing write changes nothing.
    const R bl = {0, 0, 0}, bu = {5, 5, 5}, lbl = {0, 1}, lbu = {2, 3}, b = {1, 2, 3, 4};
    e04rhc(h.get(), 3, bl.data(), bu.data(), &f);
    write("blx", {1, 2, 3});
    EXPECT_EQ(read(" BLX ", 3).rarr, (R{1, 2, 3}));
    write("BLX", {1, 6, 3});
    EXPECT_EQ(exit_reals<E::bounds_crossed>(kor::e04rw::info, f), (R{2, 6, 5}));
    write("BUX", {4, 1, 4});
    EXPECT_EQ(exit_reals<E::bounds_crossed>(kor::e04rw::info, f), (R{2, 2, 1}));
    EXPECT_EQ(read("bux", 3).rarr, bu);
    // Linear constraints: the matrix by columns (column 1: rows 1, 2; column 3: rows 1, 2).
    const I row = {2, 1, 2, 1}, col = {3, 1, 1, 3}, g = {3, 1}, g3 = {1, 2, 3}, idx = {1, 3};
    int64_t id = 0;
    e04rjc(h.get(), 2, lbl.data(), lbu.data(), 4, row.data(), col.data(), b.data(), &id, &f);
    EXPECT_EQ(read("IROWB", 4).iarr, (I{1, 2, 1, 2}));
    EXPECT_EQ(read("ICCOLB", 4).iarr, (I{1, 3, 3, 5}));
    EXPECT_EQ(read("BLB", 2).rarr, lbl);
    write("BUB", {2, 0.5});
    EXPECT_EQ(exit_reals<E::bounds_crossed>(kor::e04rw::info, f), (R{2, 1, 0.5}));
    write("BUB", {7, 8});
    EXPECT_EQ(read("BUB", 2).rarr, (R{7, 8}));
    // Cones: their members in turn, and their types.
    e04rbc(h.get(), "QUAD", 2, g.data(), &(id = 0), &f);
    e04rbc(h.get(), "RQUAD", 3, g3.data(), &(id = 0), &f);
    EXPECT_EQ(read("IDXCC", 5).iarr, (I{3, 1, 1, 2, 3}));
    EXPECT_EQ(read("CCTYPE", 2).iarr, (I{1, 2}));
    // A dense objective, then a sparse linear part: IDXC and CVEC in the same order.
    e04rec(h.get(), 3, bu.data(), &f);
    write("CVEC", {1, 2, 3});
    EXPECT_EQ(h.problem().objective.cvec, (R{1, 2, 3}));
    e04rfc(h.get(), 2, idx.data(), lbu.data(), 0, nullptr, nullptr, nullptr, &f);
    EXPECT_EQ(read("IDXC", 2).iarr, idx);
    EXPECT_EQ(read("CVEC", 2).rarr, lbu);
    // Nonlinear constraint bounds.
    e04rkc(h.get(), 1, b.data(), b.data() + 1, 1, idx.data(), idx.data(), &f);
    EXPECT_EQ(read("BUC", 1).rarr, (R{2}));
    write("BLC", {0.5});
    EXPECT_EQ(read("blc", 1).rarr, (R{0.5}));
    // Properties written: integrality and linearity.
    Data p{"XPROP", 1, 3, 0, {12, 1, 10}};
    data_call(h.get(), p, &f);
    EXPECT_EQ(h.problem().properties[0].integrality, kor::opt::Integrality::integer);
    EXPECT_EQ(read("XPROP", 3).iarr, (I{12, 1, 10}));
}

TEST(E04rx, ResultsOnlyAfterASolverLeftThem) {
    using E = kor::e04rx::Exit;
    using kor::opt::ResultItem;
    Handle h(2);
    R x(8);
    KorError f = fresh_error();
    auto call = [&](const char *cmd, int64_t ioflag, int64_t n, const Want &w) {
        SCOPED_TRACE(cmd);
        e04rxc(h.get(), cmd, ioflag, n, x.data(), &f);
        expect_exit(kor::e04rx::info, w, f);
    };
    // Each keyword names its item, which a solver leaves: item k here has k + 1 values, each k.
    for (const auto &[k, keywords] : std::vector<std::pair<int, std::vector<const char *>>>{
             {0, {"PRIMAL VARIABLES", "primal  variables"}}, {1, {"DUAL VARIABLES"}}, {2, {"DUAL CONE VARIABLES", "Dual Cone"}},
             {3, {"DUAL MATRIX VARIABLES", "DUAL MATRIX"}}, {4, {"RESIDUAL WEIGHTS"}}, {5, {"COVARIANCE MATRIX"}},
             {6, {"HESSIAN MATRIX"}}, {7, {"SLACK VARIABLES", "Slack", "slk"}}}) {
        call(keywords[0], 0, k + 1, want<E::not_available>());
        kor::opt::store_result(h.problem(), ResultItem(k), R(size_t(k + 1), k));
        for (const char *keyword : keywords) {
            x.assign(8, -1);
            call(keyword, 0, k + 1, {});
            EXPECT_EQ(R(x.begin(), x.begin() + k + 1), R(size_t(k + 1), k));
        }
    }
    call("SLK", -1, 1, want<E::ioflag_invalid>({-1}));
    call("PRIMAL", 0, 2, want<E::cmdstr_unknown>());
    call("PRIMAL VARIABLES", 1, 2, want<E::write_not_supported>());
    call("MCS LIST", 0, 6, want<E::read_not_supported>());
    call("PRIMAL VARIABLES", 0, 3, want<E::lrarr_mismatch>({3, 1}));
    call("MCSL", 1, 5, want<E::lrarr_mismatch>({5, 6}));
    x = {0, 1, 2, 3, 4, 5};
    call("mcs list", 1, 6, {});
    EXPECT_EQ(h.problem().results.at(ResultItem::mcs_list), x);
}

}  // namespace
