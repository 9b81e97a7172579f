// e04rd: the SDPLIB files read with the sizes the query reports, checked against their listed
// sizes, an independent reading and the block rules, and handed to e04rn; the dialects; the refusals.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <numeric>
#include <sstream>
#include <tuple>

#include "opt_support.hpp"
#include "support/data.hpp"

using namespace opt_test;
using E = kor::e04rd::Exit;

namespace {

const std::string data_dir = std::string(KOR_SOURCE_DIR) + "/tests/data/opt/";

struct Read {
    KorError fail = fresh_error();
    int64_t nvar = -1, nblk = -1;
    I blksizea, nnza, irowa, icola;
    R cvec, a;
};

// Reads a file with the sizes given, into arrays of those sizes filled with -7.
Read read_path(const std::string &path, int64_t maxnvar, int64_t maxnblk, int64_t maxnnz) {
    auto size = [](int64_t n) { return size_t(std::max<int64_t>(n, 1)); };
    Read r{fresh_error(), -1, -1, I(size(maxnblk), -7), I(size(maxnvar + 1), -7), I(size(maxnnz), -7),
           I(size(maxnnz), -7), R(size(maxnvar), -7), R(size(maxnnz), -7)};
    const int64_t unit = open_unit(path, 0);
    e04rdc(unit, maxnvar, maxnblk, maxnnz, &r.nvar, &r.nblk, r.blksizea.data(), r.cvec.data(), r.nnza.data(),
           r.irowa.data(), r.icola.data(), r.a.data(), &r.fail);
    close_unit(unit);
    return r;
}

Read read_text(const std::string &text, int64_t size = 100) {
    ScratchDir s;
    write_file(s.file("problem.dat-s"), text);
    return read_path(s.file("problem.dat-s"), size, size, size);
}

// An independent reading: one stream of tokens, punctuation blanked, comment lines dropped;
// entries keyed by matrix and their place in the whole block-diagonal matrix.
struct Oracle {
    I sizes;
    R c;
    std::map<std::tuple<int64_t, int64_t, int64_t>, double> entries;
};

Oracle oracle(const std::string &path) {
    std::string text;
    for (const std::string &line : split_lines(read_file(path))) {
        const size_t first = line.find_first_not_of(" \t");
        if (first == std::string::npos || (line[first] != '"' && line[first] != '*')) text += line + "\n";
    }
    std::replace_if(text.begin(), text.end(), [](char ch) { return ch && std::strchr(",{}()", ch); }, ' ');
    std::istringstream in(text);
    Oracle o;
    int64_t m, nblocks, mat, blk, i, j;
    in >> m >> nblocks;
    o.sizes.resize(size_t(nblocks));
    o.c.resize(size_t(m));
    for (int64_t &size : o.sizes) in >> size;
    for (double &v : o.c) in >> v;
    I offset(1, 0);
    for (int64_t size : o.sizes) offset.push_back(offset.back() + std::llabs(size));
    for (double v; in >> mat >> blk >> i >> j >> v;) o.entries[{mat, offset[size_t(blk - 1)] + i, offset[size_t(blk - 1)] + j}] = v;
    return o;
}

TEST(E04rd, EverySdplibFileReadWithTheQueriedSizes) {
    for (const kor::test::Row &lib : kor::test::read_table("opt/sdplib.txt")) {
        SCOPED_TRACE(lib.text(0));
        const std::string path = data_dir + lib.text(0);
        const Read q = read_path(path, 0, 0, 0);
        const R need = exit_reals<E::sizes_too_small>(kor::e04rd::info, q.fail);
        ASSERT_EQ(need.size(), 6u);
        const int64_t nvar = int64_t(need[0]), nblk = int64_t(need[2]), nnz = int64_t(need[4]);
        EXPECT_EQ(std::make_pair(q.nvar, q.nblk), std::make_pair(nvar, nblk));
        // The sizes listed: a diagonal block of size k counts as k blocks of size 1.
        I sizes;
        for (double s : lib.reals(2)) sizes.insert(sizes.end(), size_t(s < 0 ? -s : 1), s < 0 ? 1 : int64_t(s));
        EXPECT_EQ(std::make_tuple(nvar, nblk, nnz), std::make_tuple(lib.integer(1), int64_t(sizes.size()), lib.integer(3)));

        const Read r = read_path(path, nvar, nblk, nnz);
        expect_success(r.fail);
        EXPECT_EQ(r.blksizea, sizes);
        const Oracle o = oracle(path);
        EXPECT_EQ(R(o.sizes.begin(), o.sizes.end()), lib.reals(2));
        EXPECT_EQ(r.cvec, o.c);
        EXPECT_EQ(std::accumulate(r.nnza.begin(), r.nnza.end(), int64_t(0)), nnz);
        ASSERT_EQ(int64_t(o.entries.size()), nnz);
        // ends[k]: the last row and column of block k.
        I ends(sizes.size());
        std::partial_sum(sizes.begin(), sizes.end(), ends.begin());
        // By matrix, then row and column; each entry in the upper triangle of one diagonal block.
        int64_t k = 0;
        for (int64_t mat = 0; mat <= nvar; ++mat)
            for (int64_t n = 0; n < r.nnza[size_t(mat)]; ++n, ++k) {
                const int64_t i = r.irowa[size_t(k)], j = r.icola[size_t(k)];
                const auto it = o.entries.find({mat, i, j});
                ASSERT_NE(it, o.entries.end()) << "entry " << k;
                EXPECT_EQ(it->second, r.a[size_t(k)]) << "entry " << k;
                EXPECT_LE(i, j);
                EXPECT_LE(j, *std::lower_bound(ends.begin(), ends.end(), i)) << "entry " << k;
                if (n > 0) { EXPECT_LT(std::make_pair(r.irowa[size_t(k - 1)], r.icola[size_t(k - 1)]), std::make_pair(i, j)); }
            }
        // What was read defines a matrix inequality as it stands.
        Handle h(nvar);
        int64_t idblk = 0;
        KorError f = fresh_error();
        e04rnc(h.get(), nvar, ends.back(), r.nnza.data(), nnz, r.irowa.data(), r.icola.data(), r.a.data(), nblk,
               r.blksizea.data(), &idblk, &f);
        expect_success(f);
    }
}

TEST(E04rd, SizesTooSmallReportAllThreeAndReturnOnlyWhatFits) {
    const std::string path = data_dir + "control1.dat-s";
    const Read r = read_path(path, 21, 2, 349);
    EXPECT_EQ(exit_reals<E::sizes_too_small>(kor::e04rd::info, r.fail), (R{21, 21, 2, 2, 350, 349}));
    EXPECT_EQ(r.nvar, 21);
    EXPECT_EQ(r.nblk, 2);
    EXPECT_EQ(r.cvec[0], -7);
    EXPECT_EQ(r.a[0], -7);
    // nnza fits, so it is returned: its sum is the maxnnz needed.
    EXPECT_EQ(std::accumulate(r.nnza.begin(), r.nnza.end(), int64_t(0)), 350);
    const Read q = read_path(path, 20, 2, 400);
    EXPECT_EQ(exit_reals<E::sizes_too_small>(kor::e04rd::info, q.fail), (R{21, 20, 2, 2, 350, 400}));
    EXPECT_EQ(q.nnza[0], -7);  // nnza too short: untouched
}

TEST(E04rd, NullArraysServeAQueryAndAreRefusedByNameForTheData) {
    const std::string path = data_dir + "truss1.dat-s";
    int64_t nvar = 0, nblk = 0;
    KorError f = fresh_error();
    int64_t unit = open_unit(path, 0);
    e04rdc(unit, 0, 0, 0, &nvar, &nblk, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &f);
    close_unit(unit);
    EXPECT_EQ(exit_reals<E::sizes_too_small>(kor::e04rd::info, f), (R{6, 0, 7, 0, 26, 0}));
    EXPECT_EQ(nvar, 6);
    EXPECT_EQ(nblk, 7);
    const char *names[] = {"blksizea", "cvec", "nnza", "irowa", "icola", "a"};
    for (int k = 0; k < 6; ++k) {
        I blk(7), nnza(7), rows(26), cols(26);
        R c(6), a(26);
        unit = open_unit(path, 0);
        e04rdc(unit, 6, 7, 26, &nvar, &nblk, k == 0 ? nullptr : blk.data(), k == 1 ? nullptr : c.data(),
               k == 2 ? nullptr : nnza.data(), k == 3 ? nullptr : rows.data(), k == 4 ? nullptr : cols.data(),
               k == 5 ? nullptr : a.data(), &f);
        close_unit(unit);
        EXPECT_EQ(exit_values<E::array_null>(kor::e04rd::info, f), std::vector<std::string>{names[k]});
    }
}

TEST(E04rd, EveryDialectOfTheFormat) {
    const Read r = read_text(
        "\" a comment line in double quotes\n" "* and one starting with an asterisk\n" "   * indented too\n"
        "  3   \n" "\t3 \t\n" "{2, -2, (-1)}  \n" "(+1.0, -0.0,\r2\n"
        "\n" " 0 1 1 1 +1.5  \n" "0,1,1,2,-2.5e-1\n" "1 2 2 2 3\n" "\n" "2 3 1 1 1.0D+00\r\n" "3\t1\t2\t2\t-0.0\n"
        "1 1 2 2 4E2 trailing words are not looked at\n");
    expect_success(r.fail);
    EXPECT_EQ(r.nvar, 3);
    EXPECT_EQ(r.nblk, 4);
    EXPECT_EQ(I(r.blksizea.begin(), r.blksizea.begin() + 4), (I{2, 1, 1, 1}));
    EXPECT_EQ(R(r.cvec.begin(), r.cvec.begin() + 3), (R{1.0, -0.0, 2.0}));
    EXPECT_TRUE(std::signbit(r.cvec[1]));
    EXPECT_EQ(I(r.nnza.begin(), r.nnza.begin() + 4), (I{2, 2, 1, 1}));
    // A_0: (1,1) 1.5, (1,2) -0.25; A_1: (2,2) 400, block 2 row 2 -> (4,4) 3;
    // A_2: block 3 -> (5,5) 1; A_3: (2,2) -0.0.
    EXPECT_EQ(I(r.irowa.begin(), r.irowa.begin() + 6), (I{1, 1, 2, 4, 5, 2}));
    EXPECT_EQ(I(r.icola.begin(), r.icola.begin() + 6), (I{1, 2, 2, 4, 5, 2}));
    EXPECT_EQ(R(r.a.begin(), r.a.begin() + 6), (R{1.5, -0.25, 400, 3, 1, -0.0}));
    EXPECT_TRUE(std::signbit(r.a[5]));
}

TEST(E04rd, EveryRefusalNamesItsLine) {
    const std::string head = "2\n2\n2 -2\n1 2\n";  // entries begin on line 5
    const std::vector<std::pair<std::string, Want>> cases = {
        {"", want<E::stream_empty>()},
        {"\n  \n\" only a comment\n", want<E::stream_empty>()},
        {"2\n", want_text<E::premature_end>({"the number of blocks"})},
        {"2\n1\n\n", want_text<E::premature_end>({"the block sizes"})},
        {"2\n1\n3\n", want_text<E::premature_end>({"the objective function"})},
        {"2\n3\n1 2\n", want_text<E::too_few_tokens>({"3", "block sizes", "3", "2"})},
        {"3\n1\n{2}\n{1, 2}\n", want_text<E::too_few_tokens>({"4", "the objective function", "3", "2"})},
        {head + "0 1 1 1\n", want_text<E::too_few_tokens>({"5", "nonzero matrix elements", "5", "4"})},
        {"\" comment\ntwo\n", want<E::not_integer>({2, 1, 3})},
        {"2\n 1.0\n", want<E::not_integer>({2, 2, 4})},
        {"99999999999999999999\n", want<E::not_integer>({1, 1, 20})},
        {head + "0 1.5 1 1 1.0\n", want<E::not_integer>({5, 3, 5})},
        {"2\n\" late comment\n", want<E::not_integer>({2, 1, 1})},  // comments only before the data
        {"2\n1\n3\n1 1.0.0\n", want<E::not_real>({4, 3, 7})},
        {"2\n1\n3\n1 nan\n", want<E::not_real>({4, 3, 5})},
        {"2\n1\n3\n1 1e999\n", want<E::not_real>({4, 3, 7})},
        {"2\n1\n3\n" + std::string(65, '1') + " 1\n", want<E::token_too_long>({4, 1})},
        {"0\n", want<E::too_few_variables>({1, 0})},
        {"2\n-1\n", want<E::too_few_blocks>({2, -1})},
        {"2\n2\n3 0\n", want<E::block_size_zero>({3, 3, 3})},
        {"2\n2\n9223372036854775807 1\n", want<E::dimension_overflow>({3})},
        {head + "3 1 1 1 1.0\n", want<E::matrix_number>({5, 3, 2})},
        {head + "0 1 1 1 1.0\n\n1 0 1 1 1.0\n", want<E::block_number>({7, 0, 2})},
        {head + "0 1 3 3 1.0\n", want<E::row_outside>({5, 3, 2, 1})},
        {head + "0 2 1 0 1.0\n", want<E::column_outside>({5, 0, 2, 2})},
        {head + "0 1 2 1 1.0\n", want<E::lower_triangle>({5, 2, 1})},
        {head + "0 2 1 2 1.0\n", want<E::off_diagonal>({5, 1, 2, 2})},
        {head + "1 1 1 2 1.0\n0 1 1 2 1.0\n2 2 2 2 1.0\n1 1 1 2 1.0\n", want<E::repeated>({8})},
        // A repeat even of the same value; named at its first line, before a later failure.
        {head + "1 2 2 2 5.0\n1 1 1 1 1.0\n1 1 1 1 1.0\n1 2 2 2 5.0\n0 1 x 1 1.0\n", want<E::repeated>({7})},
    };
    for (const auto &[text, w] : cases) {
        SCOPED_TRACE(text);
        expect_exit(kor::e04rd::info, w, read_text(text).fail);
    }
}

TEST(E04rd, UnitMustBeConnectedForReadingAndLinesCountFromWhereItStands) {
    ScratchDir s;
    write_file(s.file("p.dat-s"), "header of the caller\n2\n1\nx\n");
    const int64_t out = open_unit(s.file("out.txt"), 1), in = open_unit(s.file("p.dat-s"), 0);
    int64_t nvar, nblk;
    KorError f = fresh_error();
    for (int64_t unit : {out, int64_t(77), int64_t(-1)}) {
        e04rdc(unit, 0, 0, 0, &nvar, &nblk, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &f);
        expect_exit(kor::e04rd::info, want<E::infile_not_readable>({double(unit)}), f);
    }
    // A caller that read a line of its own first: the count starts after it.
    char line[80];
    x04bbc(in, line, sizeof line, &f);
    e04rdc(in, 3, 3, 3, &nvar, &nblk, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &f);
    expect_exit(kor::e04rd::info, want<E::not_integer>({3, 1, 1}), f);
    close_unit(out);
    close_unit(in);
}

}  // namespace
