// What the Fortran-style entries write for a failure with IFAIL = -1 or 0
// (the frame tests check this layout itself), and the whole output of a
// probe program that runs a list of labelled cases.
#pragma once

#include <cctype>
#include <cstdio>
#include <string>
#include <vector>

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

}  // namespace kor::test
