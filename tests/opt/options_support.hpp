// Helpers of the option tests: handles, the Fortran-style entry points of
// the option routines, and capture of what the error unit receives.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "e04zm_def.hpp"
#include "e04zn_def.hpp"
#include "e04zp_def.hpp"
#include "frame/record.hpp"
#include "frame/units.hpp"
#include "kor.h"
#include "opt/handle.hpp"
#include "opt/options.hpp"
#include "tables/option_table.hpp"

namespace kor::opt_test {

inline KorError fresh() { return KorError KOR_ERROR_INIT; }

// A handle for the length of a test.
class Handle {
public:
    explicit Handle(int64_t nvar = 2) {
        KorError fail = fresh();
        e04rac(&handle_, nvar, &fail);
        EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    }
    ~Handle() {
        KorError fail = fresh();
        if (handle_) e04rzc(&handle_, &fail);
    }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    void *get() const { return handle_; }
    void **address() { return &handle_; }
    opt::Problem &problem() const {
        opt::Problem *p = nullptr;
        EXPECT_EQ(opt::check_handle(handle_, &p), opt::HandleStatus::valid);
        return *p;
    }
    const opt::OptionStore &store() const { return opt::options(problem()); }

private:
    void *handle_ = nullptr;
};

// A directory of its own under /tmp, removed with its files at the end.
class ScratchDir {
public:
    ScratchDir() {
        char name[] = "/tmp/kor_options_XXXXXX";
        path_ = mkdtemp(name) ? name : "";
    }
    ~ScratchDir() {
        if (!path_.empty()) std::system(("rm -rf '" + path_ + "'").c_str());
    }
    std::string file(const std::string &name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

inline std::string read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

inline void write_file(const std::string &path, const std::string &text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline int64_t open_unit(const std::string &path, int64_t mode) {
    KorError fail = fresh();
    int64_t unit = -1;
    kor_file_open(path.c_str(), mode, &unit, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    return unit;
}

inline void close_unit(int64_t unit) {
    KorError fail = fresh();
    kor_file_close(unit, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
}

// Runs `body` with the error unit (or the advisory unit) connected to a
// scratch file and returns what was written there.
inline std::string capture_unit(bool advisory, const std::function<void()> &body) {
    ScratchDir dir;
    const std::string path = dir.file("unit.txt");
    const int64_t unit = open_unit(path, 1);
    const int64_t saved = advisory ? frame::units::advisory_unit() : frame::units::error_unit();
    advisory ? frame::units::set_advisory_unit(unit) : frame::units::set_error_unit(unit);
    body();
    advisory ? frame::units::set_advisory_unit(saved) : frame::units::set_error_unit(saved);
    close_unit(unit);
    return read_file(path);
}
inline std::string capture_errors(const std::function<void()> &body) { return capture_unit(false, body); }

// The Fortran-style entries with CHARACTER arguments as gfortran passes them.
inline int64_t e04zm_fortran(void *handle, const std::string &optstr, int64_t ifail = 1) {
    e04zmf_(&handle, optstr.data(), &ifail, optstr.size());
    return ifail;
}

struct FortranValue {
    int64_t ifail, ivalue = -77, optype = -77;
    double rvalue = -77.0;
    std::string cvalue;
};

inline FortranValue e04zn_fortran(void *handle, const std::string &optstr, int64_t ifail = 1,
                                  size_t cvalue_length = 30) {
    FortranValue v;
    std::string c(cvalue_length, '#');
    e04znf_(&handle, optstr.data(), &v.ivalue, &v.rvalue, c.data(), &v.optype, &ifail,
            optstr.size(), c.size());
    v.ifail = ifail;
    v.cvalue = c;
    return v;
}

inline int64_t e04zp_fortran(void *handle, int64_t unit, int64_t ifail = 1) {
    e04zpf_(&handle, &unit, &ifail);
    return ifail;
}

// The lines a noisy (IFAIL = -1) Fortran-style failure writes to the error
// unit: its message lines, padded to 80 characters and trimmed again by the
// record writer, then the soft-failure trailer.
inline std::string fortran_report(const std::vector<std::string> &lines, const char *routine,
                                  int64_t ifail) {
    std::string out;
    for (const std::string &l : lines) out += l + "\n";
    char trailer[100];
    std::snprintf(trailer, sizeof trailer, " ** ABNORMAL EXIT from KOR Library routine %s: IFAIL =%6lld\n",
                  routine, static_cast<long long>(ifail));
    return out + trailer + " ** KOR soft failure - control returned\n";
}

// A real as the error records write it.
inline std::string real_text(double v) {
    char text[40];
    frame::format_real(v, text, sizeof text);
    return text;
}

// A real as a caller would write it, reading back exactly.
inline std::string exact_text(double v) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", v);
    return text;
}

inline const opt::table::Row &row(int option) { return opt::table::rows[option]; }

}  // namespace kor::opt_test
