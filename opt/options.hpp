// The option values of one problem handle, and the one setter behind
// e04zm ("Name = Value" strings) and e04zp (Begin ... End blocks of a unit).
//
// The registry itself (every option's names, type, default, bounds and
// keywords) is the data table opt/option_table.txt; tools/optiongen.py turns
// it into constant arrays at configure time (generated/src/opt/option_registry.hpp,
// included by opt/option_registry.hpp).  Solvers read values by typed slot
// (opt::slot::infinite_bound_size and so on, generated), never by string.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kor::opt {

// Where an option's value is kept: the type picks the array, the index the
// element.  The generated constants in namespace kor::opt::slot are the only
// way to make one, so a slot cannot name a value of another type.
struct IntegerSlot { int16_t index; };
struct RealSlot { int16_t index; };
struct KeywordSlot { int16_t index; };

// Who gave an option its current value.
enum class Origin : uint8_t { by_default, by_caller, by_solver };

// All option values of one handle, each array indexed by slot.
class OptionStore {
public:
    OptionStore();  // every option at its default

    int64_t get(IntegerSlot s) const { return integers_[size_t(s.index)]; }
    double get(RealSlot s) const { return reals_[size_t(s.index)]; }
    // A keyword option's integer code (the code of the word chosen) and the
    // word itself as the caller gave it.
    int64_t code(KeywordSlot s) const;
    std::string_view keyword(KeywordSlot s) const;

    // Registry row (0 .. option_count-1) of an option: who set it.
    Origin origin(int option) const { return origins_[size_t(option)]; }

    // Loads every default ("Defaults") / one option's default ("= Default").
    void load_defaults();
    void reset(int option);

    // Stores a checked value and marks the option set by the caller.
    void store(int option, int64_t integer_value);
    void store(int option, double real_value);
    void store_keyword(int option, int word);  // word: position in the option's keyword list

    // A solver records the values it chose for automatic settings; they stay
    // listed (under "Begin of options modified by the solver") until the
    // next solve clears them.
    void record_solver_choice(IntegerSlot s, int64_t value);
    void record_solver_choice(RealSlot s, double value);
    void record_solver_choice(KeywordSlot s, int word);
    void clear_solver_choices() { solver_choices_.clear(); }

    struct SolverChoice {
        int option;
        int64_t integer = 0;
        double real = 0.0;
        int word = 0;
    };
    const std::vector<SolverChoice> &solver_choices() const { return solver_choices_; }

    // Which keyword of its list a keyword option holds (position in the list).
    int word(KeywordSlot s) const { return words_[size_t(s.index)]; }

private:
    std::vector<int64_t> integers_;
    std::vector<double> reals_;
    std::vector<int16_t> words_;
    std::vector<Origin> origins_;
    std::vector<SolverChoice> solver_choices_;
};

// Every option at its default (e04ra).
std::unique_ptr<OptionStore> make_option_store();

// 'Infinite Bound Size' of a handle (the bound checks of e04rh and the
// constraint definitions use it).
double infinite_bound_size(const OptionStore &store);

// ---------------------------------------------------------------------------
// Setting an option: the string is parsed into a typed result first; the
// routines then render it as their own message (e04zm names the string,
// e04zp the line).

// The relation a bound imposes on a value, as the messages word it.
enum class Relation : uint8_t { ge, gt, le, lt };

struct Setting {
    enum class Status : uint8_t {
        stored,            // the value was checked and stored
        defaults_loaded,   // "Defaults": every option reset
        reset,             // "Name = Default": this option reset
        unknown_option,    // no long name, short key or alias matches
        not_integer,       // value not a whole number
        not_real,          // value not a floating-point number
        bad_keyword,       // value not one of the option's keywords
        out_of_bounds,     // numeric value violates a bound
    };
    Status status = Status::unknown_option;
    int option = -1;                 // registry row, when the name was found
    std::string_view value;          // the value text (trimmed), a view into the input
    // out_of_bounds: the value read, the bound and its relation.
    bool is_integer = false;
    int64_t integer_value = 0;
    double real_value = 0.0;
    int64_t integer_bound = 0;
    double real_bound = 0.0;
    Relation relation = Relation::ge;

    bool ok() const {
        return status == Status::stored || status == Status::defaults_loaded ||
               status == Status::reset;
    }
};

// Applies one setting "Name = Value" (or "Defaults") to the store.  A failed
// setting leaves the store unchanged.  Writes nothing: the caller writes the
// "Defaults" record.
Setting apply_setting(OptionStore &store, std::string_view text);

// Looks an upper-case name up as e04zm does: long names, then short keys,
// then aliases, each by whole-string comparison; -1 when unknown (and for
// any name longer than max_name_length).
inline constexpr size_t max_name_length = 30;
int find_option(std::string_view name);

// The pieces of the setter, for the routines and their tests.
std::string_view trim(std::string_view text);      // blanks, tabs and line ends
std::string to_upper(std::string_view text);       // letters a-z only
bool parse_integer(std::string_view text, int64_t &value);  // [sign] digits
bool parse_real(std::string_view text, double &value);      // finite; exponent e, E, d or D
// An option's current value as the listing and e04zn's cvalue show it.
std::string option_value_text(const OptionStore &store, int option);

// The outcome of reading a Begin ... End block from a unit.
struct FileReading {
    enum class Status : uint8_t {
        ok,
        no_begin,        // end of the unit or a read error before "Begin"
        no_end,          // "Begin" found, the unit ended before "End"
        no_delimiter,    // a line without " = "
        setting_failed,  // a line's setting failed: see `setting`
    };
    Status status = Status::ok;
    int64_t line = 0;    // physical line of the failure, from the file's first line
    Setting setting;     // for setting_failed (its value view is not kept valid)
};

// Reads the block line by line from a unit connected for reading, applying
// each line as apply_setting does and stopping at the first failure; the
// lines before it stay applied.
FileReading read_option_block(OptionStore &store, int64_t unit);

// The same from any source of lines (the unit reader and the fuzz target
// share it); `first_line` is the number of the first line the source gives.
class LineSource {
public:
    virtual ~LineSource() = default;
    // False at the end of the input (or a read error).
    virtual bool next(std::string &line) = 0;
};
FileReading read_option_block(OptionStore &store, LineSource &source, int64_t first_line);

// ---------------------------------------------------------------------------
// Listing (e04ry "OPTIONS" and "ALL OPTIONS", and a solver's 'Print Options'):
// "Begin of Options", one line per option, "End of Options", then the values
// a solver chose, and for the full listing the hidden options and the hidden
// internal entries.  include_defaults true gives the full listing.  Returns
// false when a record could not be written.
bool print_options(const OptionStore &store, int64_t unit, bool include_defaults);

// A solver's listing ('Print Options'): the options it reads (registry
// rows), then those of its group it accepts but has no use for, marked so.
bool print_solver_options(const OptionStore &store, int64_t unit, const std::vector<int> &listed,
                          const std::vector<int> &unused);

}  // namespace kor::opt
