// The option registry and e04zm / e04zn: the rows the suite's documentation
// states, the registry's names and slots, every exit of a failed setting
// with its values, and loops over the whole table (defaults, keywords,
// bounds just inside and outside); the listing.
#include <cmath>
#include <cstring>
#include <sstream>

#include "frame/units.hpp"
#include "opt_support.hpp"
#include "support/data.hpp"

using namespace opt_test;
namespace table = kor::opt::table;
namespace units = kor::frame::units;
using kor::opt::find_option;
using E = kor::e04zm::Exit;

namespace {

const table::Row &row(int option) { return table::rows[option]; }

// Runs `body` with the advisory unit connected to a scratch file and
// returns what was written there.
std::string advisory_output(const std::function<void()> &body) {
    ScratchDir dir;
    const int64_t unit = open_unit(dir.file("unit.txt"), 1), saved = units::advisory_unit();
    units::set_advisory_unit(unit);
    body();
    units::set_advisory_unit(saved);
    close_unit(unit);
    return read_file(dir.file("unit.txt"));
}

// A bound as the stated rows write it: "-" for none, else the relation and the value.
std::string bound_text(table::Bound b, bool lower, table::Type type) {
    if (b.kind == table::BoundKind::none) return "-";
    const std::string rel = std::string(lower ? ">" : "<") + (b.kind == table::BoundKind::inclusive ? "=" : "");
    return rel + " " + (type == table::Type::integer ? std::to_string(b.integer) : number_text(b.real));
}

TEST(OptionRegistry, RowsStatedByTheDocumentation) {
    for (const kor::test::Row &s : kor::test::read_table("opt/stated_options.txt")) {
        SCOPED_TRACE(s.text(0));
        const int option = find_option(s.text(0));
        ASSERT_GE(option, 0);
        const table::Row &r = row(option);
        EXPECT_EQ(r.key, s.text(1));
        EXPECT_EQ(find_option(s.text(1)), option);
        EXPECT_EQ(int(r.type), s.text(2) == "integer" ? 0 : s.text(2) == "real" ? 1 : 2);
        if (r.type == table::Type::integer) { EXPECT_EQ(r.integer_default, s.integer(3)); }
        if (r.type == table::Type::real) { EXPECT_EQ(r.real_default, s.real(3)); }
        if (r.type != table::Type::keyword) {
            for (int k : {4, 5}) {  // relation as text, value as number
                const std::string got = bound_text(k == 4 ? r.lower : r.upper, k == 4, r.type), &stated = s.text(k);
                EXPECT_EQ(got.substr(0, got.find(' ')), stated.substr(0, stated.find(' ')));
                EXPECT_EQ(std::atof(got.c_str() + got.find(' ') + 1), std::atof(stated.c_str() + stated.find(' ') + 1));
            }
            continue;
        }
        std::vector<std::string> words;
        for (std::stringstream list(s.text(6)); std::getline(list, words.emplace_back(), ',');) {}
        words.pop_back();
        const bool more = words.back() == "+";
        if (more) words.pop_back();
        if (!more) { EXPECT_EQ(size_t(r.keyword_count), words.size()); }
        ASSERT_GE(size_t(r.keyword_count), words.size());
        for (size_t k = 0; k < words.size(); ++k) EXPECT_EQ(table::keywords[r.first_keyword + k].word, words[k]);
        if (s.text(3) != "-") { EXPECT_EQ(table::keywords[r.first_keyword + r.default_word].word, s.text(3)); }
    }
    const table::Row &sub = row(find_option("FOAS SUBSOLVER"));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(table::keywords[sub.first_keyword + k].code, k);
    EXPECT_EQ(row(find_option("STOP TOLERANCE 1")).lower.real, 0x1p-53);
}

// (The generator refuses repeated, long or lower-case names; the loops below
// reach every row by its long name, its key and its mixed-case name.)
TEST(OptionRegistry, SizesOrderSlotsAndAliases) {
    EXPECT_EQ(table::option_count, 371);
    EXPECT_EQ(table::integer_count + table::real_count + table::keyword_option_count, 371);
    int slots[3] = {0, 0, 0};
    for (int i = 0; i < table::option_count; ++i) EXPECT_EQ(row(i).slot, slots[int(row(i).type)]++) << row(i).name;
    EXPECT_EQ(slots[0], table::integer_count);  // dense, in registry order
    EXPECT_EQ(slots[1], table::real_count);
    EXPECT_EQ(find_option(std::string(31, 'A')), -1);
    EXPECT_EQ(find_option(""), -1);
    EXPECT_EQ(row(find_option("DFO TRUST REGION TOLERANCE")).display, "DFO Trust Region Tolerance");
    EXPECT_EQ(table::alias_count, 10);
    for (const char *a : {"MAX OBJECTIVE CALLS", "NUMBER INTERP POINTS", "MONITOR FREQUENCY", "PRINT FREQUENCY",
                          "MAXIMUM SLOW STEPS", "TRUST REGION UPDATE", "TRUST REGION TOLERANCE",
                          "STARTING TRUST REGION", "TRUST REGION SLOW TOL", "SLOPE THRESHOLD"}) {
        ASSERT_GE(find_option("DFO " + std::string(a)), 0) << a;
        EXPECT_EQ(find_option("DFLS " + std::string(a)), find_option("DFO " + std::string(a))) << a;
    }
    Handle h;
    KorError f = fresh_error();
    e04zmc(h.get(), "dfls max objective calls = 77", &f);
    EXPECT_EQ(h.store().get(kor::opt::slot::dfo_max_objective_calls), 77);
}

TEST(OptionRegistry, PrintFileDefaultsToTheAdvisoryUnitAtLoadTime) {
    const int64_t saved = units::advisory_unit();
    units::set_advisory_unit(17);
    Handle h;
    units::set_advisory_unit(23);
    EXPECT_EQ(h.store().get(kor::opt::slot::print_file), 17);
    KorError f = fresh_error();
    e04zmc(h.get(), "Print File = Default", &f);
    units::set_advisory_unit(saved);
    EXPECT_EQ(h.store().get(kor::opt::slot::print_file), 23);
}

// e04zm

// A setting through e04zmc on a fresh handle: the exit it takes, and a
// failed setting leaves every option as it was.
void expect_setting(const std::string &optstr, const Want &w) {
    SCOPED_TRACE("optstr = [" + optstr + "]");
    Handle h;
    KorError f = fresh_error();
    e04zmc(h.get(), optstr.c_str(), &f);
    expect_exit(kor::e04zm::info, w, f);
    for (int i = 0; w.values && i < table::option_count; ++i)
        EXPECT_EQ(h.store().origin(i), kor::opt::Origin::by_default) << row(i).name;
}

std::string q(const std::string &text) { return "\"" + text + "\""; }

TEST(E04zm, EveryExitOfAFailedSetting) {
    const std::string very_long(200, 'Q');
    const std::vector<std::pair<std::string, Want>> cases = {
        {"Print Lev = 1", want_text<E::unknown_option>({q("Print Lev = 1")})},
        {"print levels = 1", want_text<E::unknown_option>({q("print levels = 1")})},
        {"PRINT  LEVEL = 1", want_text<E::unknown_option>({q("PRINT  LEVEL = 1")})},  // inner blanks count
        // Trailing blanks are not quoted: a Fortran caller's CHARACTER optstr comes padded with them.
        {"  Print Lev = 1  ", want_text<E::unknown_option>({q("  Print Lev = 1")})},
        {"= 5", want_text<E::unknown_option>({q("= 5")})},
        {"", want_text<E::unknown_option>({q("")})},
        {"Default", want_text<E::unknown_option>({q("Default")})},
        {"Defaults = 1", want_text<E::unknown_option>({q("Defaults = 1")})},
        {"INFINITE BOUND SIZE EXTRA LONG NAME = 1", want_text<E::unknown_option>({q("INFINITE BOUND SIZE EXTRA LONG NAME = 1")})},
        {very_long, want_text<E::unknown_option>({q(very_long)})},  // quoted whole
        {"Print Level", want_text<E::not_integer>({q("")})},  // a known name without "=": an empty value
        {"Print Level = 1.5", want_text<E::not_integer>({q("1.5")})},
        {"Print Level = 99999999999999999999", want_text<E::not_integer>({q("99999999999999999999")})},
        {"Print Level = Defaults", want_text<E::not_integer>({q("Defaults")})},
        {"Infinite Bound Size = big", want_text<E::not_real>({q("big")})},
        {"Infinite Bound Size = 1e999", want_text<E::not_real>({q("1e999")})},
        {"Infinite Bound Size = 1.0e+20 x", want_text<E::not_real>({q("1.0e+20 x")})},
        {"Infinite Bound Size = e5", want_text<E::not_real>({q("e5")})},
        {"Infinite Bound Size = 1e", want_text<E::not_real>({q("1e")})},
        {"Print Options = maybe", want_text<E::bad_keyword>({q("Print Options"), q("maybe")})},
        {"Print Options = ", want_text<E::bad_keyword>({q("Print Options"), q("")})},
        {"LPIPM Algorithm = something much too long to fit",
         want_text<E::bad_keyword>({q("LPIPM Algorithm"), q("something much too long to fit")})},
    };
    for (const auto &[optstr, w] : cases) expect_setting(optstr, w);  // (bounds: the loop over the table)
}

TEST(E04zm, AcceptedSpellings) {
    Handle h;
    for (const auto &[optstr, option, value] : std::vector<std::tuple<const char *, const char *, std::string>>{
             {"prnlev=0", "PRINT LEVEL", "0"}, {"\t Print Level \t=\t +5 \t", "PRINT LEVEL", "5"},
             {"Infinite Bound Size = 1.0D+21", "BIGBND", "1.0e+21"}, {"bigbnd = 2e3", "BIGBND", "2.0e+03"},
             {"Infinite Bound Size = .5e4", "BIGBND", "5.0e+03"}, {"Infinite Bound Size = -7.", "BIGBND", "5.0e+03"},
             {"Print Solution = x and u", "PRNSOL", "X AND U"}, {"RCONST = -0.99", "RCONST", "-9.9e-01"},
             {"Outer Iteration Limit = 9223372036854775807", "MAXOUTIT", "9223372036854775807"}}) {
        KorError f = fresh_error();
        e04zmc(h.get(), optstr, &f);
        EXPECT_EQ(kor::opt::option_value_text(h.store(), find_option(option)), value) << optstr;
    }
}

// "Defaults" in any case reloads every default and writes the record
// "Defaults" to the advisory unit; "Name = Default" resets one option.
TEST(E04zm, DefaultsAndDefault) {
    Handle h;
    KorError f = fresh_error();
    for (const char *setting : {"Infinite Bound Size = 5e3", "Print Level = 5", "Task = Maximize", "Infinite Bound Size = Default", "task = default"})
        e04zmc(h.get(), setting, &f);
    expect_success(f);
    EXPECT_EQ(h.store().get(kor::opt::slot::infinite_bound_size), 1.0e+20);
    EXPECT_EQ(h.store().origin(find_option("INFINITE BOUND SIZE")), kor::opt::Origin::by_default);
    EXPECT_EQ(h.store().get(kor::opt::slot::print_level), 5);
    EXPECT_EQ(h.store().keyword(kor::opt::slot::task), "MINIMIZE");
    for (const char *word : {"Defaults", "DEFAULTS", "  dEfAuLtS \t"}) {
        e04zmc(h.get(), "Print Level = 5", &f);
        EXPECT_EQ(advisory_output([&] { e04zmc(h.get(), word, &f); }), "Defaults\n") << word;
        expect_success(f);
        for (int i = 0; i < table::option_count; ++i) EXPECT_EQ(h.store().origin(i), kor::opt::Origin::by_default);
        EXPECT_EQ(h.store().get(kor::opt::slot::print_level), 2);
    }
}

// Whole-table loops

std::string default_text(const table::Row &r) {
    switch (r.type) {
    case table::Type::integer: return std::to_string(r.default_is_advisory_unit ? units::advisory_unit() : r.integer_default);
    case table::Type::real: return number_text(r.real_default);
    case table::Type::keyword: return std::string(table::keywords[r.first_keyword + r.default_word].word);
    }
    return "";
}

struct Got {
    int64_t ivalue = -5, optype = -5;
    double rvalue = -5;
    char cvalue[31] = "unset";
    KorError fail = fresh_error();
};

Got get(void *h, const std::string &name) {
    Got g;
    e04znc(h, name.c_str(), &g.ivalue, &g.rvalue, g.cvalue, sizeof g.cvalue, &g.optype, &g.fail);
    return g;
}

TEST(OptionTable, EveryOptionSetToItsDefaultByEveryNameAndReadBack) {
    Handle h;
    for (int i = 0; i < table::option_count; ++i) {
        const table::Row &r = row(i);
        SCOPED_TRACE(std::string(r.name));
        const std::string before = kor::opt::option_value_text(h.store(), i);
        for (std::string name : {std::string(r.name), std::string(r.key), std::string(r.display)}) {
            for (char &c : name) c = char(std::tolower(c));
            KorError f = fresh_error();
            e04zmc(h.get(), (name + " = " + default_text(r)).c_str(), &f);
            expect_success(f);
            EXPECT_EQ(h.store().origin(i), kor::opt::Origin::by_caller);
        }
        EXPECT_EQ(kor::opt::option_value_text(h.store(), i), before);
        const Got g = get(h.get(), std::string(r.key));
        expect_success(g.fail);
        EXPECT_EQ(g.optype, int(r.type) + 1);
        EXPECT_EQ(g.ivalue == -5, r.type != table::Type::integer);  // the other outputs are left alone
        EXPECT_EQ(g.rvalue == -5, r.type != table::Type::real);
        if (r.type == table::Type::integer) { EXPECT_EQ(std::to_string(g.ivalue), default_text(r)); }
        if (r.type == table::Type::real) { EXPECT_EQ(g.rvalue, r.real_default); }
        EXPECT_EQ(g.cvalue, r.type == table::Type::keyword ? default_text(r) : "");
    }
}

TEST(OptionTable, EveryKeywordOptionTakesEveryKeywordAndNoOther) {
    Handle h;
    for (int i = 0; i < table::option_count; ++i) {
        const table::Row &r = row(i);
        if (r.type != table::Type::keyword) continue;
        SCOPED_TRACE(std::string(r.name));
        const kor::opt::KeywordSlot slot{r.slot};
        for (int k = 0; k < r.keyword_count; ++k) {
            const table::Keyword &w = table::keywords[r.first_keyword + k];
            std::string lower(w.word);
            for (char &c : lower) c = char(std::tolower(c));
            SCOPED_TRACE(lower);
            kor::opt::options(h.problem()).load_defaults();
            KorError f = fresh_error();
            e04zmc(h.get(), (std::string(r.key) + " = " + lower).c_str(), &f);
            expect_success(f);
            EXPECT_EQ(h.store().keyword(slot), w.word);
            EXPECT_EQ(h.store().code(slot), w.code);
            EXPECT_EQ(get(h.get(), std::string(r.name)).cvalue, w.word);
        }
        expect_setting(std::string(r.name) + " = NOT A KEYWORD",
                       want_text<E::bad_keyword>({q(std::string(r.display)), q("NOT A KEYWORD")}));
    }
}

// The exit of a value outside a bound.
Want out_of_bounds(bool integer, bool lower, bool strict, std::vector<std::string> v) {
    if (integer)
        return lower ? (strict ? want_text<E::integer_not_above>(v) : want_text<E::integer_below>(v))
                     : (strict ? want_text<E::integer_not_below>(v) : want_text<E::integer_above>(v));
    return lower ? (strict ? want_text<E::real_not_above>(v) : want_text<E::real_below>(v))
                 : (strict ? want_text<E::real_not_below>(v) : want_text<E::real_above>(v));
}

// For each bound of each numeric option: the value on the bound and the
// nearest value inside are accepted or refused as the bound is inclusive or
// strict, the nearest value outside is refused, naming the relation.
TEST(OptionTable, BoundsJustInsideAndOutside) {
    int refused = 0;
    for (int i = 0; i < table::option_count; ++i) {
        const table::Row &r = row(i);
        if (r.type == table::Type::keyword) continue;
        SCOPED_TRACE(std::string(r.name));
        const bool integer = r.type == table::Type::integer;
        for (bool lower : {true, false}) {
            const table::Bound b = lower ? r.lower : r.upper;
            if (b.kind == table::BoundKind::none) continue;
            const bool strict = b.kind == table::BoundKind::strict;
            std::string at, in, out;
            if (integer) {
                at = std::to_string(b.integer);
                in = std::to_string(lower ? b.integer + 1 : b.integer - 1);
                out = std::to_string(lower ? b.integer - 1 : b.integer + 1);
            } else {
                at = number_text(b.real);
                in = number_text(std::nextafter(b.real, lower ? INFINITY : -INFINITY));
                out = number_text(std::nextafter(b.real, lower ? -INFINITY : INFINITY));
            }
            for (const auto &[value, accepted] : {std::pair(at, !strict), std::pair(in, true), std::pair(out, false)}) {
                const std::string optstr = std::string(r.name) + " = " + value;
                if (!accepted) {
                    expect_setting(optstr, out_of_bounds(integer, lower, strict, {q(std::string(r.display)), value, at}));
                    ++refused;
                    continue;
                }
                Handle h;
                KorError f = fresh_error();
                e04zmc(h.get(), optstr.c_str(), &f);
                expect_success(f);
                const Got g = get(h.get(), std::string(r.name));
                EXPECT_EQ(integer ? std::to_string(g.ivalue) : number_text(g.rvalue), value);
            }
        }
    }
    EXPECT_GT(refused, 200);
}

TEST(E04zn, UnknownNamesLeaveTheOutputsAloneAndShortCvaluesAreCut) {
    Handle h;
    for (const char *name : {"Print Level = 2", "Print Lev", "", "SOCP MAX DENSE PRODFORM CHOLESKY"}) {
        const Got g = get(h.get(), name);
        expect_exit(kor::e04zn::info, want_text<kor::e04zn::Exit::unknown_option>({q(name)}), g.fail);
        EXPECT_EQ(std::make_tuple(g.ivalue, g.optype, g.rvalue, std::string(g.cvalue)), std::make_tuple(-5, -5, -5.0, std::string("unset")));
    }
    KorError f = fresh_error();
    e04zmc(h.get(), "Task = Feasible Point", &f);
    int64_t ivalue = 0, optype = 0;
    double rvalue = 0;
    char small[5];
    e04znc(h.get(), " task ", &ivalue, &rvalue, small, sizeof small, &optype, &f);
    expect_success(f);
    EXPECT_STREQ(small, "FEAS");
}

TEST(OptionListing, NormalAndFullListings) {
    Handle h;
    KorError f = fresh_error();
    e04zmc(h.get(), "Print Level = 4", &f);
    e04zmc(h.get(), "Task = Max", &f);
    const auto listing = [&](bool full) {
        bool ok = false;
        const std::string out = advisory_output([&] { ok = kor::opt::print_options(h.store(), units::advisory_unit(), full); });
        EXPECT_TRUE(ok);
        return split_lines(out);
    };
    // "Begin of Options", then one line per option in registry order (the
    // hidden ones only in the full listing): its name, " = ", its value
    // right-aligned, and who set it (d default, U user); "End of Options".
    int shown = 0;
    for (bool full : {false, true}) {
        const std::vector<std::string> lines = listing(full);
        ASSERT_GT(lines.size(), 2u);
        EXPECT_EQ(lines.front(), "Begin of Options");
        size_t at = 1;
        for (int i = 0; i < table::option_count; ++i) {
            if (row(i).hidden && !full) continue;
            ASSERT_LT(at, lines.size());
            const std::string &l = lines[at++], value = kor::opt::option_value_text(h.store(), i);
            const char mark = h.store().origin(i) == kor::opt::Origin::by_caller ? 'U' : 'd';
            EXPECT_EQ(l, "     " + std::string(row(i).display) + std::string(30 - row(i).display.size(), ' ') + " = " +
                             std::string(value.size() < 24 ? 24 - value.size() : 0, ' ') + value + "   * " + mark);
        }
        EXPECT_EQ(lines[at], "End of Options");
        if (!full) shown = int(at) - 1;
        if (!full) { EXPECT_EQ(lines.size(), at + 1); }
        if (!full) continue;
        // The full listing's hidden entries, with the sizes of the option arrays.
        ASSERT_EQ(lines.size(), at + 9);
        EXPECT_EQ(lines[at + 2], "Begin of Hidden Stuff");
        EXPECT_EQ(lines[at + 4], "     LIOPTS                         = " + std::string(21, ' ') +
                                     std::to_string(table::integer_count + table::keyword_option_count));
        EXPECT_EQ(lines[at + 5].substr(lines[at + 5].rfind(' ') + 1), std::to_string(table::real_count));
        EXPECT_EQ(lines.back(), "End of Hidden Stuff");
    }
    EXPECT_LT(shown, table::option_count);  // some are hidden
    // Values a solver chose follow under their own heading.
    kor::opt::options(h.problem()).record_solver_choice(kor::opt::slot::dfo_number_interp_points, 7);
    kor::opt::options(h.problem()).record_solver_choice(kor::opt::slot::lpipm_system_formulation, 2);
    const std::vector<std::string> chosen = listing(false);
    ASSERT_EQ(chosen.size(), size_t(shown) + 7);
    EXPECT_EQ(chosen[size_t(shown) + 3], "Begin of options modified by the solver");
    EXPECT_EQ(chosen[size_t(shown) + 4], "     DFO Number Interp Points       =                        7   * S");
    EXPECT_EQ(chosen[size_t(shown) + 5], "     LPIPM System Formulation       =         AUGMENTED SYSTEM   * S");
    EXPECT_EQ(chosen.back(), "End of options modified by the solver");
    EXPECT_FALSE(kor::opt::print_options(h.store(), 5, false));  // a unit that cannot be written
}

}  // namespace
