// The option values of a handle and the one setter behind e04zm and e04zp,
// driven entirely by the generated registry tables.
#include "opt/options.hpp"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "frame/record.hpp"
#include "frame/units.hpp"
#include "opt/option_text.hpp"
#include "tables/option_table.hpp"

namespace kor::opt {

namespace {

using table::Row;
using table::Type;

// Identifies the layout of the option arrays in the full listing ("Init
// Magic"), so that listings from different builds can be told apart.
constexpr int64_t init_magic = 0x4b4f52;  // "KOR"

const Row &row(int option) { return table::rows[option]; }

// Binary search over one of the sorted name arrays.
template <size_t N>
int search(const table::Name (&names)[N], std::string_view name) {
    const table::Name *end = names + N;
    const table::Name *it = std::lower_bound(
        names, end, name, [](const table::Name &n, std::string_view s) { return n.name < s; });
    return it != end && it->name == name ? it->option : -1;
}

int search_aliases(std::string_view name) {
    if constexpr (table::alias_count > 0) return search(table::aliases, name);
    return -1;
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

// ---------------------------------------------------------------------------
// The store

OptionStore::OptionStore()
    : integers_(table::integer_count), reals_(table::real_count),
      words_(table::keyword_option_count), origins_(table::option_count) {
    load_defaults();
}

int64_t OptionStore::code(KeywordSlot s) const {
    const Row &r = row(table::keyword_rows[s.index]);
    return table::keywords[r.first_keyword + words_[size_t(s.index)]].code;
}

std::string_view OptionStore::keyword(KeywordSlot s) const {
    const Row &r = row(table::keyword_rows[s.index]);
    return table::keywords[r.first_keyword + words_[size_t(s.index)]].word;
}

void OptionStore::reset(int option) {
    const Row &r = row(option);
    switch (r.type) {
    case Type::integer:
        integers_[size_t(r.slot)] =
            r.default_is_advisory_unit ? frame::units::advisory_unit() : r.integer_default;
        break;
    case Type::real: reals_[size_t(r.slot)] = r.real_default; break;
    case Type::keyword: words_[size_t(r.slot)] = r.default_word; break;
    }
    origins_[size_t(option)] = Origin::by_default;
}

void OptionStore::load_defaults() {
    for (int i = 0; i < table::option_count; ++i) reset(i);
}

void OptionStore::store(int option, int64_t integer_value) {
    integers_[size_t(row(option).slot)] = integer_value;
    origins_[size_t(option)] = Origin::by_caller;
}

void OptionStore::store(int option, double real_value) {
    reals_[size_t(row(option).slot)] = real_value;
    origins_[size_t(option)] = Origin::by_caller;
}

void OptionStore::store_keyword(int option, int word) {
    words_[size_t(row(option).slot)] = int16_t(word);
    origins_[size_t(option)] = Origin::by_caller;
}

void OptionStore::record_solver_choice(IntegerSlot s, int64_t value) {
    SolverChoice c{table::integer_rows[s.index]};
    c.integer = value;
    solver_choices_.push_back(c);
}

void OptionStore::record_solver_choice(RealSlot s, double value) {
    SolverChoice c{table::real_rows[s.index]};
    c.real = value;
    solver_choices_.push_back(c);
}

void OptionStore::record_solver_choice(KeywordSlot s, int word) {
    SolverChoice c{table::keyword_rows[s.index]};
    c.word = word;
    solver_choices_.push_back(c);
}

std::unique_ptr<OptionStore> make_option_store() { return std::make_unique<OptionStore>(); }

double infinite_bound_size(const OptionStore &store) {
    return store.get(slot::infinite_bound_size);
}

// ---------------------------------------------------------------------------
// Reading a setting

std::string_view trim(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n\v\f";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string to_upper(std::string_view text) {
    std::string out(text);
    for (char &c : out)
        if (c >= 'a' && c <= 'z') c = char(c - 'a' + 'A');
    return out;
}

int find_option(std::string_view name) {
    if (name.empty() || name.size() > max_name_length) return -1;
    int option = search(table::long_names, name);
    if (option < 0) option = search(table::short_keys, name);
    if (option < 0) option = search_aliases(name);
    return option;
}

bool parse_integer(std::string_view text, int64_t &value) {
    size_t i = 0;
    const bool negative = !text.empty() && text[0] == '-';
    if (!text.empty() && (text[0] == '+' || text[0] == '-')) ++i;
    if (i == text.size()) return false;
    // Accumulated negatively so that the most negative value is reachable.
    int64_t v = 0;
    for (; i < text.size(); ++i) {
        if (!is_digit(text[i])) return false;
        const int d = text[i] - '0';
        if (v < (INT64_MIN + d) / 10) return false;
        v = v * 10 - d;
    }
    if (!negative) {
        if (v == INT64_MIN) return false;
        v = -v;
    }
    value = v;
    return true;
}

bool parse_real(std::string_view text, double &value) {
    // [sign] digits [. digits] | [sign] . digits, then an optional exponent
    // introduced by e, E, d or D (the Fortran double-precision letter).
    size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    size_t digits = 0;
    while (i < text.size() && is_digit(text[i])) ++i, ++digits;
    if (i < text.size() && text[i] == '.') {
        ++i;
        while (i < text.size() && is_digit(text[i])) ++i, ++digits;
    }
    if (digits == 0) return false;
    std::string copy(text.substr(0, i));
    if (i < text.size() && std::strchr("eEdD", text[i])) {
        copy += 'e';
        ++i;
        if (i < text.size() && (text[i] == '+' || text[i] == '-')) copy += text[i++];
        const size_t start = i;
        while (i < text.size() && is_digit(text[i])) copy += text[i++];
        if (i == start) return false;
    }
    if (i != text.size()) return false;
    const double v = std::strtod(copy.c_str(), nullptr);
    if (!std::isfinite(v)) return false;  // beyond the largest double
    value = v;
    return true;
}

namespace {

template <class T>
bool violates(table::Bound b, T value, T bound, bool lower) {
    if (b.kind == table::BoundKind::none) return false;
    const bool strict = b.kind == table::BoundKind::strict;
    if (lower) return strict ? !(value > bound) : !(value >= bound);
    return strict ? !(value < bound) : !(value <= bound);
}

Relation relation_of(table::Bound b, bool lower) {
    const bool strict = b.kind == table::BoundKind::strict;
    if (lower) return strict ? Relation::gt : Relation::ge;
    return strict ? Relation::lt : Relation::le;
}

// Checks a value read against the row's bounds, the lower first.  On a
// violation it records the failure, the bound (read through `limit`, the
// integer or the real of a bound) into `violated` and its relation, and
// returns false.
template <class T>
bool within_bounds(const Row &r, T value, T table::Bound::*limit, T &violated, Setting &s) {
    for (bool lower : {true, false}) {
        const table::Bound b = lower ? r.lower : r.upper;
        if (violates(b, value, b.*limit, lower)) {
            s.status = Setting::Status::out_of_bounds;
            violated = b.*limit;
            s.relation = relation_of(b, lower);
            return false;
        }
    }
    return true;
}

}  // namespace

Setting apply_setting(OptionStore &store, std::string_view text) {
    Setting s;
    const std::string_view whole = trim(text);
    if (to_upper(whole) == "DEFAULTS") {
        store.load_defaults();
        s.status = Setting::Status::defaults_loaded;
        return s;
    }
    const size_t equals = whole.find('=');
    const std::string_view name = trim(whole.substr(0, equals));
    s.value = equals == std::string_view::npos ? std::string_view() : trim(whole.substr(equals + 1));
    s.option = find_option(to_upper(name));
    if (s.option < 0) {
        s.status = Setting::Status::unknown_option;
        return s;
    }
    const Row &r = row(s.option);
    const std::string value = to_upper(s.value);
    if (value == "DEFAULT") {
        store.reset(s.option);
        s.status = Setting::Status::reset;
        return s;
    }
    switch (r.type) {
    case Type::integer: {
        s.is_integer = true;
        if (!parse_integer(s.value, s.integer_value)) {
            s.status = Setting::Status::not_integer;
            return s;
        }
        if (!within_bounds(r, s.integer_value, &table::Bound::integer, s.integer_bound, s))
            return s;
        store.store(s.option, s.integer_value);
        break;
    }
    case Type::real: {
        if (!parse_real(s.value, s.real_value)) {
            s.status = Setting::Status::not_real;
            return s;
        }
        if (!within_bounds(r, s.real_value, &table::Bound::real, s.real_bound, s)) return s;
        store.store(s.option, s.real_value);
        break;
    }
    case Type::keyword: {
        int word = -1;
        for (int k = 0; k < r.keyword_count; ++k)
            if (table::keywords[r.first_keyword + k].word == value) word = k;
        if (word < 0) {
            s.status = Setting::Status::bad_keyword;
            return s;
        }
        store.store_keyword(s.option, word);
        break;
    }
    }
    s.status = Setting::Status::stored;
    return s;
}

// ---------------------------------------------------------------------------
// Reading a Begin ... End block

FileReading read_option_block(OptionStore &store, LineSource &source, int64_t first_line) {
    FileReading result;
    std::string line;
    int64_t number = first_line - 1;
    for (;;) {
        if (!source.next(line)) {
            result.status = FileReading::Status::no_begin;
            return result;
        }
        ++number;
        if (to_upper(trim(line)) == "BEGIN") break;
    }
    for (;;) {
        if (!source.next(line)) {
            result.status = FileReading::Status::no_end;
            return result;
        }
        ++number;
        if (to_upper(trim(line)) == "END") return result;
        result.line = number;
        if (line.find(" = ") == std::string::npos) {
            result.status = FileReading::Status::no_delimiter;
            return result;
        }
        result.setting = apply_setting(store, line);
        result.setting.value = {};  // it pointed into `line`
        if (!result.setting.ok()) {
            result.status = FileReading::Status::setting_failed;
            return result;
        }
    }
}

namespace {

class UnitLines : public LineSource {
public:
    explicit UnitLines(int64_t unit) : unit_(unit) {}
    bool next(std::string &line) override {
        return frame::units::read_record(unit_, line) == frame::units::ReadStatus::ok;
    }

private:
    int64_t unit_;
};

// The number of lines before the unit's current position, so that lines
// are numbered from the file's first line even when the caller has read
// part of it already (or reads a second block from the same file).
// Streams that cannot tell their position (pipes) count from here.
int64_t lines_already_read(int64_t unit) {
    std::FILE *stream = frame::units::stream_of(unit);
    if (!stream) return 0;
    const long position = std::ftell(stream);
    if (position <= 0) return 0;
    const int fd = fileno(stream);
    int64_t lines = 0;
    char buffer[1 << 14];
    off_t offset = 0;
    while (offset < position) {
        const size_t want = size_t(std::min<off_t>(sizeof buffer, position - offset));
        const ssize_t got = pread(fd, buffer, want, offset);
        if (got <= 0) break;
        lines += std::count(buffer, buffer + got, '\n');
        offset += got;
    }
    return lines;
}

}  // namespace

FileReading read_option_block(OptionStore &store, int64_t unit) {
    UnitLines lines(unit);
    return read_option_block(store, lines, lines_already_read(unit) + 1);
}

// ---------------------------------------------------------------------------
// Listing

namespace {

std::string real_text(double v) {
    char text[40];
    frame::format_real(v, text, sizeof text);
    return text;
}

std::string listing_line(std::string_view name, std::string_view value, char origin) {
    char line[160];
    const int n = std::snprintf(line, sizeof line, "     %-30.*s = %24.*s", int(name.size()),
                                name.data(), int(value.size()), value.data());
    std::string out(line, size_t(std::max(n, 0)) < sizeof line ? size_t(n) : sizeof line - 1);
    if (origin) {
        out += "   * ";
        out += origin;
    }
    return out;
}

}  // namespace

std::string option_value_text(const OptionStore &store, int option) {
    const Row &r = row(option);
    switch (r.type) {
    case Type::integer: return std::to_string(store.get(IntegerSlot{r.slot}));
    case Type::real: return real_text(store.get(RealSlot{r.slot}));
    case Type::keyword: return std::string(store.keyword(KeywordSlot{r.slot}));
    }
    return {};
}

namespace {

// The listing's mark of who set an option: default, user, solver.
char origin_mark(Origin o) { return o == Origin::by_default ? 'd' : o == Origin::by_caller ? 'U' : 'S'; }

}  // namespace

bool print_options(const OptionStore &store, int64_t unit, bool include_defaults) {
    const bool full = include_defaults;
    bool ok = frame::units::write_record(unit, "Begin of Options");
    for (int i = 0; i < table::option_count && ok; ++i) {
        const Row &r = row(i);
        if (r.hidden && !full) continue;
        ok = frame::units::write_record(
            unit, listing_line(r.display, option_value_text(store, i), origin_mark(store.origin(i))));
    }
    ok = ok && frame::units::write_record(unit, "End of Options");
    if (ok && !store.solver_choices().empty()) {
        ok = frame::units::write_record(unit, "") &&
             frame::units::write_record(unit, "Begin of options modified by the solver");
        for (const OptionStore::SolverChoice &c : store.solver_choices()) {
            if (!ok) break;
            const Row &r = row(c.option);
            std::string value;
            switch (r.type) {
            case Type::integer: value = std::to_string(c.integer); break;
            case Type::real: value = real_text(c.real); break;
            case Type::keyword:
                value = std::string(table::keywords[r.first_keyword + c.word].word);
                break;
            }
            ok = frame::units::write_record(unit, listing_line(r.display, value, 'S'));
        }
        ok = ok && frame::units::write_record(unit, "End of options modified by the solver");
    }
    if (ok && full) {
        const std::string listed(store.keyword(slot::print_options));
        ok = frame::units::write_record(unit, "") &&
             frame::units::write_record(unit, "Begin of Hidden Stuff") &&
             frame::units::write_record(unit, listing_line("List", listed, 0)) &&
             frame::units::write_record(
                 unit, listing_line("LIOPTS",
                                    std::to_string(table::integer_count + table::keyword_option_count), 0)) &&
             frame::units::write_record(unit, listing_line("LOPTS", std::to_string(table::real_count), 0)) &&
             frame::units::write_record(unit, listing_line("Init Magic", std::to_string(init_magic), 0)) &&
             frame::units::write_record(unit, listing_line("Debug", "0", 0)) &&
             frame::units::write_record(unit, "End of Hidden Stuff");
    }
    return ok;
}

bool print_solver_options(const OptionStore &store, int64_t unit, const std::vector<int> &listed,
                          const std::vector<int> &unused) {
    bool ok = frame::units::write_record(unit, "Begin of Options");
    auto line = [&](int i, const char *note) {
        ok = ok && frame::units::write_record(
                       unit, listing_line(row(i).display, option_value_text(store, i),
                                          origin_mark(store.origin(i))) + note);
    };
    for (int i : listed) line(i, "");
    for (int i : unused) line(i, "   (no effect in this solver)");
    return ok && frame::units::write_record(unit, "End of Options");
}

}  // namespace kor::opt
