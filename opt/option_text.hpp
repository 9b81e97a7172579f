// Caller texts in the option routines' messages: the messages of e04zm and
// e04zn quote the caller's string whole (optstr = "Print Lev = 1") and name
// options by their long name in quotes.
#pragma once

#include <string>
#include <string_view>

#include "frame/record.hpp"

namespace kor::opt {

// The caller's text as a message quotes it: Fortran-style strings arrive
// padded with blanks, which carry nothing, so trailing blanks are dropped.
inline std::string_view without_trailing_blanks(std::string_view text) {
    size_t n = text.size();
    while (n > 0 && text[n - 1] == ' ') --n;
    return text.substr(0, n);
}

inline std::string quoted(std::string_view text) {
    return "\"" + std::string(without_trailing_blanks(text)) + "\"";
}

template <class Exit>
void raise_unknown_option(frame::Record &rec, std::string_view optstr) {
    return rec.raise<typename Exit::unknown_option>(quoted(optstr));
}

}  // namespace kor::opt
