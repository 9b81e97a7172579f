// What the Fortran-style entries write for a failure with IFAIL = -1 or 0
// (the frame tests check this layout itself), and the whole output of a
// probe program that runs a list of labelled cases.
#pragma once

#include <cctype>
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/process.hpp"

namespace kor::test {

// The exit line and the line saying what happens next.
inline std::string abnormal_exit(const std::string &routine, long long ifail, bool hard = false) {
    char line[100];
    std::snprintf(line, sizeof line, " ** ABNORMAL EXIT from KOR Library routine %s: IFAIL =%6lld\n",
                  routine.c_str(), ifail);
    return line + std::string(hard ? " ** KOR hard failure - execution terminated\n"
                                   : " ** KOR soft failure - control returned\n");
}

// One call a probe makes: its label (beginning with the routine's name),
// the IFAIL returned, and the message lines of a failure or the one line a
// success prints.
struct FortranCase {
    std::string label;
    int ifail;
    std::vector<std::string> lines;
};

inline std::string failure_lines(const FortranCase &c, bool hard) {
    std::string routine = c.label.substr(0, c.label.find(' ')), out;
    for (char &ch : routine) ch = char(std::toupper(static_cast<unsigned char>(ch)));
    for (const std::string &line : c.lines) out += line + "\n";
    return out + abnormal_exit(routine, c.ifail, hard);
}

// The probe's output: each case's label, then (when noisy) the library's
// lines, then the IFAIL returned and a success's own line.
inline std::string probe_output(const std::vector<FortranCase> &cases, bool noisy) {
    std::string out;
    for (const FortranCase &c : cases) {
        out += c.label + "\n";
        if (noisy && c.ifail != 0) out += failure_lines(c, false);
        out += "ifail = " + std::to_string(c.ifail) + "\n";
        if (c.ifail == 0) out += c.lines.front() + "\n";
    }
    return out;
}

// A run of probe `name` in `mode` where every case returns: the probe's
// output, with the library's lines when noisy, and nothing on stderr.
inline void expect_probe_returns(const std::string &name, const std::string &mode,
                                 const std::vector<FortranCase> &cases, bool noisy) {
    SCOPED_TRACE(mode);
    const ProcessResult r = run_process(probe(name), {mode});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, probe_output(cases, noisy));
    EXPECT_EQ(r.err, "");
}

// A run of probe `name` in `mode` that repeats case c with IFAIL = 0: the
// routine's "hard" label, its failure report, and the end of the program.
inline void expect_probe_ends(const std::string &name, const std::string &mode, const FortranCase &c) {
    SCOPED_TRACE(mode);
    const ProcessResult r = run_process(probe(name), {mode});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, c.label.substr(0, c.label.find(' ')) + " hard\n" + failure_lines(c, true));
}

}  // namespace kor::test
