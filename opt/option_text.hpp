// Caller texts in the option routines' messages.
//
// The messages of e04zm and e04zn quote the caller's string whole
// (optstr = "Print Lev = 1") and name options by their long name, which may
// have 30 characters.  An error record's value field reaches a C report with
// at most 25 characters, and an empty field cannot be read back at all, so a
// quoted text travels as several fields that the message writes side by
// side ("%s%s..."): the quotes are part of the text, so no field is ever
// empty, and no field but the last ends in a blank, since the Fortran-style
// report trims each field's trailing blanks.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "frame/record.hpp"

namespace kor::opt {

inline constexpr size_t record_field_length = 25;

// `text` in double quotes, cut into exactly `count` fields (count >= 1, and
// the quoted text at least `count` characters long).  A text too long for
// the fields is shortened and ends in '..."'.  Record marks and NULs show as
// '?'.
template <size_t Count>
std::array<std::string, Count> quoted_fields(std::string_view text);

// True when the quoted text fits one field (the short form of a message).
bool quoted_fits_one_field(std::string_view text);

namespace detail {
void split_quoted(std::string_view text, std::string *fields, size_t count);
}

template <size_t Count>
std::array<std::string, Count> quoted_fields(std::string_view text) {
    std::array<std::string, Count> fields;
    detail::split_quoted(text, fields.data(), Count);
    return fields;
}

// The caller's text as a message quotes it: Fortran-style strings arrive
// padded with blanks, which carry nothing, so trailing blanks are dropped.
inline std::string_view without_trailing_blanks(std::string_view text) {
    size_t n = text.size();
    while (n > 0 && text[n - 1] == ' ') --n;
    return text.substr(0, n);
}

// Raises Exit::unknown_option, or Exit::unknown_option_long when the quoted
// optstr needs more than one field.
template <class Exit>
void raise_unknown_option(frame::Record &rec, std::string_view optstr) {
    const std::string_view text = without_trailing_blanks(optstr);
    if (quoted_fits_one_field(text))
        return rec.raise<typename Exit::unknown_option>(quoted_fields<1>(text)[0]);
    const auto f = quoted_fields<6>(text);
    return rec.raise<typename Exit::unknown_option_long>(f[0], f[1], f[2], f[3], f[4], f[5]);
}

}  // namespace kor::opt
