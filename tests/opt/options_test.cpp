// The option registry and e04zm / e04zn: the rows the suite's documentation
// fixes, every message through both interfaces, and loops over the whole
// table (defaults, keywords, bounds).
#include <cmath>
#include <cstring>
#include <limits>
#include <set>

#include "opt/option_text.hpp"
#include "opt/options_support.hpp"

using namespace kor;
using namespace kor::opt_test;
namespace table = kor::opt::table;

namespace {

constexpr double eps = 0x1p-53;

// ---------------------------------------------------------------------------
// The rows the documentation of the suite states, written out here as it
// states them (the oracle), and compared with the registry.

struct StatedRow {
    const char *name, *key;
    table::Type type;
    double default_value;               // numeric options
    const char *default_word;           // keyword options
    const char *lower, *upper;          // ">= 1000", "> -1", "" ...
    std::vector<const char *> words;    // keyword options, in registry order
};

std::string relation_text(table::Bound b, bool lower, table::Type type) {
    if (b.kind == table::BoundKind::none) return "";
    std::string rel = lower ? ">" : "<";
    if (b.kind == table::BoundKind::inclusive) rel += "=";
    return rel + " " + (type == table::Type::integer ? std::to_string(b.integer) : exact_text(b.real));
}

TEST(OptionRegistry, RowsStatedByTheDocumentation) {
    using T = table::Type;
    const double none = std::nan("");
    // clang-format off
    const StatedRow stated[] = {
        {"INFINITE BOUND SIZE", "BIGBND", T::real, 1.0e+20, nullptr, ">= 1000", "", {}},
        {"OUTER ITERATION LIMIT", "MAXOUTIT", T::integer, 100, nullptr, ">= 0", "", {}},
        {"INNER ITERATION LIMIT", "MAXINNIT", T::integer, 100, nullptr, "> 0", "", {}},
        {"RCONST", "RCONST", T::real, -0.5, nullptr, "> -1", "< 1", {}},
        {"PRINT LEVEL", "PRNLEV", T::integer, 2, nullptr, ">= 0", "<= 5", {}},
        {"PRINT OPTIONS", "PRNOPT", T::keyword, none, "YES", "", "", {"YES", "NO", "Y", "N"}},
        {"PRINT SOLUTION", "PRNSOL", T::keyword, none, "NO", "", "",
         {"NO", "ALL", "X", "X AND U", "X U", "XU", "YES"}},
        {"MONITORING FILE", "PRNFILE2", T::integer, -1, nullptr, ">= -1", "", {}},
        {"MONITORING LEVEL", "PRNLEV2", T::integer, 4, nullptr, ">= 0", "<= 5", {}},
        {"TASK", "TASK", T::keyword, none, nullptr, "", "",
         {"MAXIMIZE", "MINIMIZE", "FEASIBLE POINT", "MAX", "MIN", "FEAS", "FEASIBILITY", "MAXIMISE", "MINIMISE"}},
        {"VERIFY DERIVATIVES", "VERDER", T::keyword, none, "NO", "", "", {"YES", "NO", "Y", "N", "AUTO", "CHEAP"}},
        {"TIME LIMIT", "MAXTIM", T::real, 1.0e+6, nullptr, "> 0", "", {}},
        {"STOP TOLERANCE 1", "TOLPREC", T::real, 1.0e-6, nullptr, "> 1.1102230246251565e-16", "", {}},
        {"STATS TIME", "TIMING", T::keyword, none, nullptr, "", "",
         {"YES", "NO", "Y", "N", "CPU", "WALL", "WALL CLOCK", "WALL-CLOCK"}},
        {"FOAS ITERATION LIMIT", "FOAS_MAXIT", T::integer, 10000000, nullptr, "> 0", "", {}},
        {"FOAS MEMORY", "FOAS_MEM", T::integer, 11, nullptr, ">= 0", "<= 100", {}},
        {"FOAS MONITOR FREQUENCY", "FOAS_MONITOR", T::integer, 0, nullptr, ">= 0", "", {}},
        {"FOAS PRINT FREQUENCY", "FOAS_PRINTFRQ", T::integer, 1, nullptr, ">= 1", "", {}},
        {"FOAS PROGRESS TOLERANCE", "FOAS_POOR", T::real, 1.0815775704056441e-12, nullptr, "> 0", "< 1", {}},
        {"FOAS REL STOP TOLERANCE", "FOAS_REL", T::real, 1.0815775704056441e-12, nullptr, ">= 0", "< 1", {}},
        {"FOAS RESTART FACTOR", "FOAS_RSRTFCT", T::real, 6.0, nullptr, ">= 0", "", {}},
        {"FOAS SLOW TOLERANCE", "FOAS_SLOW", T::real, 0.010131559020711013, nullptr, "> 0", "", {}},
        {"FOAS STOP TOLERANCE", "FOAS_TOL", T::real, 1.0e-6, nullptr, ">= 0", "< 1", {}},
        {"FOAS SUBSOLVER", "FOAS_SUBSLVR", T::keyword, none, "BOTH", "", "", {"BOTH", "NPG", "CG"}},
        {"FOAS TOLERANCE NORM", "FOAS_NORM", T::keyword, none, nullptr, "", "", {"INFINITY", "INF", "TWO"}},
        {"FOAS ESTIMATE DERIVATIVES", "FOAS_ESTDER", T::keyword, none, nullptr, "", "", {"YES", "NO", "Y", "N"}},
        {"FOAS FINITE DIFF INTERVAL", "FOAS_FD_STEP", T::real, 1.0536712127723509e-08, nullptr,
         ">= 9.9999999999999998e-13", "<= 0.10000000000000001", {}},
    };
    // clang-format on
    for (const StatedRow &s : stated) {
        SCOPED_TRACE(s.name);
        const int option = opt::find_option(s.name);
        ASSERT_GE(option, 0);
        const table::Row &r = row(option);
        EXPECT_EQ(r.key, s.key);
        EXPECT_EQ(opt::find_option(s.key), option);
        EXPECT_EQ(r.type, s.type);
        if (s.type == table::Type::integer) { EXPECT_EQ(r.integer_default, int64_t(s.default_value)); }
        if (s.type == table::Type::real) { EXPECT_EQ(r.real_default, s.default_value); }
        if (s.type != table::Type::keyword) {
            EXPECT_EQ(relation_text(r.lower, true, r.type), s.lower);
            EXPECT_EQ(relation_text(r.upper, false, r.type), s.upper);
            continue;
        }
        // The stated words come first, in order ("FOAS TOLERANCE NORM" has
        // one more of our choosing).
        ASSERT_GE(size_t(r.keyword_count), s.words.size());
        if (std::string(s.name) != "FOAS TOLERANCE NORM") { EXPECT_EQ(size_t(r.keyword_count), s.words.size()); }
        for (size_t k = 0; k < s.words.size(); ++k)
            EXPECT_EQ(table::keywords[r.first_keyword + k].word, s.words[k]);
        if (s.default_word) { EXPECT_EQ(table::keywords[r.first_keyword + r.default_word].word, s.default_word); }
    }
    // FOAS SUBSOLVER maps its words to 0, 1, 2.
    const table::Row &sub = row(opt::find_option("FOAS SUBSOLVER"));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(table::keywords[sub.first_keyword + k].code, k);
    // STOP TOLERANCE 1 is bounded strictly by the machine precision itself.
    EXPECT_EQ(row(opt::find_option("STOP TOLERANCE 1")).lower.real, eps);
}

TEST(OptionRegistry, PrintFileDefaultsToTheAdvisoryUnitAtLoadTime) {
    const int64_t saved = frame::units::advisory_unit();
    frame::units::set_advisory_unit(17);
    Handle h;
    frame::units::set_advisory_unit(saved);
    EXPECT_EQ(h.store().get(opt::slot::print_file), 17);
    frame::units::set_advisory_unit(23);
    KorError fail = fresh_error();
    e04zmc(h.get(), "Print File = Default", &fail);
    frame::units::set_advisory_unit(saved);
    EXPECT_EQ(h.store().get(opt::slot::print_file), 23);
}

TEST(OptionRegistry, SizesOrderAndNames) {
    EXPECT_EQ(table::option_count, 371);
    EXPECT_EQ(table::alias_count, 10);
    EXPECT_EQ(table::integer_count + table::real_count + table::keyword_option_count, 371);
    // Registry order: the first and the last rows, and some on the way.
    EXPECT_EQ(row(0).name, "OUTER ITERATION LIMIT");
    EXPECT_EQ(row(3).name, "INFINITE BOUND SIZE");
    EXPECT_EQ(row(50).name, "TASK");
    EXPECT_EQ(row(134).name, "FOAS ITERATION LIMIT");
    EXPECT_EQ(row(370).name, "NLP FACTORIZATION METHOD");

    std::set<std::string_view> keys, names;
    int slots[3] = {0, 0, 0};
    for (int i = 0; i < table::option_count; ++i) {
        const table::Row &r = row(i);
        SCOPED_TRACE(std::string(r.name));
        EXPECT_LE(r.name.size(), 30u);
        EXPECT_LE(r.key.size(), 30u);
        EXPECT_TRUE(names.insert(r.name).second);
        EXPECT_TRUE(keys.insert(r.key).second);
        // Every name reaches its own row; a key equal to a long name is that
        // row's own long name.
        EXPECT_EQ(opt::find_option(r.name), i);
        EXPECT_EQ(opt::find_option(r.key), i);
        for (char c : r.name) EXPECT_FALSE(c >= 'a' && c <= 'z');
        EXPECT_EQ(r.name.find("  "), std::string_view::npos);
        // Slots number each type's options densely, in registry order.
        EXPECT_EQ(r.slot, slots[int(r.type)]++);
        // The mixed-case name differs from the long name only in case.
        ASSERT_EQ(r.display.size(), r.name.size());
        EXPECT_EQ(opt::to_upper(r.display), r.name);
    }
    for (std::string_view k : keys)
        if (names.count(k)) { EXPECT_EQ(row(opt::find_option(k)).key, k); }
    // Lookup relies on these arrays being sorted.
    auto sorted = [](const auto &a) {
        return std::is_sorted(std::begin(a), std::end(a),
                              [](const table::Name &x, const table::Name &y) { return x.name < y.name; });
    };
    EXPECT_TRUE(sorted(table::long_names));
    EXPECT_TRUE(sorted(table::short_keys));
    EXPECT_TRUE(sorted(table::aliases));
    // Mixed case as messages write names.
    EXPECT_EQ(row(opt::find_option("PRINT LEVEL")).display, "Print Level");
    EXPECT_EQ(row(opt::find_option("INFINITE BOUND SIZE")).display, "Infinite Bound Size");
    EXPECT_EQ(row(opt::find_option("DFO TRUST REGION TOLERANCE")).display, "DFO Trust Region Tolerance");
    EXPECT_EQ(row(opt::find_option("DFO NUMBER INTERP POINTS")).display, "DFO Number Interp Points");
}

TEST(OptionRegistry, AliasesNameTheDerivativeFreeOptions) {
    const char *aliases[] = {"DFLS MAX OBJECTIVE CALLS", "DFLS NUMBER INTERP POINTS",
                             "DFLS MONITOR FREQUENCY", "DFLS PRINT FREQUENCY",
                             "DFLS MAXIMUM SLOW STEPS", "DFLS TRUST REGION UPDATE",
                             "DFLS TRUST REGION TOLERANCE", "DFLS STARTING TRUST REGION",
                             "DFLS TRUST REGION SLOW TOL", "DFLS SLOPE THRESHOLD"};
    for (const char *a : aliases) {
        SCOPED_TRACE(a);
        const std::string current = "DFO" + std::string(a).substr(4);
        ASSERT_GE(opt::find_option(current), 0);
        EXPECT_EQ(opt::find_option(a), opt::find_option(current));
    }
    // Through e04zm, an alias sets the option itself.
    Handle h;
    KorError fail = fresh_error();
    e04zmc(h.get(), "dfls max objective calls = 77", &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    EXPECT_EQ(h.store().get(opt::slot::dfo_max_objective_calls), 77);
}

// ---------------------------------------------------------------------------
// e04zm: every message through both interfaces

struct Case {
    std::string optstr;
    int code;                         // NE_ code of the C interface
    std::string c;                    // the C message after "NAME:\n  "
    std::vector<std::string> fortran; // the Fortran message lines
    int64_t ifail;
};

std::string code_name(int code) {
    switch (code) {
    case NE_INVALID_OPTION: return "NE_INVALID_OPTION";
    case NE_INVALID_FORMAT: return "NE_INVALID_FORMAT";
    case NE_INVALID_VALUE: return "NE_INVALID_VALUE";
    case NE_PHASE: return "NE_PHASE";
    case NE_HANDLE: return "NE_HANDLE";
    case NE_NOT_READ_FILE: return "NE_NOT_READ_FILE";
    }
    return "?";
}

// The messages as the library's texts state them, with the values filled in.
Case unknown(const std::string &optstr, const std::string &shown) {
    return {optstr, NE_INVALID_OPTION,
            "On entry, the option supplied in optstr was not recognized:\n  optstr = \"" + shown + "\".",
            {"** On entry, the option supplied in optstr was not recognized:",
             ("** optstr = \"" + shown + "\".").substr(0, 80)},
            11};
}
Case unknown(const std::string &optstr) { return unknown(optstr, optstr); }

Case not_converted(const std::string &optstr, const std::string &value, const char *kind) {
    const std::string a = std::string(kind) == "integer" ? "an integer" : "a real";
    return {optstr, NE_INVALID_FORMAT,
            "On entry, could not convert the specified optval to " + a + ":\n  optval = \"" + value + "\".",
            {"** On entry, could not convert the specified optval to " + a + ":",
             ("** optval = \"" + value + "\".").substr(0, 80)},
            12};
}

Case bad_keyword(const std::string &optstr, const std::string &option, const std::string &value) {
    const std::string pair = "option = \"" + option + "\", optval = \"" + value + "\".";
    std::vector<std::string> lines = {"** On entry, the optval supplied for the character optional parameter",
                                      "** is not valid."};
    if (value.size() + 2 <= 25) {
        lines.push_back("** " + pair);
    } else {
        lines.push_back("** option = \"" + option + "\",");
        lines.push_back(("** optval = \"" + value + "\".").substr(0, 80));
    }
    return {optstr, NE_INVALID_VALUE,
            "On entry, the optval supplied for the character optional parameter is not valid.\n  " + pair,
            lines, 13};
}

Case out_of_bounds(const std::string &optstr, const std::string &option, bool integer,
                   const std::string &value, const std::string &relation, const std::string &bound) {
    const std::string kind = integer ? "integer" : "real";
    const std::string pair = "option = \"" + option + "\", optval = " + value + ".";
    const std::string constraint = "Constraint: optval " + relation + " " + bound + ".";
    return {optstr, NE_INVALID_VALUE,
            "On entry, the optval supplied for the " + kind + " optional parameter is not valid.\n  " +
                pair + "\n  " + constraint,
            {"** On entry, the optval supplied for the " + kind + " optional parameter", "** is not valid.",
             "** " + pair, "** " + constraint},
            13};
}

// Runs a case through e04zmc and e04zmf on a fresh handle each, and checks
// that the failed setting left every option as it was.
void check_case(const Case &c) {
    SCOPED_TRACE("optstr = [" + c.optstr + "]");
    {
        Handle h;
        KorError fail = fresh_error();
        e04zmc(h.get(), c.optstr.c_str(), &fail);
        EXPECT_EQ(fail.code, c.code) << fail.message;
        EXPECT_EQ(std::string(fail.message), code_name(c.code) + ":\n  " + c.c);
        EXPECT_EQ(fail.errnum, c.ifail);
        for (int i = 0; i < table::option_count; ++i)
            EXPECT_EQ(h.store().origin(i), opt::Origin::by_default) << row(i).name;
    }
    {
        Handle h;
        int64_t ifail = 0;
        const std::string out = capture_errors([&] { ifail = e04zm_fortran(h.get(), c.optstr, -1); });
        EXPECT_EQ(ifail, c.ifail);
        EXPECT_EQ(out, fortran_report(c.fortran, "E04ZMF", c.ifail));
        for (int i = 0; i < table::option_count; ++i)
            EXPECT_EQ(h.store().origin(i), opt::Origin::by_default) << row(i).name;
        // A quiet failure (IFAIL = 1 on entry) writes nothing.
        const std::string quiet = capture_errors([&] { ifail = e04zm_fortran(h.get(), c.optstr, 1); });
        EXPECT_EQ(quiet, "");
        EXPECT_EQ(ifail, c.ifail);
    }
}

TEST(E04zm, MessagesOfFailedSettings) {
    const std::string long_unknown = "LPIPM MAX ITERATIVE REFINEMENTS = 3";  // 35 characters
    const std::string very_long(200, 'Q');
    std::vector<Case> cases = {
        unknown("Print Lev = 1"),
        unknown("print levels = 1"),
        unknown("PRINT  LEVEL = 1"),           // blanks inside a name are not collapsed
        unknown("Print\tLevel = 1"),
        unknown("  Print Lev = 1  ", "  Print Lev = 1"),  // trailing blanks are not quoted
        unknown("= 5"),
        not_converted("Print Level", "", "integer"),  // a known name without "=": an empty value
        unknown(long_unknown),
        unknown("x"),
        unknown(""),
        unknown("INFINITE BOUND SIZE EXTRA LONG NAME = 1"),  // more than 30 characters
        unknown(very_long, very_long.substr(0, 145) + "..."),
        not_converted("Print Level = 1.5", "1.5", "integer"),
        not_converted("Print Level = ", "", "integer"),
        not_converted("Print Level = 1e3", "1e3", "integer"),
        not_converted("Print Level = 99999999999999999999", "99999999999999999999", "integer"),
        not_converted("Print Level = two and a half, or maybe three", "two and a half, or maybe three",
                      "integer"),
        not_converted("Infinite Bound Size = big", "big", "real"),
        not_converted("Infinite Bound Size = inf", "inf", "real"),
        not_converted("Infinite Bound Size = nan", "nan", "real"),
        not_converted("Infinite Bound Size = 1e999", "1e999", "real"),
        not_converted("Infinite Bound Size = 0x10", "0x10", "real"),
        not_converted("Infinite Bound Size = 1.0e+20 x", "1.0e+20 x", "real"),
        bad_keyword("Print Options = maybe", "Print Options", "maybe"),
        bad_keyword("Task = maximum", "Task", "maximum"),
        bad_keyword("LPIPM Algorithm = something much too long to fit", "LPIPM Algorithm",
                    "something much too long to fit"),
        bad_keyword("Print Options = ", "Print Options", ""),
        out_of_bounds("Print Level = 6", "Print Level", true, "6", "<=", "5"),
        out_of_bounds("Print Level = -1", "Print Level", true, "-1", ">=", "0"),
        out_of_bounds("Inner Iteration Limit = 0", "Inner Iteration Limit", true, "0", ">", "0"),
        out_of_bounds("Infinite Bound Size = 999", "Infinite Bound Size", false, "9.99e+02", ">=", "1.0e+03"),
        out_of_bounds("RCONST = 1", "RCONST", false, "1.0e+00", "<", "1.0e+00"),
        out_of_bounds("RCONST = -1", "RCONST", false, "-1.0e+00", ">", "-1.0e+00"),
        out_of_bounds("LPIPM MAX ITERATIVE REFINEMENT = -1", "LPIPM Max Iterative Refinement", true, "-1",
                      ">=", "0"),
        out_of_bounds("FOAS Memory = 101", "FOAS Memory", true, "101", "<=", "100"),
        out_of_bounds("Time Limit = 0", "Time Limit", false, "0.0e+00", ">", "0.0e+00"),
        out_of_bounds("Stop Tolerance 1 = 1.1102230246251565e-16", "Stop Tolerance 1", false,
                      "1.1102230246251565e-16", ">", "1.1102230246251565e-16"),
    };
    for (const Case &c : cases) check_case(c);
}

TEST(E04zm, AcceptedSpellings) {
    Handle h;
    const struct { const char *optstr; int option; std::string value; } cases[] = {
        {"print level = 1", opt::find_option("PRINT LEVEL"), "1"},
        {"PRINT LEVEL = 3", opt::find_option("PRINT LEVEL"), "3"},
        {"PRNLEV = 4", opt::find_option("PRINT LEVEL"), "4"},
        {"prnlev=0", opt::find_option("PRINT LEVEL"), "0"},
        {"\t Print Level \t=\t +5 \t", opt::find_option("PRINT LEVEL"), "5"},
        {"Infinite Bound Size = 1.0D+21", opt::find_option("INFINITE BOUND SIZE"), "1.0e+21"},
        {"bigbnd = 2e3", opt::find_option("INFINITE BOUND SIZE"), "2.0e+03"},
        {"Infinite Bound Size = .5e4", opt::find_option("INFINITE BOUND SIZE"), "5.0e+03"},
        {"Infinite Bound Size = 1000", opt::find_option("INFINITE BOUND SIZE"), "1.0e+03"},
        {"Infinite Bound Size = 7.", opt::find_option("INFINITE BOUND SIZE"), "1.0e+03"},  // refused: stays
        {"Print Solution = x and u", opt::find_option("PRINT SOLUTION"), "X AND U"},
        {"task = Feasible Point", opt::find_option("TASK"), "FEASIBLE POINT"},
        {"Outer Iteration Limit = 0", opt::find_option("OUTER ITERATION LIMIT"), "0"},
        {"Outer Iteration Limit = 9223372036854775807", opt::find_option("OUTER ITERATION LIMIT"),
         "9223372036854775807"},
        {"RCONST = -0.99", opt::find_option("RCONST"), "-9.9e-01"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.optstr);
        KorError fail = fresh_error();
        e04zmc(h.get(), c.optstr, &fail);
        EXPECT_EQ(opt::option_value_text(h.store(), c.option), c.value) << fail.message;
    }
}

// "Defaults" in any case reloads every default and writes the record
// "Defaults" to the advisory unit; "Name = Default" resets one option.
TEST(E04zm, DefaultsAndDefault) {
    Handle h;
    KorError fail = fresh_error();
    e04zmc(h.get(), "Infinite Bound Size = 5e3", &fail);
    e04zmc(h.get(), "Print Level = 5", &fail);
    e04zmc(h.get(), "Task = Maximize", &fail);
    EXPECT_EQ(h.store().get(opt::slot::infinite_bound_size), 5e3);

    e04zmc(h.get(), "Infinite Bound Size = Default", &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_EQ(h.store().get(opt::slot::infinite_bound_size), 1.0e+20);
    EXPECT_EQ(h.store().origin(opt::find_option("INFINITE BOUND SIZE")), opt::Origin::by_default);
    EXPECT_EQ(h.store().get(opt::slot::print_level), 5);
    e04zmc(h.get(), "task = default", &fail);
    EXPECT_EQ(h.store().keyword(opt::slot::task), "MINIMIZE");

    for (const char *word : {"Defaults", "DEFAULTS", "defaults", "  dEfAuLtS \t"}) {
        SCOPED_TRACE(word);
        e04zmc(h.get(), "Print Level = 5", &fail);
        const std::string advisory = capture_unit(true, [&] { e04zmc(h.get(), word, &fail); });
        EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
        EXPECT_EQ(advisory, "Defaults\n");
        EXPECT_EQ(h.store().get(opt::slot::print_level), 2);
        for (int i = 0; i < table::option_count; ++i)
            EXPECT_EQ(h.store().origin(i), opt::Origin::by_default);
        // The Fortran-style interface the same.
        e04zmc(h.get(), "Print Level = 5", &fail);
        const std::string f = capture_unit(true, [&] { EXPECT_EQ(e04zm_fortran(h.get(), word), 0); });
        EXPECT_EQ(f, "Defaults\n");
        EXPECT_EQ(h.store().get(opt::slot::print_level), 2);
    }
    // "Default" alone is no option, "Defaults" with a value neither.
    check_case(unknown("Default"));
    check_case(unknown("Defaults = 1"));
    // "= Defaults" is not the reset word.
    check_case(not_converted("Print Level = Defaults", "Defaults", "integer"));
}

// ---------------------------------------------------------------------------
// Whole-table loops

std::string default_text(const table::Row &r) {
    switch (r.type) {
    case table::Type::integer:
        return std::to_string(r.default_is_advisory_unit ? frame::units::advisory_unit() : r.integer_default);
    case table::Type::real: return exact_text(r.real_default);
    case table::Type::keyword: return std::string(table::keywords[r.first_keyword + r.default_word].word);
    }
    return "";
}

TEST(OptionTable, EveryOptionSetToItsDefaultAndReadBack) {
    Handle h;
    for (int i = 0; i < table::option_count; ++i) {
        const table::Row &r = row(i);
        SCOPED_TRACE(std::string(r.name));
        const std::string before = opt::option_value_text(h.store(), i);
        // By long name, by short key and in lower case, through both interfaces.
        for (std::string name : {std::string(r.name), std::string(r.key), std::string(r.display)}) {
            for (char &c : name) c = char(std::tolower(c));
            KorError fail = fresh_error();
            e04zmc(h.get(), (name + " = " + default_text(r)).c_str(), &fail);
            EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
            EXPECT_EQ(h.store().origin(i), opt::Origin::by_caller);
            EXPECT_EQ(e04zm_fortran(h.get(), name + " = " + default_text(r)), 0);
        }
        EXPECT_EQ(opt::option_value_text(h.store(), i), before);

        int64_t ivalue = -5, optype = 0;
        double rvalue = -5.0;
        char cvalue[31];
        KorError fail = fresh_error();
        e04znc(h.get(), std::string(r.name).c_str(), &ivalue, &rvalue, cvalue, sizeof cvalue, &optype, &fail);
        ASSERT_EQ(fail.code, NE_NOERROR) << fail.message;
        const FortranValue f = e04zn_fortran(h.get(), std::string(r.key));
        EXPECT_EQ(f.ifail, 0);
        EXPECT_EQ(f.optype, optype);
        switch (r.type) {
        case table::Type::integer:
            EXPECT_EQ(optype, 1);
            EXPECT_EQ(std::to_string(ivalue), default_text(r));
            EXPECT_EQ(f.ivalue, ivalue);
            EXPECT_STREQ(cvalue, "");
            EXPECT_EQ(f.cvalue, std::string(30, ' '));
            break;
        case table::Type::real:
            EXPECT_EQ(optype, 2);
            EXPECT_EQ(rvalue, r.real_default);
            EXPECT_EQ(f.rvalue, rvalue);
            break;
        case table::Type::keyword:
            EXPECT_EQ(optype, 3);
            EXPECT_EQ(cvalue, default_text(r));
            EXPECT_EQ(f.cvalue, (default_text(r) + std::string(30, ' ')).substr(0, 30));
            break;
        }
    }
}

TEST(OptionTable, EveryKeywordOptionTakesEveryKeyword) {
    Handle h;
    for (int i = 0; i < table::option_count; ++i) {
        const table::Row &r = row(i);
        if (r.type != table::Type::keyword) continue;
        SCOPED_TRACE(std::string(r.name));
        const opt::KeywordSlot slot{r.slot};
        for (int k = 0; k < r.keyword_count; ++k) {
            const table::Keyword &w = table::keywords[r.first_keyword + k];
            SCOPED_TRACE(std::string(w.word));
            std::string lower(w.word);
            for (char &c : lower) c = char(std::tolower(c));
            for (const std::string &value : {std::string(w.word), lower}) {
                opt::options(h.problem()).load_defaults();
                KorError fail = fresh_error();
                e04zmc(h.get(), (std::string(r.key) + " = " + value).c_str(), &fail);
                EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
                EXPECT_EQ(h.store().keyword(slot), w.word);
                EXPECT_EQ(h.store().code(slot), w.code);
                char cvalue[31];
                int64_t ivalue = 0, optype = 0;
                double rvalue = 0;
                e04znc(h.get(), std::string(r.name).c_str(), &ivalue, &rvalue, cvalue, sizeof cvalue,
                       &optype, &fail);
                EXPECT_EQ(cvalue, std::string(w.word));
                EXPECT_EQ(optype, 3);
            }
        }
        // A word of no option's list is refused and changes nothing.
        opt::options(h.problem()).load_defaults();
        const std::string before(h.store().keyword(slot));
        check_case(bad_keyword(std::string(r.name) + " = NOT A KEYWORD", std::string(r.display), "NOT A KEYWORD"));
        EXPECT_EQ(h.store().keyword(slot), before);
    }
}

// For each bound of each numeric option: the value on the bound and the
// nearest value inside are accepted or refused as the bound is inclusive or
// strict, the nearest value outside is refused; refusals name the relation.
TEST(OptionTable, BoundsJustInsideAndOutside) {
    int checked = 0;
    for (int i = 0; i < table::option_count; ++i) {
        const table::Row &r = row(i);
        if (r.type == table::Type::keyword) continue;
        SCOPED_TRACE(std::string(r.name));
        const bool integer = r.type == table::Type::integer;
        for (bool lower : {true, false}) {
            const table::Bound b = lower ? r.lower : r.upper;
            if (b.kind == table::BoundKind::none) continue;
            const bool strict = b.kind == table::BoundKind::strict;
            const std::string relation = std::string(lower ? ">" : "<") + (strict ? "" : "=");
            struct Probe { std::string text, shown; bool accepted; };
            std::vector<Probe> probes;
            if (integer) {
                const int64_t v = b.integer, in = lower ? v + 1 : v - 1, out = lower ? v - 1 : v + 1;
                probes = {{std::to_string(v), std::to_string(v), !strict},
                          {std::to_string(in), std::to_string(in), true},
                          {std::to_string(out), std::to_string(out), false}};
            } else {
                const double v = b.real;
                const double in = std::nextafter(v, lower ? INFINITY : -INFINITY);
                const double out = std::nextafter(v, lower ? -INFINITY : INFINITY);
                probes = {{exact_text(v), real_text(v), !strict},
                          {exact_text(in), real_text(in), true},
                          {exact_text(out), real_text(out), false}};
            }
            const std::string bound = integer ? std::to_string(b.integer) : real_text(b.real);
            for (const Probe &p : probes) {
                const std::string optstr = std::string(r.name) + " = " + p.text;
                if (!p.accepted) {
                    check_case(out_of_bounds(optstr, std::string(r.display), integer, p.shown, relation, bound));
                    ++checked;
                    continue;
                }
                // The other bound may be violated by the value inside this one
                // only when the range is a single point, which no option has.
                Handle h;
                KorError fail = fresh_error();
                e04zmc(h.get(), optstr.c_str(), &fail);
                EXPECT_EQ(fail.code, NE_NOERROR) << optstr << ": " << fail.message;
                EXPECT_EQ(opt::option_value_text(h.store(), i), integer ? p.text : real_text(std::strtod(p.text.c_str(), nullptr)));
                EXPECT_EQ(e04zm_fortran(h.get(), optstr), 0);
            }
        }
    }
    EXPECT_GT(checked, 200);
}

// ---------------------------------------------------------------------------
// e04zn

TEST(E04zn, UnknownNamesAndOutputs) {
    Handle h;
    const Case cases[] = {unknown("Print Level = 2"), unknown("Print Lev"), unknown(""),
                          unknown("SOCP MAX DENSE PRODFORM CHOLESKY")};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.optstr);
        int64_t ivalue = -3, optype = -3;
        double rvalue = -3.0;
        char cvalue[8] = "unset";
        KorError fail = fresh_error();
        e04znc(h.get(), c.optstr.c_str(), &ivalue, &rvalue, cvalue, sizeof cvalue, &optype, &fail);
        EXPECT_EQ(fail.code, c.code);
        EXPECT_EQ(std::string(fail.message), code_name(c.code) + ":\n  " + c.c);
        EXPECT_EQ(ivalue, -3);
        EXPECT_EQ(optype, -3);
        int64_t ifail = 0;
        const std::string out = capture_errors([&] { ifail = e04zn_fortran(h.get(), c.optstr, -1).ifail; });
        EXPECT_EQ(ifail, c.ifail);
        EXPECT_EQ(out, fortran_report(c.fortran, "E04ZNF", c.ifail));
    }
    // A short cvalue receives the beginning of the keyword, terminated.
    KorError fail = fresh_error();
    e04zmc(h.get(), "Task = Feasible Point", &fail);
    int64_t ivalue = 0, optype = 0;
    double rvalue = 0;
    char small[5];
    e04znc(h.get(), "task", &ivalue, &rvalue, small, sizeof small, &optype, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR);
    EXPECT_STREQ(small, "FEAS");
    EXPECT_EQ(optype, 3);
    const FortranValue f = e04zn_fortran(h.get(), "TASK", 1, 20);
    EXPECT_EQ(f.cvalue, "FEASIBLE POINT      ");
    // Values set by the caller come back exactly.
    e04zmc(h.get(), "FOAS Finite Diff Interval = 0.0123456789012345678", &fail);
    e04znc(h.get(), "foas_fd_step", &ivalue, &rvalue, small, sizeof small, &optype, &fail);
    EXPECT_EQ(rvalue, 0.0123456789012345678);
    EXPECT_EQ(optype, 2);
    EXPECT_STREQ(small, "");
}

// ---------------------------------------------------------------------------
// Handle and phase checks of the three routines

using Call = std::function<void(void *handle, KorError *fail)>;
using FortranCall = std::function<int64_t(void *handle)>;

struct Routine {
    const char *name;
    Call c;
    FortranCall fortran;
};

std::vector<Routine> routines(int64_t unit) {
    return {
        {"E04ZMF", [](void *h, KorError *f) { e04zmc(h, "Print Level = 3", f); },
         [](void *h) { return e04zm_fortran(h, "Print Level = 3", -1); }},
        {"E04ZNF",
         [](void *h, KorError *f) {
             int64_t i, t;
             double r;
             char c[31];
             e04znc(h, "Print Level", &i, &r, c, sizeof c, &t, f);
         },
         [](void *h) { return e04zn_fortran(h, "Print Level", -1).ifail; }},
        {"E04ZPF", [unit](void *h, KorError *f) { e04zpc(h, unit, f); },
         [unit](void *h) { return e04zp_fortran(h, unit, -1); }},
    };
}

void expect_refusal(const Routine &r, void *handle, int code, const std::string &text, int64_t ifail,
                    const std::vector<std::string> &lines) {
    SCOPED_TRACE(r.name);
    KorError fail = fresh_error();
    r.c(handle, &fail);
    EXPECT_EQ(fail.code, code);
    EXPECT_EQ(std::string(fail.message), code_name(code) + ":\n  " + text);
    int64_t got = 0;
    const std::string out = capture_errors([&] { got = r.fortran(handle); });
    EXPECT_EQ(got, ifail);
    EXPECT_EQ(out, fortran_report(lines, r.name, ifail));
}

TEST(OptionRoutines, RefuseWhileASolverRuns) {
    ScratchDir dir;
    write_file(dir.file("o.txt"), "Begin\nPrint Level = 4\nEnd\n");
    Handle h;
    opt::Problem &p = h.problem();
    for (const Routine &r : routines(-1)) {
        opt::enter_solver_phase(p);
        expect_refusal(r, h.get(), NE_PHASE, "The options cannot be modified while solver is running.", 2,
                       {"** The options cannot be modified while solver is running."});
        // Nothing was read or changed meanwhile.
        EXPECT_EQ(h.store().get(opt::slot::print_level), 2);
        opt::leave_solver_phase(p);
    }
    // After the solver returns, the same calls work.
    const int64_t unit = open_unit(dir.file("o.txt"), 0);
    for (const Routine &r : routines(unit)) {
        KorError fail = fresh_error();
        r.c(h.get(), &fail);
        EXPECT_EQ(fail.code, NE_NOERROR) << r.name << ": " << fail.message;
    }
    close_unit(unit);
    EXPECT_EQ(h.store().get(opt::slot::print_level), 4);
    {
        opt::SolverPhase running(p);
        KorError fail = fresh_error();
        e04zmc(h.get(), "Defaults", &fail);
        EXPECT_EQ(fail.code, NE_PHASE);
    }
    EXPECT_EQ(h.store().get(opt::slot::print_level), 4);
}

TEST(OptionRoutines, CheckTheHandle) {
    // A block whose first word is not the sentinel, and one with the suite
    // tag but a wrong kind tag; neither is followed past its header.
    int64_t foreign[9] = {1, 'T', 'A', 'L', 'V', 83, 72, 76, 0};
    int64_t wrong_kind[9] = {65535, 'T', 'A', 'L', 'V', 83, 72, 77, 12345};
    int64_t no_data[9] = {65535, 'T', 'A', 'L', 'V', 83, 72, 76, 0};
    for (const Routine &r : routines(5)) {
        const std::string corrupted = "handle has not been initialized properly or is corrupted.";
        expect_refusal(r, nullptr, NE_HANDLE, "handle has not been initialized.", 1,
                       {"** handle has not been initialized."});
        expect_refusal(r, foreign, NE_HANDLE,
                       "handle does not belong to the KOR optimization modelling suite, has not been "
                       "initialized properly or is corrupted.",
                       1,
                       {"** handle does not belong to the KOR optimization modelling suite,",
                        "** has not been initialized properly or is corrupted."});
        expect_refusal(r, wrong_kind, NE_HANDLE, corrupted, 1, {"** " + corrupted});
        expect_refusal(r, no_data, NE_HANDLE, corrupted, 1, {"** " + corrupted});
    }
    // A handle freed by e04rz is null, and reported so.
    Handle h;
    KorError fail = fresh_error();
    e04rzc(h.address(), &fail);
    e04zmc(h.get(), "Print Level = 1", &fail);
    EXPECT_EQ(fail.code, NE_HANDLE);
    EXPECT_EQ(std::string(fail.message), "NE_HANDLE:\n  handle has not been initialized.");
}


// ---------------------------------------------------------------------------
// Listing

TEST(OptionListing, NormalAndFullListings) {
    Handle h;
    KorError fail = fresh_error();
    e04zmc(h.get(), "Print Level = 4", &fail);
    e04zmc(h.get(), "Task = Max", &fail);
    const auto listing = [&](bool full) {
        bool ok = false;
        const std::string out = capture_unit(true, [&] {
            ok = opt::print_options(h.store(), frame::units::advisory_unit(), full);
        });
        EXPECT_TRUE(ok);
        return kor::test::split_lines(out);
    };
    int hidden = 0;
    for (int i = 0; i < table::option_count; ++i) hidden += row(i).hidden;
    EXPECT_GT(hidden, 0);

    const std::vector<std::string> normal = listing(false);
    ASSERT_EQ(normal.size(), size_t(table::option_count - hidden + 2));
    EXPECT_EQ(normal.front(), "Begin of Options");
    EXPECT_EQ(normal.back(), "End of Options");
    // One line per shown option in registry order: name, value, origin.
    size_t line = 1;
    for (int i = 0; i < table::option_count; ++i) {
        if (row(i).hidden) continue;
        const std::string &l = normal[line++];
        EXPECT_EQ(l.substr(0, 5 + row(i).display.size()), "     " + std::string(row(i).display)) << l;
        EXPECT_NE(l.find(" = "), std::string::npos);
    }
    auto find = [](const std::vector<std::string> &lines, const std::string &start) {
        for (const std::string &l : lines)
            if (l.rfind(start, 0) == 0) return l;
        return std::string();
    };
    EXPECT_EQ(find(normal, "     Print Level"),
              "     Print Level                    =                        4   * U");
    EXPECT_EQ(find(normal, "     Task "), "     Task                           =                      MAX   * U");
    EXPECT_EQ(find(normal, "     Infinite Bound Size"),
              "     Infinite Bound Size            =                  1.0e+20   * d");
    EXPECT_EQ(find(normal, "     Print Internal"), "");  // hidden

    // The full listing holds every option, then the hidden entries.
    const std::vector<std::string> full = listing(true);
    ASSERT_EQ(full.size(), size_t(table::option_count + 2 + 8));
    EXPECT_EQ(find(full, "     Print Internal"),
              "     Print Internal                 =                       NO   * d");
    const std::vector<std::string> tail(full.end() - 8, full.end());
    EXPECT_EQ(tail[0], " ");  // the record writer writes an empty record as one blank
    EXPECT_EQ(tail[1], "Begin of Hidden Stuff");
    EXPECT_EQ(tail[2].substr(0, 9), "     List");
    EXPECT_EQ(tail[3].substr(0, 11), "     LIOPTS");
    EXPECT_EQ(tail[4].substr(0, 10), "     LOPTS");
    EXPECT_EQ(tail[5].substr(0, 15), "     Init Magic");
    EXPECT_EQ(tail[6].substr(0, 10), "     Debug");
    EXPECT_EQ(tail[7], "End of Hidden Stuff");

    // Values a solver chose follow under their own heading.
    opt::options(h.problem()).record_solver_choice(opt::slot::dfo_number_interp_points, 7);
    opt::options(h.problem()).record_solver_choice(opt::slot::lpipm_system_formulation, 2);
    const std::vector<std::string> chosen = listing(false);
    ASSERT_EQ(chosen.size(), normal.size() + 5);
    EXPECT_EQ(chosen[normal.size()], " ");
    EXPECT_EQ(chosen[normal.size() + 1], "Begin of options modified by the solver");
    EXPECT_EQ(chosen[normal.size() + 2],
              "     DFO Number Interp Points       =                        7   * S");
    EXPECT_EQ(chosen[normal.size() + 3],
              "     LPIPM System Formulation       =         AUGMENTED SYSTEM   * S");
    EXPECT_EQ(chosen.back(), "End of options modified by the solver");
    // A unit that cannot be written is reported.
    EXPECT_FALSE(opt::print_options(h.store(), 5, false));
}

}  // namespace
