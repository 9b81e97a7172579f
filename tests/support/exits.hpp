// Which exit a C call took, and the values its message carries.  The words
// of every exit come from its routine's definition and are checked once for
// all routines (tests/interfaces); a routine's own tests name the exit they
// expect and check its values.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "frame/record.hpp"
#include "kor.h"

namespace kor::test {

// The values in `message` where `exit`'s C text has "%s", or false when the
// message is not that exit's.
inline bool match_exit_message(const frame::ExitInfo &exit, const std::string &message,
                               std::vector<std::string> &values) {
    const std::string pattern = std::string(exit.code_name) + ":\n  " + exit.c_text;
    std::vector<std::string> pieces;  // the literal text between slots
    std::string piece;
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern.compare(i, 2, "%s") == 0) {
            pieces.push_back(piece);
            piece.clear();
            ++i;
        } else {
            piece += pattern.compare(i, 2, "%%") == 0 ? pattern[i++] : pattern[i];
        }
    }
    pieces.push_back(piece);
    values.clear();
    if (message.compare(0, pieces[0].size(), pieces[0]) != 0) return false;
    size_t at = pieces[0].size();
    for (size_t k = 1; k < pieces.size(); ++k) {
        const bool last = k + 1 == pieces.size();
        const size_t end = last ? message.size() - pieces[k].size() : message.find(pieces[k], at);
        if (end == std::string::npos || end < at || message.compare(end, pieces[k].size(), pieces[k]) != 0)
            return false;
        values.push_back(message.substr(at, end - at));
        at = end + pieces[k].size();
    }
    return at == message.size();
}

// Expects that the call reported exit `Tag` of the routine described by
// `info`: its code, its outcome in errnum, and a message of its form.
// Returns the values the message shows, in order.
inline std::vector<std::string> exit_values(const frame::ExitInfo &exit, const KorError &fail) {
    std::vector<std::string> values;
    EXPECT_EQ(fail.code, exit.code) << "expected exit " << exit.name << ", got:\n" << fail.message;
    EXPECT_EQ(fail.errnum, exit.outcome) << exit.name;
    EXPECT_TRUE(match_exit_message(exit, fail.message, values))
        << "expected exit " << exit.name << ", got:\n" << fail.message;
    return values;
}

template <class Tag>
std::vector<std::string> exit_values(const frame::RoutineInfo &info, const KorError &fail) {
    return exit_values(info.exits[Tag::index], fail);
}

// The same, for an exit whose values are all reals, read back as doubles.
template <class Tag>
std::vector<double> exit_reals(const frame::RoutineInfo &info, const KorError &fail) {
    std::vector<double> reals;
    for (const std::string &v : exit_values<Tag>(info, fail)) reals.push_back(std::strtod(v.c_str(), nullptr));
    return reals;
}

// Expects a successful call.
inline void expect_success(const KorError &fail) {
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    EXPECT_EQ(fail.errnum, 0);
}

}  // namespace kor::test
