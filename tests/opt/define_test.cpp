// The definition routines e04rh .. e04rt: every exit with its values, what a call stores,
// identifiers that add and replace, one objective at a time, huge counts, NaN, null arrays.
#include "opt_support.hpp"

using namespace opt_test;
using kor::opt::ObjectiveKind;

namespace {

const R ones(16, 1.0);

struct Bounds {
    int64_t nvar = 3;
    R bl = {0, 0, 0}, bu = {1, 1, 1};
};

void set_bounds(void *h, const Bounds &a, KorError *f) { e04rhc(h, a.nvar, a.bl.data(), a.bu.data(), f); }

TEST(E04rh, EveryExit) {
    using E = kor::e04rh::Exit;
    expect_cases<Bounds>(kor::e04rh::info, 3, {
        {[](Bounds &a) { a.nvar = 4, a.bl.resize(4), a.bu.resize(4); }, want<E::nvar_mismatch>({4, 3})},
        {[](Bounds &a) { a.bl = {0, 2, 0}; }, want<E::crossed>({2, 2, 1})},
        {[](Bounds &a) { a.bl[2] = a.bu[2] = 1e20; }, want<E::lower_infinite>({3, 1e20, 1e20})},
        {[](Bounds &a) { a.bl[2] = a.bu[2] = inf; }, want<E::lower_infinite>({3, inf, 1e20})},
        {[](Bounds &a) { a.bl[0] = -inf, a.bu[0] = -1e20; }, want<E::upper_infinite>({1, -1e20, 1e20})},
        // The first variable with a failure is named, whatever later ones hold.
        {[](Bounds &a) { a.bl = {0, 5, 1e30}, a.bu = {1, 4, 1e30}; }, want<E::crossed>({2, 5, 4})},
        {[](Bounds &a) { a.bl = {-1e20, 2.5, -inf}, a.bu = {1e20, 2.5, 7}; }, {}},
    }, set_bounds);
}

struct Quadratic {
    int64_t nnzc = 2, nnzh = 2;
    I idxc = {1, 3}, irow = {1, 2}, icol = {2, 4};
};

TEST(E04rf, EveryExit) {
    using E = kor::e04rf::Exit;
    expect_cases<Quadratic>(kor::e04rf::info, 4, {
        {[](Quadratic &a) { a.nnzc = -1, a.nnzh = -3; }, want<E::nnzc_below>({-1})},
        {[](Quadratic &a) { a.nnzh = -3; }, want<E::nnzh_below>({-3})},
        {[](Quadratic &a) { a.idxc = {1, 5}, a.irow = {9, 9}; }, want<E::idxc_range>({2, 5, 4})},
        {[](Quadratic &a) { a.idxc = {0, 1}; }, want<E::idxc_range>({1, 0, 4})},
        {[](Quadratic &a) { a.nnzc = 3, a.idxc = {1, 3, 3}; }, want<E::idxc_not_ascending>({2, 3, 3})},
        {[](Quadratic &a) { a.idxc = {2, 1}; }, want<E::idxc_not_ascending>({1, 2, 1})},
        {[](Quadratic &a) { a.irow = {1, 9}, a.icol = {1, 9}; }, want<E::irowh_range>({2, 9, 4})},
        {[](Quadratic &a) { a.icol = {1, -2}; }, want<E::icolh_range>({2, -2, 4})},
        {[](Quadratic &a) { a.irow = {1, 3}, a.icol = {2, 2}; }, want<E::irowh_below_diagonal>({2, 3, 2})},
        // A repeat is refused even with equal values; the first in the order given is named.
        {[](Quadratic &a) { a.nnzh = 3, a.irow = {1, 2, 1}, a.icol = {4, 2, 4}; }, want<E::repeated_element>({1, 4})},
        {[](Quadratic &a) { a.nnzh = 5, a.irow = a.icol = {1, 2, 3, 2, 1}; }, want<E::repeated_element>({2, 2})},
        {[](Quadratic &) {}, {}},
    }, [](void *h, const Quadratic &a, KorError *f) {
        e04rfc(h, a.nnzc, a.idxc.data(), ones.data(), a.nnzh, a.irow.data(), a.icol.data(), ones.data(), f);
    });
}

TEST(E04rg, EveryExit) {
    using E = kor::e04rg::Exit;
    struct Args { int64_t nnzfd = 2; I idxfd = {1, 3}; };
    expect_cases<Args>(kor::e04rg::info, 3, {
        {[](Args &a) { a.nnzfd = -1; }, want<E::nnzfd_below>({-1})},
        {[](Args &a) { a.idxfd = {1, 4}; }, want<E::idxfd_range>({2, 4, 3})},
        {[](Args &a) { a.nnzfd = 3, a.idxfd = {1, 3, 3}; }, want<E::idxfd_not_ascending>({2, 3, 3})},
        {[](Args &) {}, {}},
    }, [](void *h, const Args &a, KorError *f) { e04rgc(h, a.nnzfd, a.idxfd.data(), f); });
}

const int64_t counted = INT64_MIN;  // a count that is the length of the arrays given

struct Linear {
    int64_t idlc = 0, nclin = 2, nnzb = counted;
    R bl = {0, 1}, bu = {1, 1}, b = {1, 1, 1};
    I irow = {1, 2}, icol = {1, 3};
};

// With idlc null the identifier is a.idlc; a failure leaves it alone.
void add_linear(void *h, const Linear &a, KorError *f, int64_t *idlc = nullptr) {
    int64_t own = a.idlc, &i = idlc ? *idlc : own, before = i;
    e04rjc(h, a.nclin, a.bl.data(), a.bu.data(), a.nnzb == counted ? int64_t(a.irow.size()) : a.nnzb, a.irow.data(),
           a.icol.data(), a.b.data(), &i, f);
    if (f->code) { EXPECT_EQ(i, before); }
}

TEST(E04rj, EveryExit) {
    using E = kor::e04rj::Exit;
    expect_cases<Linear>(kor::e04rj::info, 4, {
        {[](Linear &a) { a.idlc = -1, a.nnzb = -5; }, want<E::idlc_below>({-1})},
        {[](Linear &a) { a.nnzb = -5; }, want<E::nnzb_below>({-5})},
        {[](Linear &a) { a.nclin = -2; }, want<E::nclin_below>({-2})},
        {[](Linear &a) { a.idlc = 1; }, want<E::replace_not_single>({1, 2})},
        {[](Linear &a) { a.idlc = 4, a.nclin = 1, a.irow = {1}; }, want<E::idlc_unknown>({4, 3})},
        {[](Linear &a) { a.bl = {0, 3}, a.bu = {1, 2}, a.irow = {1, 9}; }, want<E::crossed>({2, 3, 2})},
        {[](Linear &a) { a.bl = {1e25, 0}, a.bu = {1e25, 0}; }, want<E::lower_infinite>({1, 1e25, 1e20})},
        {[](Linear &a) { a.bl = {-1e25, 0}, a.bu = {-1e21, 0}; }, want<E::upper_infinite>({1, -1e21, 1e20})},
        {[](Linear &a) { a.irow = {1, 3}, a.icol = {1, 9}; }, want<E::irowb_range>({2, 3, 2})},
        {[](Linear &a) { a.icol = {1, 5}; }, want<E::icolb_range>({2, 5, 4})},
        {[](Linear &a) { a.irow = {2, 1, 2}, a.icol = {3, 3, 3}; }, want<E::repeated_element>({2, 3})},
        {[](Linear &a) { a.idlc = 2, a.nclin = 1, a.irow = {1, 1}; }, {}},
    }, [](void *h, const Linear &a, KorError *f) { add_linear(h, a, f); }, [](Handle &h, const Linear &) {
        KorError f = fresh_error();
        add_linear(h.get(), {0, 3, counted, {0, 0, 0}, {1, 1, 1}, {1, 1, 1}, {1, 2, 3}, {1, 2, 3}}, &f);
    });
}

TEST(E04rj, BlocksAreNumberedOnAndRowsReplacedByIdentifier) {
    Handle h(3);
    KorError f = fresh_error();
    // Row 2 replaced at the end: its bounds and entries go, the new ones take its number.
    for (const auto &[block, id] : std::vector<std::pair<Linear, int64_t>>{
             {{0, 2, counted, {0, 1}, {1, 2}, {1, 2, 3}, {1, 2, 2}, {1, 2, 3}}, 2},
             {{0, 1, counted, {-1}, {4}, {9}, {1}, {3}}, 3},
             {{0, 0, 0, {0}, {0}, {1}, {1}, {1}}, 3},  // an empty block adds nothing
             {{2, 1, counted, {5}, {6}, {-4}, {1}, {1}}, 2}}) {
        int64_t got = block.idlc;
        add_linear(h.get(), block, &f, &got);
        expect_success(f);
        EXPECT_EQ(got, id);
    }
    const kor::opt::LinearConstraints &lc = h.problem().linear;
    EXPECT_EQ(lc.bl, (R{0, 5, -1}));
    EXPECT_EQ(lc.bu, (R{1, 6, 4}));
    std::vector<std::tuple<int64_t, int64_t, double>> entries;  // in the order kept
    for (size_t k = 0; k < lc.b.size(); ++k) entries.emplace_back(lc.b.row[k], lc.b.col[k], lc.b.value[k]);
    EXPECT_EQ(entries, (std::vector<std::tuple<int64_t, int64_t, double>>{{1, 1, 1}, {3, 3, 9}, {2, 1, -4}}));
}

struct Nonlinear {
    int64_t ncnln = 2, nnzgd = 2;
    R bl = {0, 0}, bu = {1, 1};
    I irow = {1, 2}, icol = {1, 2};
};

void set_nonlinear(void *h, const Nonlinear &a, KorError *f) {
    e04rkc(h, a.ncnln, a.bl.data(), a.bu.data(), a.nnzgd, a.irow.data(), a.icol.data(), f);
}

TEST(E04rk, EveryExit) {
    using E = kor::e04rk::Exit;
    expect_cases<Nonlinear>(kor::e04rk::info, 3, {
        {[](Nonlinear &a) { a.ncnln = -1, a.nnzgd = 0; }, want<E::ncnln_below>({-1})},
        {[](Nonlinear &a) { a.nnzgd = 0; }, want<E::nnzgd_not_positive>({0})},
        {[](Nonlinear &a) { a.bl = {2, 0}, a.irow = {9, 9}; }, want<E::crossed>({1, 2, 1})},
        {[](Nonlinear &a) { a.bl[1] = a.bu[1] = 1e20; }, want<E::lower_infinite>({2, 1e20, 1e20})},
        {[](Nonlinear &a) { a.bl[0] = -1e21, a.bu[0] = -1e20; }, want<E::upper_infinite>({1, -1e20, 1e20})},
        {[](Nonlinear &a) { a.irow = {1, 3}, a.icol = {1, 9}; }, want<E::irowgd_range>({2, 3, 2})},
        {[](Nonlinear &a) { a.icol = {4, 1}; }, want<E::icolgd_range>({1, 4, 3})},
        {[](Nonlinear &a) { a.irow = {1, 1}, a.icol = {2, 2}; }, want<E::repeated_element>({1, 2})},
        {[](Nonlinear &a) { a.bl = {-1e20, 0}, a.bu = {1e20, 1e21}; }, {}},
    }, set_nonlinear);
}

TEST(E04rl, EveryExit) {
    using E = kor::e04rl::Exit;
    struct Args {
        int64_t idf = 1, nnzh = 2;
        I irow = {1, 2}, icol = {2, 3};
        bool constraint = true, objective = false;
    };
    expect_cases<Args>(kor::e04rl::info, 3, {
        {[](Args &a) { a.nnzh = 0, a.idf = 7; }, want<E::nnzh_not_positive>({0})},
        {[](Args &a) { a.idf = 2; }, want<E::idf_range>({2, 1})},
        {[](Args &a) { a.idf = -2; }, want<E::idf_range>({-2, 1})},
        {[](Args &a) { a.constraint = false; }, want<E::idf_range>({1, 0})},
        {[](Args &a) { a.constraint = false, a.idf = 0; }, want<E::nothing_nonlinear>()},
        {[](Args &a) { a.idf = 0; }, want<E::no_nonlinear_objective>()},
        {[](Args &a) { a.irow = {1, 4}, a.icol = {1, 9}; }, want<E::irowh_range>({2, 4, 3})},
        {[](Args &a) { a.icol = {4, 3}; }, want<E::icolh_range>({1, 4, 3})},
        {[](Args &a) { a.irow = {1, 2}, a.icol = {1, 1}; }, want<E::irowh_below_diagonal>({2, 2, 1})},
        {[](Args &a) { a.irow = {2, 2}, a.icol = {3, 3}; }, want<E::repeated_element>({2, 3})},
        {[](Args &a) { a.objective = true, a.constraint = false, a.idf = 0; }, {}},
        {[](Args &) {}, {}},
    }, [](void *h, const Args &a, KorError *f) { e04rlc(h, a.idf, a.nnzh, a.irow.data(), a.icol.data(), f); },
    [](Handle &h, const Args &a) {
        KorError f = fresh_error();
        if (a.constraint) set_nonlinear(h.get(), {1, 1, {0}, {1}, {1}, {1}}, &f);
        if (a.objective) e04rgc(h.get(), 1, I{1}.data(), &f);
    });
}

TEST(E04rl, LagrangianAndPartStructuresReplaceEachOther) {
    Handle h(2);
    KorError f = fresh_error();
    const int64_t one = 1;
    e04rgc(h.get(), 1, &one, &f);
    set_nonlinear(h.get(), {1, 1, {0}, {1}, {1}, {2}}, &f);
    // (idf, row = column of its one entry, the parts held afterwards)
    for (const auto &[idf, at, parts] : std::vector<std::tuple<int64_t, int64_t, I>>{
             {0, 1, {0}}, {1, 2, {0, 1}}, {-1, 1, {-1}}, {0, 2, {0}}, {0, 1, {0}}}) {
        e04rlc(h.get(), idf, 1, &at, &at, &f);
        expect_success(f);
        I held;
        for (const auto &[part, structure] : h.problem().hessians) held.push_back(part);
        EXPECT_EQ(held, parts);
        EXPECT_EQ(h.problem().hessians.at(idf).row, I{at});  // the later structure replaces the earlier
    }
}

TEST(E04rm, EveryExit) {
    using E = kor::e04rm::Exit;
    struct Args { int64_t nres = 2, isparse = 1, nnzrd = 2; I irow = {1, 2}, icol = {1, 1}; };
    expect_cases<Args>(kor::e04rm::info, 3, {
        {[](Args &a) { a.nres = -1, a.isparse = 5; }, want<E::nres_below>({-1})},
        {[](Args &a) { a.isparse = 2, a.nnzrd = 0; }, want<E::isparse_invalid>({2})},
        {[](Args &a) { a.nnzrd = 0; }, want<E::nnzrd_not_positive>({0})},
        {[](Args &a) { a.irow = {1, 4}, a.icol = {9, 9}; }, want<E::irowrd_range>({2, 4, 3})},
        {[](Args &a) { a.icol = {3, 1}; }, want<E::icolrd_range>({1, 3, 2})},
        {[](Args &a) { a.irow = {2, 2}; }, want<E::repeated_element>({2, 1})},
        // Dense: the structure arguments are not looked at.
        {[](Args &a) { a.isparse = 0, a.nnzrd = -7, a.irow = {1, 4}, a.icol = {3, 1}; }, {}},
        {[](Args &) {}, {}},
    }, [](void *h, const Args &a, KorError *f) { e04rmc(h, a.nres, a.isparse, a.nnzrd, a.irow.data(), a.icol.data(), f); });
}

struct Group {
    std::string gtype = "QUAD";
    int64_t lgroup = 2, idgroup = 0;
    I group = {1, 2, 3, 4};
};

void set_group(void *h, Group &a, KorError *f) {
    e04rbc(h, a.gtype.c_str(), a.lgroup, a.group.data(), &a.idgroup, f);
}

TEST(E04rb, EveryExit) {
    using E = kor::e04rb::Exit;
    expect_cases<Group>(kor::e04rb::info, 4, {
        {[](Group &a) { a.lgroup = -1, a.idgroup = -2; }, want<E::lgroup_below>({-1})},
        {[](Group &a) { a.idgroup = -2, a.gtype = "CONE"; }, want<E::idgroup_below>({-2})},
        {[](Group &a) { a.gtype = "CONE", a.lgroup = 1; }, want_text<E::gtype_unknown>({"CONE"})},
        {[](Group &a) { a.lgroup = 1; }, want<E::quadratic_cone_too_small>({1})},
        {[](Group &a) { a.gtype = "rquad"; }, want<E::rotated_cone_too_small>({2})},
        {[](Group &a) { a.gtype = "R", a.lgroup = 1; }, want<E::rotated_cone_too_small>({1})},
        {[](Group &a) { a.idgroup = 1, a.group = {9, 9}; }, want<E::idgroup_unknown>({1, 0})},
        {[](Group &a) { a.gtype = "Q", a.group = {1, 5}; }, want<E::group_range>({2, 5, 4})},
        {[](Group &a) { a.gtype = "Q", a.group = {0, 2}; }, want<E::group_range>({1, 0, 4})},
        {[](Group &a) { a.gtype = "R", a.lgroup = 4, a.group = {2, 1, 3, 2}; }, want<E::member_repeated>({4, 2})},
        {[](Group &a) { a.gtype = " quad ", a.lgroup = 0; }, {}},
    }, [](void *h, Group a, KorError *f) { set_group(h, a, f); });
}

TEST(E04rb, ConesAreNumberedAndReplacedByIdentifier) {
    Handle h(4);
    KorError f = fresh_error();
    for (auto [cone, id] : std::vector<std::pair<Group, int64_t>>{
             {{}, 1}, {{"r", 3, 0, {1, 2, 3}}, 2}, {{"RQUAD", 3, 1, {4, 2, 3}}, 1}, {{"Quad", 0, 2, {}}, 2}}) {
        set_group(h.get(), cone, &f);
        expect_success(f);
        EXPECT_EQ(cone.idgroup, id);
    }
    ASSERT_EQ(h.problem().cones.size(), 2u);
    EXPECT_EQ(h.problem().cones[0].type, kor::opt::ConeType::rotated_quadratic);
    EXPECT_EQ(h.problem().cones[0].members, (I{4, 2, 3}));
    EXPECT_EQ(h.problem().cones[1].type, kor::opt::ConeType::quadratic);
    EXPECT_TRUE(h.problem().cones[1].members.empty());
}

TEST(E04rc, EveryExitAndTheProperties) {
    using E = kor::e04rc::Exit;
    struct Args { std::string ptype = "INT"; int64_t lidx = 2; I idx = {1, 3}; };
    auto call = [](void *h, const Args &a, KorError *f) { e04rcc(h, a.ptype.c_str(), a.lidx, a.idx.data(), f); };
    expect_cases<Args>(kor::e04rc::info, 3, {
        {[](Args &a) { a.lidx = 0, a.ptype = "X"; }, want<E::lidx_below>({0})},
        {[](Args &a) { a.ptype = "INTEGER", a.idx = {0, 0}; }, want_text<E::ptype_unknown>({"INTEGER"})},
        {[](Args &a) { a.idx = {2, 0}; }, want<E::idx_range>({2, 0, 3})},
        {[](Args &a) { a.ptype = " lin "; }, {}},
    }, call);
    // Integrality and linearity are separate properties, read back as XPROP.
    Handle h(3);
    KorError f = fresh_error();
    int64_t props[3];
    auto xprop = [&] {
        e04rwc(h.get(), "XPROP", 0, 3, props, 0, nullptr, &f);
        return I(props, props + 3);
    };
    EXPECT_EQ(xprop(), (I{0, 0, 0}));
    call(h.get(), {"bin", 2, {1, 3}}, &f);
    call(h.get(), {"LIN", 1, {1}}, &f);
    call(h.get(), {"Int", 1, {2}}, &f);
    EXPECT_EQ(xprop(), (I{11, 2, 1}));
    call(h.get(), {"Cont", 1, {1}}, &f);
    call(h.get(), {"GEN", 1, {1}}, &f);
    EXPECT_EQ(xprop(), (I{0, 2, 1}));
    expect_success(f);
}

// A 2-variable matrix inequality of dimension 3 in blocks 2 and 1.
struct Lmi {
    int64_t nvar = 2, dima = 3, nnzasum = counted, idblk = 0;
    I nnza = {1, 2, 1}, irow = {1, 1, 2, 3}, icol = {1, 2, 2, 3}, blk = {2, 1};
    R a = {1, 2, 3, 4};
};

void add_lmi(void *h, const Lmi &m, KorError *f, int64_t *id = nullptr) {
    int64_t own = m.idblk, &i = id ? *id : own;
    e04rnc(h, m.nvar, m.dima, m.nnza.data(), m.nnzasum == counted ? int64_t(m.irow.size()) : m.nnzasum, m.irow.data(),
           m.icol.data(), m.a.data(), int64_t(m.blk.size()), m.blk.data(), &i, f);
}

TEST(E04rn, EveryExit) {
    using E = kor::e04rn::Exit;
    expect_cases<Lmi>(kor::e04rn::info, 2, {
        {[](Lmi &m) { m.nvar = 3, m.idblk = 1; }, want<E::nvar_mismatch>({3, 2})},
        {[](Lmi &m) { m.idblk = 1, m.dima = 0; }, want<E::idblk_not_zero>({1})},
        {[](Lmi &m) { m.dima = 0, m.blk.clear(); }, want<E::dima_not_positive>({0})},
        {[](Lmi &m) { m.blk.clear(); }, want<E::nblk_not_positive>({0})},
        {[](Lmi &m) { m.nnza = {1, -1, 4}; }, want<E::nnza_negative>({2, -1})},
        {[](Lmi &m) { m.nnza = {0, 0, 0}; }, want<E::nnza_empty>({0})},
        {[](Lmi &m) { m.nnzasum = 3, m.blk = {3, 0}; }, want<E::nnzasum_small>({3, 4})},
        {[](Lmi &m) { m.blk = {3, 0}; }, want<E::blksizea_small>({2, 0})},
        {[](Lmi &m) { m.blk = {1, 1}; }, want<E::blksizea_sum>({2, 3})},
        {[](Lmi &m) { m.irow[1] = 4; }, want<E::irowa_range>({1, 2, 4, 3})},
        {[](Lmi &m) { m.icol[0] = 0; }, want<E::icola_range>({0, 1, 0, 3})},
        {[](Lmi &m) { m.irow[3] = 3, m.icol[3] = 2; }, want<E::irowa_below_diagonal>({2, 4, 3, 2})},
        {[](Lmi &m) { m.irow[2] = 2, m.icol[2] = 3; }, want<E::outside_blocks>({1, 3, 2, 3, 2})},
        {[](Lmi &m) { m.irow[2] = 1, m.icol[2] = 2; }, want<E::repeated_element>({1, 1, 2})},
        // The same element in different matrices is no repeat.
        {[](Lmi &m) { m.irow = m.icol = {1, 1, 2, 1}; }, {}},
    }, [](void *h, const Lmi &m, KorError *f) { add_lmi(h, m, f); });
}

struct Bilinear {
    int64_t idblk = 1, nq = 2, dimq = 3, sum = 3;
    I qi = {1, 2}, qj = {2, 2}, nnzq = {1, 2}, row = {1, 1, 3}, col = {1, 2, 3};
};

void add_bilinear(void *h, const Bilinear &a, KorError *f) {
    e04rpc(h, a.idblk, a.nq, a.qi.data(), a.qj.data(), a.dimq, a.nnzq.data(), a.sum, a.row.data(), a.col.data(),
           ones.data(), f);
}

TEST(E04rp, EveryExit) {
    using E = kor::e04rp::Exit;
    expect_cases<Bilinear>(kor::e04rp::info, 2, {
        {[](Bilinear &a) { a.idblk = -1, a.nq = 0; }, want<E::idblk_below>({-1})},
        {[](Bilinear &a) { a.nq = 0, a.dimq = 0; }, want<E::nq_not_positive>({0})},
        {[](Bilinear &a) { a.dimq = 0, a.idblk = 2; }, want<E::dimq_not_positive>({0})},
        {[](Bilinear &a) { a.idblk = 2; }, want<E::idblk_unknown>({2, 1})},
        {[](Bilinear &a) { a.idblk = 0; }, want<E::idblk_unknown>({0, 1})},
        {[](Bilinear &a) { a.dimq = 4; }, want<E::dimq_mismatch>({4, 3})},
        {[](Bilinear &a) { a.nnzq = {1, 0}; }, want<E::nnzq_not_positive>({2, 0})},
        {[](Bilinear &a) { a.sum = 2, a.qi = {9, 9}; }, want<E::nnzqsum_small>({2, 3})},
        {[](Bilinear &a) { a.qi = {1, 3}; }, want<E::qi_range>({2, 3, 2})},
        {[](Bilinear &a) { a.qj = {0, 1}; }, want<E::qj_range>({1, 0, 2})},
        {[](Bilinear &a) { a.qi = {1, 1}, a.qj = {2, 2}; }, want<E::pair_repeated>({1, 2})},
        {[](Bilinear &a) { a.row = {1, 1, 4}; }, want<E::irowq_range>({2, 3, 4, 3})},
        {[](Bilinear &a) { a.col = {0, 2, 3}; }, want<E::icolq_range>({1, 1, 0, 3})},
        {[](Bilinear &a) { a.row = {1, 2, 2}, a.col = {1, 3, 3}; }, want<E::repeated_element>({2, 2, 3})},
        {[](Bilinear &) {}, {}},
    }, add_bilinear, [](Handle &h, const Bilinear &) {
        KorError f = fresh_error();
        add_lmi(h.get(), {}, &f);
    });
}

TEST(E04rnp, MatrixInequalitiesAreNumberedAndTakeBilinearTermsOnce) {
    Handle h(2);
    KorError f = fresh_error();
    int64_t id = 0;
    add_lmi(h.get(), {}, &f, &id);
    add_lmi(h.get(), {}, &f, &(id = 0));
    EXPECT_EQ(id, 2);
    add_bilinear(h.get(), {2}, &f);
    expect_success(f);
    const kor::opt::MatrixBlock &m = h.problem().matrices[1];
    EXPECT_FALSE(h.problem().matrices[0].bilinear);
    EXPECT_EQ(std::make_tuple(m.bilinear, m.qi, m.nnzq, m.q.col, m.a.row), std::make_tuple(true, I{1, 2}, I{1, 2}, I{1, 2, 3}, I{1, 1, 2, 3}));
    add_bilinear(h.get(), {2}, &f);
    EXPECT_EQ(exit_reals<kor::e04rp::Exit::already_defined>(kor::e04rp::info, f), (R{2}));
}

// e04rs and e04rt: f(x) = s + r'x + (x'Qx/2 or ||Fx||^2/2).  With id null
// the identifier is a.idqc; a failure leaves it alone.
struct QuadraticFunction {
    int64_t idqc = 0, nnzr = 2, nnzm = 2, mf = 2;
    I idxr = {1, 3}, row = {1, 2}, col = {2, 3};
    double s = 0.5, bl = 0, bu = 1;
};

void set_qc(void *h, const QuadraticFunction &a, KorError *f, int64_t *id = nullptr) {
    int64_t own = a.idqc, &i = id ? *id : own, before = i;
    e04rsc(h, a.s, a.nnzr, a.idxr.data(), ones.data(), a.nnzm, a.row.data(), a.col.data(), ones.data(), a.bl, a.bu, &i, f);
    if (f->code) { EXPECT_EQ(i, before); }
}

void set_qc_factor(void *h, const QuadraticFunction &a, KorError *f, int64_t *id = nullptr) {
    int64_t own = a.idqc, &i = id ? *id : own, before = i;
    e04rtc(h, a.s, a.mf, a.nnzm, a.row.data(), a.col.data(), ones.data(), a.nnzr, a.idxr.data(), ones.data(), a.bl, a.bu, &i, f);
    if (f->code) { EXPECT_EQ(i, before); }
}

using QC = QuadraticFunction;

TEST(E04rs, EveryExit) {
    using E = kor::e04rs::Exit;
    expect_cases<QC>(kor::e04rs::info, 3, {
        {[](QC &a) { a.idqc = -2, a.nnzm = -1; }, want<E::idqc_below>({-2})},
        {[](QC &a) { a.idqc = 1, a.nnzm = -1; }, want<E::idqc_unknown>({1, 0})},
        {[](QC &a) { a.nnzm = -1, a.nnzr = -1; }, want<E::nnzq_below>({-1})},
        {[](QC &a) { a.nnzr = -1; }, want<E::nnzr_below>({-1})},
        {[](QC &a) { a.nnzr = a.nnzm = 0, a.bl = 2; }, want<E::both_empty>({0, 0})},
        {[](QC &a) { a.bl = 2, a.idxr = {9, 9}; }, want<E::bounds_crossed>({2, 1})},
        {[](QC &a) { a.bl = 1e20, a.bu = 1e21; }, want<E::lower_infinite>({1e20, 1e20})},
        {[](QC &a) { a.bl = -1e22, a.bu = -1e20; }, want<E::upper_infinite>({-1e20, 1e20})},
        {[](QC &a) { a.idxr = {1, 4}, a.row = {9, 9}; }, want<E::idxr_range>({2, 4, 3})},
        {[](QC &a) { a.idxr = {2, 2}; }, want<E::idxr_repeated>({2})},
        {[](QC &a) { a.row = {1, 5}; }, want<E::irowq_range>({2, 5, 3})},
        {[](QC &a) { a.col = {2, 0}; }, want<E::icolq_range>({2, 0, 3})},
        {[](QC &a) { a.row = {1, 3}, a.col = {2, 2}; }, want<E::irowq_below_diagonal>({2, 3, 2})},
        {[](QC &a) { a.row = {2, 2}, a.col = {3, 3}; }, want<E::repeated_element>({2, 3})},
        // For the objective the bounds are not looked at.
        {[](QC &a) { a.idqc = -1, a.bl = 5, a.bu = 1; }, {}},
    }, [](void *h, const QC &a, KorError *f) { set_qc(h, a, f); });
}

TEST(E04rt, EveryExit) {
    using E = kor::e04rt::Exit;
    const QC base = {0, 1, 2, 2, {2}, {1, 2}, {1, 3}, 0, 0, 1};
    expect_cases<QC>(kor::e04rt::info, 3, {
        {[&](QC &a) { a = base, a.idqc = -3, a.nnzm = -1; }, want<E::idqc_below>({-3})},
        {[&](QC &a) { a = base, a.idqc = 2, a.nnzm = -1; }, want<E::idqc_unknown>({2, 0})},
        {[&](QC &a) { a = base, a.nnzm = -1, a.mf = 0; }, want<E::nnzf_below>({-1})},
        {[&](QC &a) { a = base, a.mf = 0, a.nnzr = -1; }, want<E::mf_not_positive>({0})},
        {[&](QC &a) { a = base, a.nnzr = -1; }, want<E::nnzr_below>({-1})},
        {[&](QC &a) { a = base, a.nnzr = a.nnzm = 0; }, want<E::both_empty>({0, 0})},
        {[&](QC &a) { a = base, a.bl = 1, a.bu = 0; }, want<E::bounds_crossed>({1, 0})},
        {[&](QC &a) { a = base, a.bl = a.bu = 1e20; }, want<E::lower_infinite>({1e20, 1e20})},
        {[&](QC &a) { a = base, a.bl = a.bu = -1e20; }, want<E::upper_infinite>({-1e20, 1e20})},
        {[&](QC &a) { a = base, a.idxr = {9}; }, want<E::idxr_range>({1, 9, 3})},
        {[&](QC &a) { a = base, a.nnzr = 2, a.idxr = {3, 3}; }, want<E::idxr_repeated>({3})},
        {[&](QC &a) { a = base, a.row = {1, 3}; }, want<E::irowf_range>({2, 3, 2})},
        {[&](QC &a) { a = base, a.col = {1, 4}; }, want<E::icolf_range>({2, 4, 3})},
        // F is not symmetric: an entry below the diagonal is allowed, a repeat is not.
        {[&](QC &a) { a = base, a.row = {2, 2}, a.col = {3, 3}; }, want<E::repeated_element>({2, 3})},
        {[&](QC &a) { a = base, a.row = {2, 1}; }, {}},
    }, [](void *h, const QC &a, KorError *f) { set_qc_factor(h, a, f); });
}

TEST(E04rst, ConstraintsAreNumberedAndReplacedAcrossForms) {
    Handle h(3);
    KorError f = fresh_error();
    int64_t id = 0;
    set_qc_factor(h.get(), {0, 1, 2, 4, {2}, {1, 2}, {1, 3}, 0, 0, 1}, &f, &id);
    set_qc(h.get(), {0, 1, 0, 0, {1}, {}, {}, 0, -2, 2}, &f, &(id = 0));
    EXPECT_EQ(id, 2);
    EXPECT_TRUE(h.problem().quadratic[0].factorized);
    EXPECT_EQ(h.problem().quadratic[0].mf, 4);
    // Constraint 1 replaced by a plain one; the objective is not touched.
    set_qc(h.get(), {1, 1, 1, 0, {3}, {2}, {2}, 7, -3, 3}, &f, &(id = 1));
    expect_success(f);
    EXPECT_EQ(id, 1);
    ASSERT_EQ(h.problem().quadratic.size(), 2u);
    const kor::opt::QuadraticConstraint &q = h.problem().quadratic[0];
    EXPECT_EQ(std::make_tuple(q.factorized, q.constant, q.bl, q.bu, q.idxr, q.q.row), std::make_tuple(false, 7.0, -3.0, 3.0, I{3}, I{2}));
    EXPECT_EQ(h.problem().objective.kind, ObjectiveKind::none);
}

TEST(ObjectiveReplacement, EachObjectiveDiscardsTheOldOneAndEveryHessian) {
    const I one = {1}, two = {2}, both = {1, 2};
    const R c2 = {3, 4};
    int64_t id = -1;
    using Define = std::function<void(void *, KorError *)>;
    const std::vector<std::tuple<std::string, ObjectiveKind, Define>> objectives = {
        {"e04re", ObjectiveKind::linear, [&](void *h, KorError *f) { e04rec(h, 2, c2.data(), f); }},
        {"e04rf", ObjectiveKind::quadratic, [&](void *h, KorError *f) { e04rfc(h, 1, one.data(), ones.data(), 1, one.data(), two.data(), ones.data(), f); }},
        {"e04rg", ObjectiveKind::nonlinear, [&](void *h, KorError *f) { e04rgc(h, 2, both.data(), f); }},
        {"e04rm", ObjectiveKind::least_squares, [&](void *h, KorError *f) { e04rmc(h, 3, 0, 1, one.data(), one.data(), f); }},
        {"e04rs -1", ObjectiveKind::quadratic, [&](void *h, KorError *f) { set_qc(h, {-1, 1, 0, 0, {2}}, f, &(id = -1)); }},
        {"e04rt -1", ObjectiveKind::quadratic, [&](void *h, KorError *f) { set_qc_factor(h, {-1, 0, 1, 1, {}, {1}, {2}}, f, &(id = -1)); }},
        // New nonlinear constraints discard the Hessian structures too, not the objective.
        {"e04rk", ObjectiveKind::nonlinear, [&](void *h, KorError *f) { set_nonlinear(h, {1, 1, {0}, {1}, {1}, {1}}, f); }},
    };
    for (const auto &[name, kind, define] : objectives) {
        SCOPED_TRACE(name);
        Handle h(2);
        KorError f = fresh_error();
        // A nonlinear objective and constraint with Hessian structures.
        e04rgc(h.get(), 1, one.data(), &f);
        set_nonlinear(h.get(), {1, 1, {0}, {1}, {1}, {2}}, &f);
        e04rlc(h.get(), 0, 1, one.data(), one.data(), &f);
        e04rlc(h.get(), 1, 1, two.data(), two.data(), &f);
        ASSERT_EQ(h.problem().hessians.size(), 2u);
        define(h.get(), &f);
        expect_success(f);
        EXPECT_EQ(id, -1);
        EXPECT_EQ(h.problem().objective.kind, kind);
        EXPECT_TRUE(h.problem().hessians.empty());
        if (kind != ObjectiveKind::nonlinear) { EXPECT_TRUE(h.problem().objective.idxfd.empty()); }
        EXPECT_EQ(h.problem().nonlinear.count(), 1);  // the constraints stay
    }
}

// Calls on a fresh handle, each with the exit it must take.
struct Call {
    std::string what;
    const kor::frame::RoutineInfo &info;
    Want want;
    std::function<void(void *, KorError *)> call;
    bool changes = false;                  // a success that must change what the handle holds
    std::function<void(void *)> setup = {};  // what the handle holds before
};

// The allocation failure the frame reports for a count no memory holds.
std::vector<std::string> no_memory(const kor::frame::RoutineInfo &, const KorError &f) {
    EXPECT_EQ(f.code, NE_ALLOC_FAIL) << f.message;
    return {};
}

void expect_calls(int64_t nvar, const std::vector<Call> &calls) {
    for (const Call &c : calls) {
        SCOPED_TRACE(c.what);
        Handle h(nvar);
        if (c.setup) c.setup(h.get());
        const std::string before = state(h);
        KorError f = fresh_error();
        c.call(h.get(), &f);
        if (c.want.values == &no_memory) c.want.values(c.info, f); else expect_exit(c.info, c.want, f);
        if (c.want.values) { EXPECT_EQ(state(h), before); }
        if (c.changes) { EXPECT_NE(state(h), before); }
    }
}

// Bounds, one linear and one nonlinear constraint on [0, 1].
void define_bounded(void *h) {
    KorError f = fresh_error();
    int64_t id = 0;
    const double zero = 0;
    e04rhc(h, 1, &zero, ones.data(), &f);
    add_linear(h, {0, 1, counted, {0}, {1}, {1}, {1}, {1}}, &f, &id);
    set_nonlinear(h, {1, 1, {0}, {1}, {1}, {1}}, &f);
    expect_success(f);
}

// Every real argument with a check refuses NaN, and so do written bounds and real options.
TEST(NaN, EveryCheckedRealArgumentRefusesIt) {
    const R n = {nan}, z = {0}, o = {1};
    const I one = {1};
    std::vector<Call> calls = {
        {"e04rh bl", kor::e04rh::info, want<kor::e04rh::Exit::crossed>({1, nan, 1}), [&](void *h, KorError *f) { e04rhc(h, 1, n.data(), o.data(), f); }},
        {"e04rh bu", kor::e04rh::info, want<kor::e04rh::Exit::crossed>({1, 0, nan}), [&](void *h, KorError *f) { e04rhc(h, 1, z.data(), n.data(), f); }},
        {"e04rj bl", kor::e04rj::info, want<kor::e04rj::Exit::crossed>({1, nan, 1}), [&](void *h, KorError *f) { add_linear(h, {0, 1, counted, n, o, o, one, one}, f); }},
        {"e04rj bu", kor::e04rj::info, want<kor::e04rj::Exit::crossed>({1, 0, nan}), [&](void *h, KorError *f) { add_linear(h, {0, 1, counted, z, n, o, one, one}, f); }},
        {"e04rk bl", kor::e04rk::info, want<kor::e04rk::Exit::crossed>({1, nan, 1}), [&](void *h, KorError *f) { set_nonlinear(h, {1, 1, n, o, one, one}, f); }},
        {"e04rk bu", kor::e04rk::info, want<kor::e04rk::Exit::crossed>({1, 0, nan}), [&](void *h, KorError *f) { set_nonlinear(h, {1, 1, z, n, one, one}, f); }},
        {"e04rs bl", kor::e04rs::info, want<kor::e04rs::Exit::bounds_crossed>({nan, 1}), [&](void *h, KorError *f) { set_qc(h, {0, 1, 0, 0, one, {}, {}, 0, nan, 1}, f); }},
        {"e04rs bu", kor::e04rs::info, want<kor::e04rs::Exit::bounds_crossed>({0, nan}), [&](void *h, KorError *f) { set_qc(h, {0, 1, 0, 0, one, {}, {}, 0, 0, nan}, f); }},
        {"e04rt bl", kor::e04rt::info, want<kor::e04rt::Exit::bounds_crossed>({nan, 1}), [&](void *h, KorError *f) { set_qc_factor(h, {0, 1, 0, 1, one, {}, {}, 0, nan, 1}, f); }},
        {"e04rt bu", kor::e04rt::info, want<kor::e04rt::Exit::bounds_crossed>({0, nan}), [&](void *h, KorError *f) { set_qc_factor(h, {0, 1, 0, 1, one, {}, {}, 0, 0, nan}, f); }},
        {"e04zm", kor::e04zm::info, want_text<kor::e04zm::Exit::not_real>({"\"NaN\""}), [&](void *h, KorError *f) { e04zmc(h, "Infinite Bound Size = NaN", f); }},
    };
    // Bounds written by keyword: a lower bound, then an upper one.
    for (const char *item : {"BLX", "BUX", "BLB", "BUB", "BLC", "BUC"}) {
        const bool lower = item[1] == 'L';
        calls.push_back({std::string("e04rw ") + item, kor::e04rw::info,
                         want<kor::e04rw::Exit::bounds_crossed>({1, lower ? nan : 0, lower ? 1 : nan}),
                         [item, n](void *h, KorError *f) { R v = n; e04rwc(h, item, 1, 0, nullptr, 1, v.data(), f); },
                         false, define_bounded});
    }
    expect_calls(1, calls);
}

// From C, a null array whose count is 0 or that the mode leaves unused (e04rm dense, e04rw's
// array of the other type) is accepted; a null array the call needs is refused by name.
TEST(NullArrays, AcceptedWhereTheyAreNotReadAndRefusedByNameWhereTheyAre) {
    const I one = {1}, nnza = {0, 1};
    int64_t id = 0;
    using RW = kor::e04rw::Exit;
    const std::vector<Call> calls = {
                {"e04rf", kor::e04rf::info, {}, [](void *h, KorError *f) { e04rfc(h, 0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, f); }, true},
        {"e04rg", kor::e04rg::info, {}, [](void *h, KorError *f) { e04rgc(h, 0, nullptr, f); }, true},
        {"e04rj", kor::e04rj::info, {}, [&](void *h, KorError *f) { e04rjc(h, 0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, &id, f); }},
        {"e04rk", kor::e04rk::info, want<kor::e04rk::Exit::irowgd_range>({1, 1, 0}), [&](void *h, KorError *f) { e04rkc(h, 0, nullptr, nullptr, 1, one.data(), one.data(), f); }},
        {"e04rb", kor::e04rb::info, {}, [&](void *h, KorError *f) { e04rbc(h, "RQUAD", 0, nullptr, &(id = 0), f); }, true},
        {"e04rc", kor::e04rc::info, want<kor::e04rc::Exit::lidx_below>({0}), [](void *h, KorError *f) { e04rcc(h, "INT", 0, nullptr, f); }},
        {"e04rl", kor::e04rl::info, want<kor::e04rl::Exit::nnzh_not_positive>({0}), [](void *h, KorError *f) { e04rlc(h, 0, 0, nullptr, nullptr, f); }},
        {"e04rs r", kor::e04rs::info, {}, [&](void *h, KorError *f) { e04rsc(h, 0, 0, nullptr, nullptr, 1, one.data(), one.data(), ones.data(), 0, 1, &(id = 0), f); }, true},
        {"e04rs q", kor::e04rs::info, {}, [&](void *h, KorError *f) { e04rsc(h, 0, 1, one.data(), ones.data(), 0, nullptr, nullptr, nullptr, 0, 1, &(id = 0), f); }, true},
        {"e04rt r", kor::e04rt::info, {}, [&](void *h, KorError *f) { e04rtc(h, 0, 1, 1, one.data(), one.data(), ones.data(), 0, nullptr, nullptr, 0, 1, &(id = 0), f); }, true},
        {"e04rt f", kor::e04rt::info, {}, [&](void *h, KorError *f) { e04rtc(h, 0, 1, 0, nullptr, nullptr, nullptr, 1, one.data(), ones.data(), 0, 1, &(id = 0), f); }, true},
        {"e04rn", kor::e04rn::info, want<kor::e04rn::Exit::nnzasum_small>({0, 1}), [&](void *h, KorError *f) { e04rnc(h, 1, 1, nnza.data(), 0, nullptr, nullptr, nullptr, 1, one.data(), &(id = 0), f); }},
        {"e04rp", kor::e04rp::info, want<kor::e04rp::Exit::nq_not_positive>({0}), [](void *h, KorError *f) { e04rpc(h, 1, 0, nullptr, nullptr, 1, nullptr, 0, nullptr, nullptr, nullptr, f); }},
        {"e04rm dense", kor::e04rm::info, {}, [](void *h, KorError *f) { e04rmc(h, 2, 0, 3, nullptr, nullptr, f); }, true},
        {"e04rm irowrd", kor::e04rm::info, want_text<kor::e04rm::Exit::array_null>({"irowrd"}), [&](void *h, KorError *f) { e04rmc(h, 2, 1, 1, nullptr, one.data(), f); }},
        {"e04rm icolrd", kor::e04rm::info, want_text<kor::e04rm::Exit::array_null>({"icolrd"}), [&](void *h, KorError *f) { e04rmc(h, 2, 1, 1, one.data(), nullptr, f); }},
        {"e04rw XPROP", kor::e04rw::info, {}, [](void *h, KorError *f) { int64_t p = 2; e04rwc(h, "XPROP", 1, 1, &p, 5, nullptr, f); }, true},
        {"e04rw BLX", kor::e04rw::info, {}, [](void *h, KorError *f) { double v = 0.5; e04rwc(h, "blx", 1, 9, nullptr, 1, &v, f); }, true, define_bounded},
        {"e04rw IROWB", kor::e04rw::info, {}, [](void *h, KorError *f) { e04rwc(h, "IROWB", 0, 0, nullptr, 0, nullptr, f); }},
        {"e04rw iarr", kor::e04rw::info, want_text<RW::array_null>({"iarr"}), [](void *h, KorError *f) { e04rwc(h, "XPROP", 0, 1, nullptr, 0, nullptr, f); }},
        {"e04rw iarr written", kor::e04rw::info, want_text<RW::array_null>({"iarr"}), [](void *h, KorError *f) { e04rwc(h, "XPROP", 1, 1, nullptr, 0, nullptr, f); }},
        {"e04rw rarr", kor::e04rw::info, want_text<RW::array_null>({"rarr"}), [](void *h, KorError *f) { e04rwc(h, "BUB", 0, 0, nullptr, 1, nullptr, f); }, false, define_bounded},
    };
    expect_calls(1, calls);
    // A handle of no variables: its bounds, objective and MCS list are empty arrays.
    expect_calls(0, {
        {"e04rh", kor::e04rh::info, {}, [](void *h, KorError *f) { e04rhc(h, 0, nullptr, nullptr, f); }, true},
        {"e04re", kor::e04re::info, {}, [](void *h, KorError *f) { e04rec(h, 0, nullptr, f); }, true},
        {"e04re nvar", kor::e04re::info, want<kor::e04re::Exit::nvar_mismatch>({1, 0}), [](void *h, KorError *f) { e04rec(h, 1, ones.data(), f); }},
        {"e04rx", kor::e04rx::info, {}, [](void *h, KorError *f) { e04rxc(h, "MCS LIST", 1, 0, nullptr, f); }, true},
    });
}

// Counts no memory holds fail before the caller's arrays (of one element) are read.
TEST(HugeCounts, EveryDefinitionRoutineFailsWithTheAllocationError) {
    const int64_t huge = int64_t(1) << 60;
    const I one = {1}, nnza = {huge, 0, 0};
    const R z = {0};
    int64_t id = 0;
    const Want memory{&no_memory, -1, {}};
    expect_calls(2, {
        {"e04rf nnzc", kor::e04rf::info, memory, [&](void *h, KorError *f) { e04rfc(h, huge, one.data(), z.data(), 0, one.data(), one.data(), z.data(), f); }},
        {"e04rf nnzh", kor::e04rf::info, memory, [&](void *h, KorError *f) { e04rfc(h, 0, one.data(), z.data(), huge, one.data(), one.data(), z.data(), f); }},
        {"e04rg", kor::e04rg::info, memory, [&](void *h, KorError *f) { e04rgc(h, huge, one.data(), f); }},
        {"e04rj nnzb", kor::e04rj::info, memory, [&](void *h, KorError *f) { e04rjc(h, 1, z.data(), z.data(), huge, one.data(), one.data(), z.data(), &(id = 0), f); }},
        {"e04rj nnzb max", kor::e04rj::info, memory, [&](void *h, KorError *f) { e04rjc(h, 1, z.data(), z.data(), INT64_MAX, one.data(), one.data(), z.data(), &(id = 0), f); }},
        {"e04rj nclin", kor::e04rj::info, memory, [&](void *h, KorError *f) { e04rjc(h, huge, z.data(), z.data(), 1, one.data(), one.data(), z.data(), &(id = 0), f); }},
        {"e04rk ncnln", kor::e04rk::info, memory, [&](void *h, KorError *f) { e04rkc(h, huge, z.data(), z.data(), 1, one.data(), one.data(), f); }},
        {"e04rk nnzgd", kor::e04rk::info, memory, [&](void *h, KorError *f) { e04rkc(h, 1, z.data(), z.data(), huge, one.data(), one.data(), f); }},
        {"e04rm", kor::e04rm::info, memory, [&](void *h, KorError *f) { e04rmc(h, 1, 1, huge, one.data(), one.data(), f); }},
        {"e04rb", kor::e04rb::info, memory, [&](void *h, KorError *f) { e04rbc(h, "QUAD", huge, one.data(), &(id = 0), f); }},
        {"e04rc", kor::e04rc::info, memory, [&](void *h, KorError *f) { e04rcc(h, "INT", huge, one.data(), f); }},
        {"e04rn", kor::e04rn::info, memory, [&](void *h, KorError *f) { e04rnc(h, 2, 1, nnza.data(), huge, one.data(), one.data(), z.data(), 1, one.data(), &(id = 0), f); }},
        {"e04rp", kor::e04rp::info, memory, [&](void *h, KorError *f) { e04rpc(h, 1, huge, one.data(), one.data(), 3, one.data(), 1, one.data(), one.data(), z.data(), f); },
         false, [](void *h) { KorError f = fresh_error(); add_lmi(h, {}, &f); }},
        {"e04rs", kor::e04rs::info, memory, [&](void *h, KorError *f) { e04rsc(h, 0, huge, one.data(), z.data(), 0, one.data(), one.data(), z.data(), 0, 1, &(id = 0), f); }},
        {"e04rt", kor::e04rt::info, memory, [&](void *h, KorError *f) { e04rtc(h, 0, 1, huge, one.data(), one.data(), z.data(), 0, one.data(), z.data(), 0, 1, &(id = 0), f); }},
    });
}

}  // namespace
