// e04rd, the sparse SDPA reader: every SDPLIB file here read with the sizes
// its query call reports, checked against the data README and an
// independent token-stream reading, and handed on to e04rn; the dialects of
// the format; and every line-numbered refusal of malformed data.
#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>
#include <numeric>
#include <tuple>

#include "opt_support.hpp"

using namespace opt_test;

namespace {

const std::string data_dir = std::string(KOR_SOURCE_DIR) + "/tests/opt/data/";

int64_t open_unit(const std::string &path, int64_t mode = 0) {
    KorError e = KOR_ERROR_INIT;
    int64_t unit = -1;
    kor_file_open(path.c_str(), mode, &unit, &e);
    EXPECT_EQ(e.code, 0) << e.message;
    return unit;
}

void close_unit(int64_t unit) {
    KorError e = KOR_ERROR_INIT;
    kor_file_close(unit, &e);
}

struct Read {
    Report report;
    int64_t nvar = -1, nblk = -1;
    I blksizea, nnza, irowa, icola;
    R cvec, a;
};

// Reads a file through one interface with the sizes given.
Read read_file_with(Api api, const std::string &path, int64_t maxnvar, int64_t maxnblk, int64_t maxnnz) {
    Read r;
    r.blksizea.assign(size_t(std::max<int64_t>(maxnblk, 1)), -7);
    r.cvec.assign(size_t(std::max<int64_t>(maxnvar, 1)), -7);
    r.nnza.assign(size_t(std::max<int64_t>(maxnvar + 1, 1)), -7);
    r.irowa.assign(size_t(std::max<int64_t>(maxnnz, 1)), -7);
    r.icola = r.irowa;
    r.a.assign(size_t(std::max<int64_t>(maxnnz, 1)), -7);
    const int64_t unit = open_unit(path);
    r.report = rd(api, unit, maxnvar, maxnblk, maxnnz, &r.nvar, &r.nblk, r.blksizea.data(), r.cvec.data(),
                  r.nnza.data(), r.irowa.data(), r.icola.data(), r.a.data());
    close_unit(unit);
    return r;
}

// The sizes a zero-size query reports, read back from its message.
bool query(Api api, const std::string &path, int64_t &nvar, int64_t &nblk, int64_t &nnz) {
    const Read q = read_file_with(api, path, 0, 0, 0);
    std::string text = api == Api::c ? flat_text(q.report.message) : "";
    if (api == Api::fortran)
        for (const std::string &l : q.report.lines) text += l.substr(3) + " ";
    const int n = std::sscanf(text.c_str(),
                              "At least one of maxnvar, maxnblk or maxnnz is too small. maxnvar should be at least "
                              "%ld, was 0. maxnblk should be at least %ld, was 0. maxnnz should be at least %ld, was 0.",
                              &nvar, &nblk, &nnz);
    EXPECT_EQ(n, 3) << text;
    EXPECT_EQ(q.nvar, nvar);
    EXPECT_EQ(q.nblk, nblk);
    if (api == Api::c) {
        EXPECT_EQ(q.report.code, NE_INT_MAX);
    }
    return n == 3;
}

// An independent reading: the file as one stream of tokens, punctuation
// blanked, comment lines dropped; entries keyed by matrix and the
// coordinates of the whole block-diagonal matrix.
struct Oracle {
    int64_t m = 0;
    std::vector<int64_t> sizes;
    std::vector<double> c;
    std::map<std::tuple<int64_t, int64_t, int64_t>, double> entries;
};

Oracle oracle(const std::string &path) {
    std::string text;
    for (const std::string &line : split_lines(read_file(path))) {
        const size_t first = line.find_first_not_of(" \t");
        if (first != std::string::npos && (line[first] == '"' || line[first] == '*')) continue;
        text += line + "\n";
    }
    for (char &ch : text)
        if (ch == ',' || ch == '{' || ch == '}' || ch == '(' || ch == ')') ch = ' ';
    std::istringstream in(text);
    Oracle o;
    int64_t nblocks;
    in >> o.m >> nblocks;
    std::vector<int64_t> offset;
    int64_t total = 0;
    for (int64_t k = 0; k < nblocks; ++k) {
        int64_t s;
        in >> s;
        o.sizes.push_back(s);
        offset.push_back(total);
        total += std::llabs(s);
    }
    for (int64_t i = 0; i < o.m; ++i) {
        double v;
        in >> v;
        o.c.push_back(v);
    }
    int64_t mat, blk, i, j;
    double v;
    while (in >> mat >> blk >> i >> j >> v) o.entries[{mat, offset[size_t(blk - 1)] + i, offset[size_t(blk - 1)] + j}] = v;
    return o;
}

struct Library {
    const char *file;
    int64_t m;
    std::vector<int64_t> sizes;  // as the data README lists them
    int64_t entries;
};

// From tests/opt/data/README.md (the table of the eight problems).
const std::vector<Library> library = {
    {"control1.dat-s", 21, {10, 5}, 350},       {"theta1.dat-s", 104, {50}, 1428},
    {"truss1.dat-s", 6, {2, 2, 2, 2, 2, 2, 1}, 26}, {"hinf1.dat-s", 13, {4, 4, 6}, 101},
    {"mcp100.dat-s", 100, {100}, 469},          {"gpp100.dat-s", 101, {100}, 5513},
    {"qap5.dat-s", 136, {26}, 1351},            {"arch0.dat-s", 174, {161, -174}, 3222},
};

TEST(E04rd, EverySdplibFileReadWithTheQueriedSizes) {
    for (const Library &lib : library)
        for (Api api : both) {
            SCOPED_TRACE(std::string(lib.file) + " " + name(api));
            const std::string path = data_dir + lib.file;
            int64_t nvar = 0, nblk = 0, nnz = 0;
            ASSERT_TRUE(query(api, path, nvar, nblk, nnz));
            int64_t expanded = 0;
            for (int64_t s : lib.sizes) expanded += s < 0 ? -s : 1;
            EXPECT_EQ(nvar, lib.m);
            EXPECT_EQ(nblk, expanded);
            EXPECT_EQ(nnz, lib.entries);

            const Read r = read_file_with(api, path, nvar, nblk, nnz);
            expect_success(r.report);
            EXPECT_EQ(r.nvar, lib.m);
            // Block sizes: positive ones as written, a diagonal block as blocks of 1.
            I sizes;
            for (int64_t s : lib.sizes)
                if (s > 0)
                    sizes.push_back(s);
                else
                    sizes.insert(sizes.end(), size_t(-s), 1);
            EXPECT_EQ(r.blksizea, sizes);

            const Oracle o = oracle(path);
            EXPECT_EQ(o.sizes, lib.sizes);
            EXPECT_EQ(r.cvec, o.c);
            ASSERT_EQ(int64_t(o.entries.size()), nnz);
            // Grouped by matrix in order, each group sorted by row and column.
            int64_t k = 0;
            for (int64_t mat = 0; mat <= nvar; ++mat)
                for (int64_t n = 0; n < r.nnza[size_t(mat)]; ++n, ++k) {
                    const auto it = o.entries.find({mat, r.irowa[size_t(k)], r.icola[size_t(k)]});
                    ASSERT_NE(it, o.entries.end()) << "entry " << k;
                    EXPECT_EQ(it->second, r.a[size_t(k)]) << "entry " << k;
                    if (n > 0) {
                        EXPECT_LT(std::make_pair(r.irowa[size_t(k - 1)], r.icola[size_t(k - 1)]),
                                  std::make_pair(r.irowa[size_t(k)], r.icola[size_t(k)]));
                    }
                }
            EXPECT_EQ(k, nnz);

            // What was read defines a matrix inequality as it stands.
            Handle h(nvar);
            int64_t idblk = 0;
            expect_success(rn(Api::c, h.get(), nvar, std::accumulate(sizes.begin(), sizes.end(), int64_t(0)),
                              r.nnza.data(), nnz, r.irowa.data(), r.icola.data(), r.a.data(), nblk,
                              r.blksizea.data(), &idblk));
            EXPECT_EQ(idblk, 1);
        }
}

TEST(E04rd, SizesTooSmallReportAllThreeAndReturnNothingElse) {
    const std::string path = data_dir + "control1.dat-s";
    for (Api api : both) {
        const Read r = read_file_with(api, path, 21, 2, 349);
        expect_failure(r.report,
                       "NE_INT_MAX:\n  At least one of maxnvar, maxnblk or maxnnz is too small.\n  maxnvar should be at "
                       "least 21, was 21.\n  maxnblk should be at least 2, was 2.\n  maxnnz should be at least 350, "
                       "was 349.",
                       5);
        EXPECT_EQ(r.nvar, 21);
        EXPECT_EQ(r.nblk, 2);
        EXPECT_EQ(r.cvec[0], -7);
        EXPECT_EQ(r.a[0], -7);
        // nnza fits, so it is returned: its sum is the maxnnz needed.
        EXPECT_EQ(std::accumulate(r.nnza.begin(), r.nnza.end(), int64_t(0)), 350);
        const Read q = read_file_with(api, path, 20, 2, 400);
        EXPECT_EQ(q.nnza[0], -7);  // nnza too short: untouched
    }
}

TEST(E04rd, CQueryWithNullArraysAndNullArraysThatAreNeeded) {
    const std::string path = data_dir + "truss1.dat-s";
    int64_t unit = open_unit(path);
    int64_t nvar = 0, nblk = 0;
    KorError e = KOR_ERROR_INIT;
    e04rdc(unit, 0, 0, 0, &nvar, &nblk, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &e);
    EXPECT_EQ(e.code, NE_INT_MAX);
    EXPECT_EQ(nvar, 6);
    EXPECT_EQ(nblk, 7);
    close_unit(unit);
    unit = open_unit(path);
    I blk(7), nnza(7), rows(26), cols(26);
    R c(6);
    e04rdc(unit, 6, 7, 26, &nvar, &nblk, blk.data(), c.data(), nnza.data(), rows.data(), cols.data(), nullptr, &e);
    EXPECT_EQ(std::string(e.message), "NE_BAD_PARAM:\n  On entry, parameter a had an illegal value.");
    close_unit(unit);
}

// A file written for the test, read through both interfaces.
Read read_text(Api api, const std::string &text, int64_t maxnvar = 100, int64_t maxnblk = 100, int64_t maxnnz = 100) {
    Scratch s;
    const std::string path = s.file("problem.dat-s");
    write_file(path, text);
    return read_file_with(api, path, maxnvar, maxnblk, maxnnz);
}

TEST(E04rd, EveryDialectOfTheFormat) {
    const std::string text =
        "\" a comment line in double quotes\n"
        "* and one starting with an asterisk\n"
        "   * indented too\n"
        "  3   \n"
        "\t3 \t\n"
        "{2, -2, (-1)}  \n"
        "(+1.0, -0.0, 2)\n"
        "\n"
        " 0 1 1 1 +1.5  \n"
        "0,1,1,2,-2.5e-1\n"
        "1 2 2 2 3\n"
        "\n"
        "2 3 1 1 1.0D+00\r\n"
        "3\t1\t2\t2\t-0.0\n"
        "1 1 2 2 4E2 trailing words are not looked at\n";
    for (Api api : both) {
        const Read r = read_text(api, text);
        expect_success(r.report);
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
    }
}

TEST(E04rd, EveryLineNumberedRefusal) {
    struct Case {
        std::string text;
        std::string message;
        int64_t outcome;
    };
    const std::string head = "2\n2\n2 -2\n1 2\n";  // entries begin on line 5
    const std::string long_token(65, '1');
    const std::vector<Case> cases = {
        {"", "NE_NOT_READ_FILE:\n  The input stream seems to be empty.\n  No data was read.", 2},
        {"\n  \n\" only a comment\n", "NE_NOT_READ_FILE:\n  The input stream seems to be empty.\n  No data was read.", 2},
        {"2\n", "NE_FILE_INCOMPLETE:\n  A premature end of the input stream.\n  The part defining the number of blocks was not found.", 2},
        {"2\n1\n\n", "NE_FILE_INCOMPLETE:\n  A premature end of the input stream.\n  The part defining the block sizes was not found.", 2},
        {"2\n1\n3\n", "NE_FILE_INCOMPLETE:\n  A premature end of the input stream.\n  The part defining the objective function was not found.", 2},
        {"2\n3\n1 2\n", "NE_WRONG_NUM_TOKENS:\n  Not enough data was given on line 3 specifying block sizes.\n  Expected 3 tokens but found only 2.", 3},
        {"3\n1\n{2}\n{1, 2}\n", "NE_WRONG_NUM_TOKENS:\n  Not enough data was given on line 4 specifying the objective function.\n  Expected 3 tokens but found only 2.", 3},
        {head + "0 1 1 1\n", "NE_WRONG_NUM_TOKENS:\n  Not enough data was given on line 5 specifying nonzero matrix elements.\n  Expected 5 tokens but found only 4.", 3},
        {"\" comment\ntwo\n", "NE_INVALID_FORMAT:\n  The token on line 2 at position 1 to 3 was not recognized as a valid integer.", 3},
        {"2\n 1.0\n", "NE_INVALID_FORMAT:\n  The token on line 2 at position 2 to 4 was not recognized as a valid integer.", 3},
        {"2\n1\n3\n1 1.0.0\n", "NE_INVALID_FORMAT:\n  The token on line 4 at position 3 to 7 was not recognized as a valid real number.", 3},
        {"2\n1\n3\n1 nan\n", "NE_INVALID_FORMAT:\n  The token on line 4 at position 3 to 5 was not recognized as a valid real number.", 3},
        {"2\n1\n3\n1 1e999\n", "NE_INVALID_FORMAT:\n  The token on line 4 at position 3 to 7 was not recognized as a valid real number.", 3},
        {"2\n1\n3\n" + long_token + " 1\n", "NE_INVALID_FORMAT:\n  The token on line 4 starting at position 1 was too long and was not recognized.", 3},
        {"99999999999999999999\n", "NE_INVALID_FORMAT:\n  The token on line 1 at position 1 to 20 was not recognized as a valid integer.", 3},
        {"0\n", "NE_INVALID_FORMAT:\n  The number of variables given on line 1 is 0.\n  It needs to be at least 1.", 4},
        {"2\n-1\n", "NE_INVALID_FORMAT:\n  The number of blocks given on line 2 is -1.\n  It needs to be at least 1.", 4},
        {"2\n2\n3 0\n", "NE_INVALID_FORMAT:\n  The block size on line 3 at position 3 to 3 needs to be nonzero.\n  A negative size marks a diagonal block.", 4},
        {"2\n2\n9223372036854775807 1\n", "NE_INVALID_FORMAT:\n  The block sizes on line 3 add up to a dimension too large to be represented.", 4},
        {head + "3 1 1 1 1.0\n", "NE_INVALID_FORMAT:\n  The matrix number on line 5 is 3.\n  It needs to be between 0 and 2.", 4},
        {head + "0 1 1 1 1.0\n\n1 0 1 1 1.0\n", "NE_INVALID_FORMAT:\n  The block number on line 7 is 0.\n  It needs to be between 1 and 2.", 4},
        {head + "0 1.5 1 1 1.0\n", "NE_INVALID_FORMAT:\n  The token on line 5 at position 3 to 5 was not recognized as a valid integer.", 3},
        {head + "0 1 3 3 1.0\n", "NE_INVALID_FORMAT:\n  The row index on line 5 is 3.\n  It needs to be between 1 and 2, the size of block 1.", 4},
        {head + "0 2 1 0 1.0\n", "NE_INVALID_FORMAT:\n  The column index on line 5 is 0.\n  It needs to be between 1 and 2, the size of block 2.", 4},
        {head + "0 1 2 1 1.0\n", "NE_INVALID_FORMAT:\n  The nonzero element on line 5 has row 2 and column 1.\n  The specified nonzero element is not in the upper triangle.", 4},
        {head + "0 2 1 2 1.0\n", "NE_INVALID_FORMAT:\n  The nonzero element on line 5 has row 1 and column 2.\n  Block 2 is diagonal, its elements must lie on the diagonal.", 4},
        {head + "1 1 1 2 1.0\n0 1 1 2 1.0\n2 2 2 2 1.0\n1 1 1 2 1.0\n",
         "NE_DUPLICATE_ELEMENT:\n  The nonzero element on line 8 was defined more than once.\n  All entries need to be unique.", 4},
        // The same value does not make a repeat acceptable; the first line
        // that repeats is named, before a failure on a later line.
        {head + "1 2 2 2 5.0\n1 1 1 1 1.0\n1 1 1 1 1.0\n1 2 2 2 5.0\n0 1 x 1 1.0\n",
         "NE_DUPLICATE_ELEMENT:\n  The nonzero element on line 7 was defined more than once.\n  All entries need to be unique.", 4},
        // Comments are allowed only before the data.
        {"2\n\" late comment\n", "NE_INVALID_FORMAT:\n  The token on line 2 at position 1 to 1 was not recognized as a valid integer.", 3},
    };
    for (const Case &c : cases)
        for (Api api : both) {
            SCOPED_TRACE(c.text);
            expect_failure(read_text(api, c.text).report, c.message, c.outcome);
        }
}

TEST(E04rd, UnitMustBeConnectedForReading) {
    Scratch s;
    const int64_t out = open_unit(s.file("out.txt"), 1);
    for (Api api : both)
        for (int64_t unit : {out, int64_t(77), int64_t(-1)}) {
            int64_t nvar, nblk;
            I i(1);
            R r(1);
            expect_failure(rd(api, unit, 0, 0, 0, &nvar, &nblk, i.data(), r.data(), i.data(), i.data(), i.data(), r.data()),
                           "NE_INT:\n  On entry, infile = " + std::to_string(unit) +
                               ".\n  Constraint: infile must be a unit connected for reading.",
                           1);
        }
    close_unit(out);
}

TEST(E04rd, LinesAreCountedFromWhereTheUnitStands) {
    // A caller that read a line of its own first: the count starts after it.
    Scratch s;
    write_file(s.file("p.dat-s"), "header of the caller\n2\n1\nx\n");
    const int64_t unit = open_unit(s.file("p.dat-s"));
    char line[80];
    KorError e = KOR_ERROR_INIT;
    x04bbc(unit, line, sizeof line, &e);
    int64_t nvar, nblk;
    I i(4);
    R r(4);
    expect_failure(rd(Api::c, unit, 3, 3, 3, &nvar, &nblk, i.data(), r.data(), i.data(), i.data(), i.data(), r.data()),
                   "NE_INVALID_FORMAT:\n  The token on line 3 at position 1 to 1 was not recognized as a valid integer.");
    close_unit(unit);
}

}  // namespace
