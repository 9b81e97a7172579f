// How an engine reports: an outcome code and at most one error record text
// ("\x01outcome\x01message\x01count\x01value\x01...").  Engines raise named
// exits; only this file writes record bytes.
#pragma once

#include <cstdint>
#include <exception>
#include <string_view>
#include <type_traits>

#include "frame/context.hpp"

namespace kor::frame {

inline constexpr char record_mark = '\x01';
inline constexpr int max_record_values = 12;
inline constexpr int max_fortran_lines = 8;     // as the definitions give them
inline constexpr int fortran_line_length = 80;

// One exit of a routine as its definition file gives it.
struct ExitInfo {
    int64_t outcome;
    int64_t message;
    int code;                       // NE_/NW_ code of the C interface
    const char *code_name;
    const char *c_text;             // composed after "NAME:\n  "; %s takes a value
    int nvalues;
    int nlines;
    const char *fortran_lines[max_fortran_lines];  // "** " is added; %s takes a value
    bool c_success = false;         // the C interface reports success instead
    const char *name = "";          // the exit's name in the definition
};

struct RoutineInfo {
    const char *c_name;             // "c05ayc": names the routine in C reports
    const char *fortran_name;       // "C05AYF": names it in the ABNORMAL EXIT line
    const ExitInfo *exits;
    int nexits;
};

// Names one exit at compile time, so that an engine's raise is checked
// against the values its definition promises.
template <int Index, class... Values>
struct ExitTag {
    static constexpr int index = Index;
};

// Thrown by a user-function call when the context asks the engine to return
// at once; caught by the engine layer, which leaves outcome and record alone.
struct Abandon {};

// Carries an exception that a user function threw through the engine,
// whose objects are destroyed on the way as usual; the engine layer throws
// the original on to the routine's caller.
struct UserException {
    std::exception_ptr original;
};

// Text values of a report, kept by the interface for the length of a call
// (the context points to them): a text of any length travels here, and the
// record's field holds only a reference to it, text_mark and the offset.
// Without such a store (an engine layer called directly) a text is written
// into the field itself, and at most 25 characters of it reach a C report.
inline constexpr char text_mark = '\x02';
struct RecordTexts {
    static constexpr int capacity = 2048;
    int used = 0;
    char data[capacity];  // NUL-terminated texts one after another; left uninitialised

    // The text a field refers to, or the field itself.
    const char *resolve(const char *field) const;
};

// A value field of a record: a real in exponent form, an integer, or a text.
struct RecordValue {
    enum Kind { real_value, integer_value, text_value } kind;
    double real = 0.0;
    int64_t integer = 0;
    std::string_view text;
    RecordValue(double v) : kind(real_value), real(v) {}
    RecordValue(int64_t v) : kind(integer_value), integer(v) {}
    RecordValue(std::string_view v) : kind(text_value), text(v) {}
};

// Writes the shortest exponent-form text that reads back as the same double.
int format_real(double v, char *out, int size);

class Record {
public:
    Record(const RoutineInfo &info, CallbackContext *ctx, char *text, int64_t length,
           int64_t *outcome)
        : info_(info), texts_(ctx ? static_cast<RecordTexts *>(ctx->texts) : nullptr), text_(text),
          length_(length), outcome_(outcome) {}

    template <class Tag, class... Args>
    void raise(Args... args) {
        raise_tagged(static_cast<Tag *>(nullptr), args...);
    }

    bool raised() const { return raised_; }
    const RoutineInfo &info() const { return info_; }

private:
    template <int Index, class... Values, class... Args>
    void raise_tagged(ExitTag<Index, Values...> *, Args... args) {
        static_assert(sizeof...(Values) == sizeof...(Args),
                      "the exit carries a different number of values");
        const RecordValue values[sizeof...(Values) + 1] = {RecordValue(Values(args))..., RecordValue(int64_t(0))};
        raised_ = true;
        *outcome_ = info_.exits[Index].outcome;
        write_record(texts_, text_, length_, info_.exits[Index], values, int(sizeof...(Values)));
    }
    // Out of line and given the fields it needs rather than the record, so
    // that a record stays in registers on the path that raises nothing.
    static void write_record(RecordTexts *texts, char *text, int64_t length, const ExitInfo &exit,
                             const RecordValue *values, int count);

    const RoutineInfo &info_;
    RecordTexts *texts_;  // the interface's store of long texts, if any
    char *text_;
    int64_t length_;
    int64_t *outcome_;
    bool raised_ = false;
};

}  // namespace kor::frame

namespace kor::frame {

// A character result in the Fortran manner: `length` characters, blank
// padded, no terminator.
struct TextOut {
    char *data;
    int64_t length;
    void assign(std::string_view text) const;
};

// Ends a C caller's copy of a TextOut after its last non-blank character.
void terminate_text(char *data, int64_t length);

}  // namespace kor::frame
