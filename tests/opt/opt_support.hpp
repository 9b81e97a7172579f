// Helpers of the handle and option tests: a handle for the length of a
// test, what e04ry prints, and the exit a C call must take with the values
// its message carries (support/exits.hpp) in a form a table row can hold.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "routine_index.hpp"  // every routine's exits
#include "kor.h"
#include "opt/handle.hpp"
#include "opt/options.hpp"
#include "opt/problem.hpp"
#include "support/exits.hpp"
#include "support/files.hpp"
#include "tables/option_table.hpp"

namespace opt_test {

using namespace kor::test;
using I = std::vector<int64_t>;
using R = std::vector<double>;
inline const double nan = std::numeric_limits<double>::quiet_NaN();
inline const double inf = std::numeric_limits<double>::infinity();

// A handle of nvar variables, freed at the end of the scope.
class Handle {
public:
    explicit Handle(int64_t nvar = 2) {
        KorError fail = fresh_error();
        e04rac(&h_, nvar, &fail);
        EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    }
    ~Handle() {
        KorError fail = fresh_error();
        if (h_) e04rzc(&h_, &fail);
    }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    void *get() const { return h_; }
    kor::opt::Problem &problem() const {
        kor::opt::Problem *p = nullptr;
        EXPECT_EQ(kor::opt::check_handle(h_, &p), kor::opt::HandleStatus::valid);
        return *p;
    }
    const kor::opt::OptionStore &store() const { return kor::opt::options(problem()); }

private:
    void *h_ = nullptr;
};

// What e04ry writes for some keywords, or the failure it reports.
inline std::string printed(void *h, const std::string &keywords) {
    ScratchDir scratch;
    const std::string path = scratch.file("print.txt");
    const int64_t unit = open_unit(path, 1);
    KorError fail = fresh_error();
    e04ryc(h, unit, keywords.c_str(), &fail);
    close_unit(unit);
    return fail.code ? "e04ryc failed: " + std::string(fail.message) : read_file(path);
}

// Everything the handle holds but its options (the undocumented dump):
// the same before and after a failed call.
inline std::string state(const Handle &h) { return printed(h.get(), "$DUMP$ALMOST$ALL$"); }

// An exit and the values its message must carry (by default: success).  A value that reads
// as a number is compared as a number (NaN equal to NaN), any other as text.
struct Want {
    std::vector<std::string> (*values)(const kor::frame::RoutineInfo &, const KorError &) = nullptr;
    int index = -1;
    std::vector<std::string> expected;
};

inline bool as_number(const std::string &text, double &v) {
    char *end = nullptr;
    v = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0';
}

inline std::string number_text(double v) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", v);
    return text;
}

template <class Tag>
Want want_text(std::vector<std::string> values) {
    return {&exit_values<Tag>, Tag::index, std::move(values)};
}

template <class Tag>
Want want(std::initializer_list<double> values = {}) {
    std::vector<std::string> texts;
    for (double v : values) texts.push_back(number_text(v));
    return want_text<Tag>(texts);
}

inline void expect_exit(const kor::frame::RoutineInfo &info, const Want &w, const KorError &fail) {
    if (!w.values) return expect_success(fail);
    SCOPED_TRACE(std::string("expected exit ") + info.exits[w.index].name);
    std::vector<std::string> got = w.values(info, fail), expected = w.expected;
    double a, b;
    for (size_t i = 0; i < got.size() && i < expected.size(); ++i)
        if (as_number(expected[i], a) && as_number(got[i], b)) expected[i] = number_text(a), got[i] = number_text(b);
    EXPECT_EQ(got, expected);
}

// One row of a routine's table: how it changes the arguments of a call
// that would succeed, and the exit the call then takes.
template <class Args>
struct Case {
    std::function<void(Args &)> change;
    Want want;
};

// Runs every row on a fresh handle (prepared by `setup` from the row's arguments, when given):
// the row's exit, and a failed call leaves the handle as it was.
template <class Args, class Call>
void expect_cases(const kor::frame::RoutineInfo &info, int64_t nvar, const std::vector<Case<Args>> &cases,
                  Call call, std::function<void(Handle &, const Args &)> setup = {}) {
    for (size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE("row " + std::to_string(i + 1) + " of the table");
        Handle h(nvar);
        Args a;
        cases[i].change(a);
        if (setup) setup(h, a);
        const std::string before = state(h);
        KorError fail = fresh_error();
        call(h.get(), a, &fail);
        expect_exit(info, cases[i].want, fail);
        if (cases[i].want.values) { EXPECT_EQ(state(h), before); }
    }
}

}  // namespace opt_test
