// Runs a program as a separate process and captures what it writes, for the
// tests of exits that print or end the process.
#pragma once

#include <string>
#include <vector>

namespace kor::test {

struct ProcessResult {
    int status;        // exit status, or 128 + signal number
    std::string out;   // standard output
    std::string err;   // standard error
};

// Runs `program` with `args` (no shell), optionally in directory `cwd`.
ProcessResult run_process(const std::string &program, const std::vector<std::string> &args,
                          const std::string &cwd = "");

// Path of a probe program built from tests/<chapter>/<name>.{c,f90}.
std::string probe(const std::string &name);

}  // namespace kor::test
