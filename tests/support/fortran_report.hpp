// The two lines the Fortran-style entries write after a failure's message
// lines when IFAIL is -1 or 0 (the frame tests check this layout itself).
#pragma once

#include <cstdio>
#include <string>

namespace kor::test {

inline std::string abnormal_exit(const std::string &routine, long long ifail, bool hard = false) {
    char line[100];
    std::snprintf(line, sizeof line, " ** ABNORMAL EXIT from KOR Library routine %s: IFAIL =%6lld\n",
                  routine.c_str(), ifail);
    return line + std::string(hard ? " ** KOR hard failure - execution terminated\n"
                                   : " ** KOR soft failure - control returned\n");
}

}  // namespace kor::test
