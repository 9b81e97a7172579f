// e04ry: a section per keyword (case and blanks aside), in the order given, read back into the
// values the handle was given; the refusals, checked before anything is written.
#include <map>
#include <sstream>

#include "opt_support.hpp"

using namespace opt_test;
using E = kor::e04ry::Exit;

namespace {

// A small LP: 3 variables, bounds, a linear objective, 2 linear constraints.
void build_lp(void *h) {
    const R bl = {0, -1e20, 1}, bu = {1e20, 4, 1}, c = {1, 2, 0}, lbl = {1, -1e30}, lbu = {1, 5}, b = {1, 1, 1, -1};
    const I row = {1, 1, 2, 2}, col = {1, 2, 2, 3};
    KorError f = fresh_error();
    int64_t id = 0;
    e04rhc(h, 3, bl.data(), bu.data(), &f);
    e04rec(h, 3, c.data(), &f);
    e04rjc(h, 2, lbl.data(), lbu.data(), 4, row.data(), col.data(), b.data(), &id, &f);
    expect_success(f);
}

// A section after its heading: the words of each line joined by one blank, the lines by " | "
// (the values and their order, not the layout).
std::string body(const std::string &text) {
    std::string out;
    const std::vector<std::string> lines = split_lines(text);
    for (size_t i = 1; i < lines.size(); ++i) {
        std::istringstream s(lines[i]);
        out += i > 1 ? " |" : "";
        for (std::string w; s >> w;) out += (out.empty() ? "" : " ") + w;
    }
    return out;
}

// "   Label:   value" lines as a map.
std::map<std::string, std::string> labels(const std::string &text) {
    std::map<std::string, std::string> out;
    for (const std::string &l : split_lines(text))
        if (l.size() > 28 && l.find(':') != std::string::npos) out[l.substr(3, l.find(':') - 3)] = l.substr(28);
    return out;
}

TEST(E04ry, EveryKeywordPrintsItsSectionWithoutRegardToCaseOrBlanks) {
    const std::vector<std::pair<std::string, std::string>> sections = {
        {"OVERVIEW", " Overview"}, {"SIMPLE BOUNDS", " Simple bounds"},
        {"LINEAR CONSTRAINTS BOUNDS", " Linear constraints bounds"},
        {"LINEAR CONSTRAINTS DETAILED", " Linear constraints (detailed)"},
        {"NONLINEAR CONSTRAINTS BOUNDS", " Nonlinear constraints bounds"},
        {"NONLINEAR CONSTRAINTS DETAILED", " Sparsity pattern of the nonlinear constraints"},
        {"QUADRATIC CONSTRAINTS DETAILED", " Quadratic constraints (detailed)"},
        {"CONE CONSTRAINTS", " Cone constraints"}, {"CONE CONSTRAINTS DETAILED", " Cone constraints"},
        {"MATRIX CONSTRAINTS", " Matrix constraints"}, {"MATRIX CONSTRAINTS DETAILED", " Matrix constraints (detailed)"},
        {"MULTIPLIERS SIZES", " Lagrangian multipliers sizes"}, {"OPTIONS", " Option settings"},
        {"ALL OPTIONS", " All option settings"}, {"OBJECTIVE", " Objective function"},
    };
    Handle h(3);
    build_lp(h.get());
    std::string all, together;
    for (const auto &[keyword, heading] : sections) {
        SCOPED_TRACE(keyword);
        const std::string text = printed(h.get(), keyword);
        EXPECT_EQ(split_lines(text).at(0), heading) << text;
        std::string mixed;
        for (size_t i = 0; i < keyword.size(); ++i)
            mixed += keyword[i] == ' ' ? std::string(" \t ") : std::string(1, i % 2 ? char(std::tolower(keyword[i])) : keyword[i]);
        EXPECT_EQ(printed(h.get(), "  " + mixed + "\t"), text);
        together += (all.empty() ? "" : together.size() % 2 ? ", " : " ;") + keyword;
        all += text;
    }
    // Sections come in the order given, separated by commas or semicolons.
    EXPECT_EQ(printed(h.get(), together), all);
    // Without constraints of a kind, its sections say so.
    Handle empty(2);
    for (const char *k : {"SIMPLE BOUNDS", "LINEAR CONSTRAINTS BOUNDS", "LINEAR CONSTRAINTS DETAILED",
                          "NONLINEAR CONSTRAINTS BOUNDS", "NONLINEAR CONSTRAINTS DETAILED",
                          "QUADRATIC CONSTRAINTS DETAILED", "CONE CONSTRAINTS", "MATRIX CONSTRAINTS"})
        EXPECT_EQ(split_lines(printed(empty.get(), k)), (std::vector<std::string>{split_lines(printed(h.get(), k))[0], "   no constraints defined"}));
}

TEST(E04ry, OverviewAndMultipliersCountWhatTheHandleHolds) {
    Handle h(3);
    std::map<std::string, std::string> overview = {{"Status", "Problem and option settings are editable."}, {"No of variables", "3"}};
    for (const char *part : {"Objective function", "Simple bounds", "Linear constraints", "Nonlinear constraints",
                             "Cone constraints", "Quadratic constraints", "Matrix constraints"})
        overview[part] = "not defined";
    EXPECT_EQ(labels(printed(h.get(), "overview")), overview);
    build_lp(h.get());
    KorError f = fresh_error();
    const I g = {3, 1, 2}, one = {1}, two = {2}, nnza = {1, 0, 0, 1}, row = {1, 2}, col = {1, 2}, blk = {2, 1};
    const R lo = {-1}, hi = {1e20}, a = {1, 2};
    int64_t id = 0;
    e04rbc(h.get(), "RQUAD", 3, g.data(), &id, &f);
    e04rkc(h.get(), 1, lo.data(), hi.data(), 1, one.data(), two.data(), &f);
    e04rsc(h.get(), 0, 1, one.data(), lo.data(), 0, nullptr, nullptr, nullptr, 0, 1, &(id = 0), &f);
    e04rnc(h.get(), 3, 3, nnza.data(), 2, row.data(), col.data(), a.data(), 2, blk.data(), &(id = 0), &f);
    expect_success(f);
    for (const char *part : {"Nonlinear constraints", "Cone constraints", "Quadratic constraints", "Matrix constraints"})
        overview[part] = "1";
    overview["Objective function"] = "linear", overview["Simple bounds"] = "defined", overview["Linear constraints"] = "2";
    EXPECT_EQ(labels(printed(h.get(), "overview")), overview);
    // Two per bound and constraint, one per cone member and per upper-triangle element of each block.
    const std::map<std::string, std::string> sizes = {
        {"Simple bounds", "6"}, {"Linear constraints", "4"}, {"Nonlinear constraints", "2"},
        {"Quadratic constraints", "2"}, {"Cone constraints", "3"}, {"Total (u)", "17"}, {"Matrix constraints (ua)", "4"}};
    EXPECT_EQ(labels(printed(h.get(), "multipliers sizes")), sizes);
}

TEST(E04ry, BoundsAndLinearConstraintsReadBack) {
    Handle h(3);
    build_lp(h.get());
    // A bound at or beyond bigbnd prints as infinite.
    EXPECT_EQ(body(printed(h.get(), "simple bounds")), "lower bound upper bound | x[1] 0.000000e+00 inf | "
                                                       "x[2] -inf 4.000000e+00 | x[3] 1.000000e+00 1.000000e+00");
    EXPECT_EQ(body(printed(h.get(), "linear constraints bounds")),
              "lower bound upper bound | l[1] 1.000000e+00 1.000000e+00 | l[2] -inf 5.000000e+00");
    EXPECT_EQ(body(printed(h.get(), "objective")), "linear part | x[1] 1.000000e+00 | x[2] 2.000000e+00");  // zeros left out
    // Each row: its bounds and its entries by column.
    EXPECT_EQ(body(printed(h.get(), "linear constraints detailed")),
              "l[1]: bounds 1.000000e+00, 1.000000e+00; 2 nonzeros | x[1] 1.000000e+00 | x[2] 1.000000e+00 | "
              "l[2]: bounds -inf, 5.000000e+00; 2 nonzeros | x[2] 1.000000e+00 | x[3] -1.000000e+00");
    // bigbnd is the option: with a larger one, 1e20 is a finite bound.
    KorError f = fresh_error();
    e04zmc(h.get(), "Infinite Bound Size = 1e21", &f);
    EXPECT_NE(body(printed(h.get(), "simple bounds")).find("x[1] 0.000000e+00 1.000000e+20 |"), std::string::npos);
}

TEST(E04ry, ObjectiveParts) {
    const I one = {1}, two = {2}, both = {1, 2};
    const R v = {2.5};
    KorError f = fresh_error();
    int64_t id = -1;
    Handle quad(2), fact(2), nonlinear(2), ls(2), none(2), dense(2);
    e04rfc(dense.get(), 1, one.data(), v.data(), 1, one.data(), two.data(), v.data(), &f);  // no constant part
    EXPECT_EQ(body(printed(dense.get(), "objective")), "linear part | x[1] 2.500000e+00 | quadratic part | (1,2) 2.500000e+00");
    e04rsc(quad.get(), 3.0, 1, two.data(), v.data(), 1, one.data(), two.data(), v.data(), 0, 0, &id, &f);
    EXPECT_EQ(body(printed(quad.get(), "objective")),
              "constant part 3.000000e+00 | linear part | x[2] 2.500000e+00 | quadratic part | (1,2) 2.500000e+00");
    e04rtc(fact.get(), 0.0, 4, 1, one.data(), two.data(), v.data(), 0, nullptr, nullptr, 0, 0, &id, &f);
    EXPECT_EQ(body(printed(fact.get(), "objective")), "quadratic part (factorized quadratic term), F with 4 rows | (1,2) 2.500000e+00");
    e04rgc(nonlinear.get(), 2, both.data(), &f);
    EXPECT_EQ(body(printed(nonlinear.get(), "objective")), "sparsity pattern of the nonlinear objective | x[1] x[2]");
    e04rmc(ls.get(), 3, 0, 0, nullptr, nullptr, &f);
    EXPECT_EQ(body(printed(ls.get(), "objective")), "dense nonlinear least-squares objective, 3 residuals");
    e04rmc(ls.get(), 3, 1, 1, two.data(), one.data(), &f);
    EXPECT_EQ(body(printed(ls.get(), "objective")), "sparse nonlinear least-squares objective, 3 residuals | sparsity pattern of the residuals | (2,1)");
    expect_success(f);
    EXPECT_EQ(body(printed(none.get(), "objective")), "not defined");
}

TEST(E04ry, ConeNonlinearQuadraticAndMatrixSections) {
    Handle h(9);
    KorError f = fresh_error();
    const I g = {9, 1, 2, 3, 4, 5, 6, 7, 8}, one = {1}, two = {2}, nnza(10, 0), row = {1, 1}, col = {1, 2};
    I blk(27, 1);  // block sizes 2 and 26 times 1: one line of 72 characters
    blk[0] = 2;
    std::string ones;
    for (int k = 0; k < 26; ++k) ones += " 1";
    const R lo = {-1}, hi = {1e20}, a = {1, 2};
    int64_t id = 0;
    e04rbc(h.get(), "RQUAD", 9, g.data(), &id, &f);
    e04rkc(h.get(), 1, lo.data(), hi.data(), 1, one.data(), two.data(), &f);
    e04rsc(h.get(), 0.5, 1, two.data(), a.data(), 1, one.data(), two.data(), a.data(), -1, 5, &(id = 0), &f);
    I counts = nnza;
    counts[0] = counts[3] = 1;
    e04rnc(h.get(), 9, 28, counts.data(), 2, row.data(), col.data(), a.data(), 27, blk.data(), &(id = 0), &f);
    expect_success(f);
    EXPECT_EQ(body(printed(h.get(), "cone constraints")), "cone 1: rotated quadratic, 9 variables");
    // Eight variables to a line.
    EXPECT_EQ(body(printed(h.get(), "cone constraints detailed")),
              "cone 1: rotated quadratic, 9 variables | x[9] x[1] x[2] x[3] x[4] x[5] x[6] x[7] | x[8]");
    EXPECT_EQ(body(printed(h.get(), "nonlinear constraints bounds")), "lower bound upper bound | n[1] -1.000000e+00 inf");
    EXPECT_EQ(body(printed(h.get(), "nonlinear constraints detailed")), "n[1]: 1 nonzeros | x[2]");
    EXPECT_EQ(body(printed(h.get(), "quadratic constraints detailed")),
              "q[1]: bounds -1.000000e+00, 5.000000e+00 | constant part 5.000000e-01 | linear part | x[2] 1.000000e+00 | "
              "quadratic part | (1,2) 1.000000e+00");
    EXPECT_EQ(body(printed(h.get(), "matrix constraints detailed")),
              "matrix constraint 1: dimension 28, 27 diagonal blocks, polynomial of order 1 | block sizes: 2" +
              ones + " | A_0: 1 entries | (1,1) 1.000000e+00 | A_3: 1 entries | (1,2) 2.000000e+00");
}

TEST(E04ry, OptionListingsDumpsAndThePotato) {
    Handle h(2), other(1);
    EXPECT_EQ(split_lines(printed(h.get(), "options"))[1], "Begin of Options");
    EXPECT_EQ(split_lines(printed(h.get(), "all options")).back(), "End of Hidden Stuff");
    EXPECT_EQ(printed(h.get(), "$TASKS$"), " Task queue not available at this phase yet.\n");
    EXPECT_EQ(printed(h.get(), "$tids$"), " Task identifiers not available at this phase yet.\n");
    EXPECT_EQ(body(printed(h.get(), "$VALIDITY$")), "header: 65535 84 65 76 86 83 72 76 | problem data: present | phase: model");
    const std::string almost = printed(h.get(), "$DUMP$ALMOST$ALL$"), dump = printed(h.get(), "$DUMP$ALL$");
    EXPECT_EQ(almost.find("Begin of Options"), std::string::npos);
    for (const char *k : {"$VALIDITY$", "OVERVIEW", "OBJECTIVE", "SIMPLE BOUNDS", "LINEAR CONSTRAINTS DETAILED", "NONLINEAR CONSTRAINTS BOUNDS",
                          "NONLINEAR CONSTRAINTS DETAILED", "QUADRATIC CONSTRAINTS DETAILED", "CONE CONSTRAINTS DETAILED",
                          "MATRIX CONSTRAINTS DETAILED", "MULTIPLIERS SIZES"})
        EXPECT_NE(almost.find(printed(h.get(), k)), std::string::npos) << k;  // the dump holds every section
    EXPECT_EQ(dump.substr(dump.find('\n')), almost.substr(almost.find('\n')) + printed(h.get(), "all options"));
    // The potato is found once per handle, even by a print that fails.
    EXPECT_EQ(printed(h.get(), "POTATO"), " Congratulations, you found a potato!\n");
    EXPECT_EQ(printed(h.get(), "potato"), " You already have a potato!\n");
    KorError f = fresh_error();
    e04ryc(other.get(), 77, "POTATO", &f);
    EXPECT_EQ(printed(other.get(), "Potato, potato"), " You already have a potato!\n You already have a potato!\n");
}

TEST(E04ry, RefusalsComeBeforeAnythingIsWritten) {
    Handle h(2);
    ScratchDir s;
    write_file(s.file("in.txt"), "x\n");
    const int64_t in = open_unit(s.file("in.txt"), 0), out = open_unit(s.file("out.txt"), 1);
    const std::vector<std::tuple<int64_t, std::string, Want>> cases = {
        {out, "OVERVIEW, OVERVIEWS", want<E::keyword_unknown>({2})},
        {out, ",OVERVIEW;; SIMPLE BOUND", want<E::keyword_unknown>({2})},
        {out, "overview, NONLINEAR CONSTRAINTS DETAILEDX", want<E::keyword_too_long>({2})},
        {out, "", want<E::no_keywords>()},
        {out, " , ;  ", want<E::no_keywords>()},
        {77, "OVERVIEW", want<E::write_failed>()},
        {in, "OVERVIEW", want<E::write_failed>()},
        {-1, "OVERVIEW, ALL OPTIONS", {}},  // a negative unit writes nothing
    };
    for (const auto &[unit, keywords, w] : cases) {
        SCOPED_TRACE(keywords);
        KorError f = fresh_error();
        e04ryc(h.get(), unit, keywords.c_str(), &f);
        expect_exit(kor::e04ry::info, w, f);
    }
    close_unit(in);
    close_unit(out);
    EXPECT_EQ(read_file(s.file("out.txt")), "");
}

}  // namespace
