// e04ry: the sections of every keyword, matched without regard to case,
// the Overview's lines, the option listings, the dumps, the potato, and
// the refusals.
#include "opt/problem.hpp"
#include "opt_support.hpp"

using namespace opt_test;

namespace {

// A small LP: 3 variables, bounds, a linear objective, 2 linear constraints.
void build_lp(Handle &h) {
    const R bl = {0, -1e20, 1}, bu = {1e20, 4, 1}, c = {1, 2, 0};
    expect_success(rh(Api::c, h.get(), 3, bl.data(), bu.data()));
    expect_success(re(Api::c, h.get(), 3, c.data()));
    const R lbl = {1, -1e30}, lbu = {1, 5}, b = {1, 1, 1, -1};
    const I row = {1, 1, 2, 2}, col = {1, 2, 2, 3};
    int64_t id = 0;
    expect_success(rj(Api::c, h.get(), 2, lbl.data(), lbu.data(), 4, row.data(), col.data(), b.data(), &id));
}

bool has_line(const std::string &text, const std::string &line) {
    for (const std::string &l : split_lines(text))
        if (l == line) return true;
    return false;
}

TEST(E04ry, EveryKeywordPrintsItsHeading) {
    const std::vector<std::pair<std::string, std::string>> sections = {
        {"OVERVIEW", " Overview"},
        {"SIMPLE BOUNDS", " Simple bounds"},
        {"LINEAR CONSTRAINTS BOUNDS", " Linear constraints bounds"},
        {"LINEAR CONSTRAINTS DETAILED", " Linear constraints (detailed)"},
        {"NONLINEAR CONSTRAINTS BOUNDS", " Nonlinear constraints bounds"},
        {"NONLINEAR CONSTRAINTS DETAILED", " Sparsity pattern of the nonlinear constraints"},
        {"QUADRATIC CONSTRAINTS DETAILED", " Quadratic constraints (detailed)"},
        {"CONE CONSTRAINTS", " Cone constraints"},
        {"CONE CONSTRAINTS DETAILED", " Cone constraints"},
        {"MATRIX CONSTRAINTS", " Matrix constraints"},
        {"MATRIX CONSTRAINTS DETAILED", " Matrix constraints (detailed)"},
        {"MULTIPLIERS SIZES", " Lagrangian multipliers sizes"},
        {"OPTIONS", " Option settings"},
        {"ALL OPTIONS", " All option settings"},
        {"OBJECTIVE", " Objective function"},
    };
    Handle h(3);
    build_lp(h);
    for (const auto &[keyword, heading] : sections) {
        SCOPED_TRACE(keyword);
        const std::string text = printed(h.get(), keyword);
        EXPECT_EQ(split_lines(text).at(0), heading) << text;
        // Without regard to case, surrounding blanks or repeated blanks.
        std::string mixed;
        for (size_t i = 0; i < keyword.size(); ++i)
            mixed += keyword[i] == ' ' ? std::string("   ") : std::string(1, i % 2 ? char(std::tolower(keyword[i])) : keyword[i]);
        EXPECT_EQ(printed(h.get(), "  " + mixed + "\t"), text);
    }
}

TEST(E04ry, OverviewLines) {
    Handle h(3);
    build_lp(h);
    const std::string text = printed(h.get(), "Overview");
    EXPECT_EQ(text,
              " Overview\n"
              "   Status:                  Problem and option settings are editable.\n"
              "   No of variables:         3\n"
              "   Objective function:      linear\n"
              "   Simple bounds:           defined\n"
              "   Linear constraints:      2\n"
              "   Nonlinear constraints:   not defined\n"
              "   Cone constraints:        not defined\n"
              "   Quadratic constraints:   not defined\n"
              "   Matrix constraints:      not defined\n");
    Handle empty(0);
    const std::string none = printed(empty.get(), "overview");
    EXPECT_TRUE(has_line(none, "   Objective function:      not defined")) << none;
    EXPECT_TRUE(has_line(none, "   Simple bounds:           not defined")) << none;
}

TEST(E04ry, SectionsInTheOrderGivenSeparatedByCommasOrSemicolons) {
    Handle h(3);
    build_lp(h);
    const std::string both_sections = printed(h.get(), "objective;overview , simple bounds");
    const std::string expected =
        printed(h.get(), "objective") + printed(h.get(), "overview") + printed(h.get(), "simple bounds");
    EXPECT_EQ(both_sections, expected);
    EXPECT_TRUE(has_line(expected, "   x[2]                   -inf   4.000000e+00")) << expected;
}

TEST(E04ry, EmptyConstraintSections) {
    Handle h(2);
    for (const char *k : {"SIMPLE BOUNDS", "LINEAR CONSTRAINTS BOUNDS", "LINEAR CONSTRAINTS DETAILED",
                          "NONLINEAR CONSTRAINTS BOUNDS", "NONLINEAR CONSTRAINTS DETAILED",
                          "QUADRATIC CONSTRAINTS DETAILED", "CONE CONSTRAINTS", "MATRIX CONSTRAINTS"}) {
        const std::vector<std::string> lines = split_lines(printed(h.get(), k));
        ASSERT_EQ(lines.size(), 2u) << k;
        EXPECT_EQ(lines[1], "   no constraints defined") << k;
    }
}

TEST(E04ry, ObjectiveParts) {
    const I one = {1}, two = {2}, both_idx = {1, 2};
    const R v = {2.5};
    {
        Handle h(2);
        int64_t id = -1;
        expect_success(rs(Api::c, h.get(), 3.0, 1, two.data(), v.data(), 1, one.data(), two.data(), v.data(), 0, 0, &id));
        const std::string text = printed(h.get(), "objective");
        for (const char *line : {"   constant part   3.000000e+00", "   linear part", "      x[2]   2.500000e+00",
                                 "   quadratic part", "      (1,2)              2.500000e+00"})
            EXPECT_TRUE(has_line(text, line)) << line << "\n" << text;
    }
    {
        Handle h(2);
        int64_t id = -1;
        expect_success(rt(Api::c, h.get(), 0.0, 4, 1, one.data(), two.data(), v.data(), 0, one.data(), v.data(), 0, 0, &id));
        EXPECT_TRUE(has_line(printed(h.get(), "objective"),
                             "   quadratic part (factorized quadratic term), F with 4 rows"));
    }
    {
        Handle h(2);
        expect_success(rg(Api::c, h.get(), 2, both_idx.data()));
        const std::string text = printed(h.get(), "objective");
        EXPECT_TRUE(has_line(text, "   sparsity pattern of the nonlinear objective")) << text;
        EXPECT_TRUE(has_line(text, "      x[1] x[2]")) << text;
        EXPECT_TRUE(has_line(printed(h.get(), "overview"), "   Objective function:      nonlinear"));
    }
    {
        Handle h(2);
        expect_success(rm(Api::c, h.get(), 3, 0, 1, one.data(), one.data()));
        EXPECT_TRUE(has_line(printed(h.get(), "objective"), "   dense nonlinear least-squares objective, 3 residuals"));
        EXPECT_TRUE(has_line(printed(h.get(), "overview"), "   Objective function:      nonlinear least-squares"));
        expect_success(rm(Api::c, h.get(), 3, 1, 1, two.data(), one.data()));
        const std::string text = printed(h.get(), "objective");
        EXPECT_TRUE(has_line(text, "   sparse nonlinear least-squares objective, 3 residuals")) << text;
        EXPECT_TRUE(has_line(text, "   sparsity pattern of the residuals")) << text;
        EXPECT_TRUE(has_line(text, "      (2,1)")) << text;
    }
    {
        Handle h(2);
        const std::string text = printed(h.get(), "objective");
        EXPECT_TRUE(has_line(text, "   not defined")) << text;
    }
}

TEST(E04ry, ConeQuadraticMatrixAndNonlinearSections) {
    Handle h(3);
    const I g = {3, 1, 2}, one = {1}, two = {2};
    int64_t id = 0;
    expect_success(rb(Api::c, h.get(), "RQUAD", 3, g.data(), &id));
    EXPECT_TRUE(has_line(printed(h.get(), "cone constraints"), "   cone 1: rotated quadratic, 3 variables"));
    EXPECT_TRUE(has_line(printed(h.get(), "cone constraints detailed"), "      x[3] x[1] x[2]"));
    const R lo = {-1}, hi = {1e20};
    expect_success(rk(Api::c, h.get(), 1, lo.data(), hi.data(), 1, one.data(), two.data()));
    EXPECT_TRUE(has_line(printed(h.get(), "nonlinear constraints bounds"), "   n[1]          -1.000000e+00            inf"));
    const std::string pattern = printed(h.get(), "nonlinear constraints detailed");
    EXPECT_TRUE(has_line(pattern, "   n[1]: 1 nonzeros")) << pattern;
    EXPECT_TRUE(has_line(pattern, "      x[2]")) << pattern;
    const I nnza = {1, 0, 0, 1}, row = {1, 2}, col = {1, 2}, blk = {1, 1};
    const R a = {1, 2};
    id = 0;
    expect_success(rn(Api::c, h.get(), 3, 2, nnza.data(), 2, row.data(), col.data(), a.data(), 2, blk.data(), &id));
    const std::string m = printed(h.get(), "matrix constraints detailed");
    EXPECT_TRUE(has_line(m, "   matrix constraint 1: dimension 2, 2 diagonal blocks, polynomial of order 1")) << m;
    EXPECT_TRUE(has_line(m, "      block sizes: 1 1")) << m;
    EXPECT_TRUE(has_line(m, "      A_3: 1 entries")) << m;
    const std::string sizes = printed(h.get(), "multipliers sizes");
    EXPECT_TRUE(has_line(sizes, "   Simple bounds:           6")) << sizes;
    EXPECT_TRUE(has_line(sizes, "   Cone constraints:        3")) << sizes;
    EXPECT_TRUE(has_line(sizes, "   Matrix constraints (ua): 2")) << sizes;
}

TEST(E04ry, OptionListingsThroughTheRegistry) {
    Handle h(1);
    const std::vector<std::string> normal = split_lines(printed(h.get(), "options"));
    ASSERT_GE(normal.size(), 3u);
    EXPECT_EQ(normal[0], " Option settings");
    EXPECT_NE(std::find(normal.begin(), normal.end(), "Begin of Options"), normal.end());
    EXPECT_NE(std::find(normal.begin(), normal.end(), "End of Options"), normal.end());
    const std::vector<std::string> all = split_lines(printed(h.get(), "all options"));
    EXPECT_EQ(all[0], " All option settings");
    EXPECT_GE(all.size(), normal.size());
}

TEST(E04ry, DumpsTasksAndValidity) {
    Handle h(2);
    EXPECT_EQ(printed(h.get(), "$TASKS$"), " Task queue not available at this phase yet.\n");
    EXPECT_EQ(printed(h.get(), "$tids$"), " Task identifiers not available at this phase yet.\n");
    const std::string validity = printed(h.get(), "$VALIDITY$");
    EXPECT_TRUE(has_line(validity, "   header: 65535 84 65 76 86 83 72 76")) << validity;
    const std::string almost = printed(h.get(), "$DUMP$ALMOST$ALL$");
    const std::string all = printed(h.get(), "$DUMP$ALL$");
    EXPECT_EQ(almost.find("Begin of Options"), std::string::npos);
    EXPECT_NE(all.find("Begin of Options"), std::string::npos);
    EXPECT_NE(almost.find(" Overview\n"), std::string::npos);
}

TEST(E04ry, PotatoIsRememberedPerHandle) {
    Handle a(1), b(1);
    EXPECT_EQ(printed(a.get(), "POTATO"), " Congratulations, you found a potato!\n");
    EXPECT_EQ(printed(a.get(), "potato"), " You already have a potato!\n");
    EXPECT_EQ(printed(b.get(), "Potato, potato"),
              " Congratulations, you found a potato!\n You already have a potato!\n");
}

TEST(E04ry, Refusals) {
    Handle h(2);
    Scratch s;
    KorError e = KOR_ERROR_INIT;
    int64_t in = -1;
    write_file(s.file("in.txt"), "x\n");
    kor_file_open(s.file("in.txt").c_str(), 0, &in, &e);
    for (Api api : both) {
        expect_failure(ry(api, h.get(), -1, "OVERVIEW, OVERVIEWS"),
                       "NE_STR_UNKNOWN:\n  Keyword number 2 is not recognized.", 6);
        expect_failure(ry(api, h.get(), -1, ",OVERVIEW;; SIMPLE BOUND"),
                       "NE_STR_UNKNOWN:\n  Keyword number 2 is not recognized.", 6);
        expect_failure(ry(api, h.get(), -1, "NONLINEAR CONSTRAINTS DETAILEDX"),
                       "NE_STR_UNKNOWN:\n  Keyword number 1 is not recognized, it is too long.", 6);
        expect_failure(ry(api, h.get(), -1, ""), "NE_STR_UNKNOWN:\n  cmdstr does not contain any keywords or is empty.", 6);
        expect_failure(ry(api, h.get(), -1, " , ;  "),
                       "NE_STR_UNKNOWN:\n  cmdstr does not contain any keywords or is empty.", 6);
        expect_failure(ry(api, h.get(), 77, "OVERVIEW"), "NE_WRITE_ERROR:\n  An error occurred when writing to output.", 5);
        expect_failure(ry(api, h.get(), in, "OVERVIEW"), "NE_WRITE_ERROR:\n  An error occurred when writing to output.", 5);
        // A negative unit writes nothing and is no failure.
        expect_success(ry(api, h.get(), -1, "OVERVIEW, ALL OPTIONS"));
    }
    kor_file_close(in, &e);
    // Nothing is written when a later keyword is wrong.
    const std::string path = s.file("out.txt");
    int64_t out = -1;
    kor_file_open(path.c_str(), 1, &out, &e);
    e04ryc(h.get(), out, "OVERVIEW, nonsense", &e);
    EXPECT_EQ(e.code, NE_STR_UNKNOWN);
    kor_file_close(out, &e);
    EXPECT_EQ(read_file(path), "");
    // A failed print does not hand out the potato twice: it is remembered.
    e04ryc(h.get(), 77, "POTATO", &e);
    EXPECT_EQ(printed(h.get(), "POTATO"), " You already have a potato!\n");
}

TEST(E04ry, FortranCharacterArgumentIsBlankPadded) {
    Handle h(2);
    const std::string padded = "overview                                ";
    Scratch s;
    KorError e = KOR_ERROR_INIT;
    int64_t unit = -1;
    kor_file_open(s.file("f.txt").c_str(), 1, &unit, &e);
    void *handle = h.get();
    int64_t ifail = 1;
    e04ryf_(&handle, &unit, padded.data(), &ifail, padded.size());
    kor_file_close(unit, &e);
    EXPECT_EQ(ifail, 0);
    EXPECT_EQ(read_file(s.file("f.txt")), printed(h.get(), "OVERVIEW"));
}

}  // namespace
