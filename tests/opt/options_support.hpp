// Helpers of the option tests: handles, the Fortran-style entry points of
// the option routines, and capture of what the error unit receives.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <functional>
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
#include "support/files.hpp"
#include "support/fortran_report.hpp"
#include "tables/option_table.hpp"

namespace kor::opt_test {

using kor::test::close_unit;
using kor::test::fresh_error;
using kor::test::open_unit;
using kor::test::read_file;
using kor::test::ScratchDir;
using kor::test::write_file;

// A handle for the length of a test.
class Handle {
public:
    explicit Handle(int64_t nvar = 2) {
        KorError fail = fresh_error();
        e04rac(&handle_, nvar, &fail);
        EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    }
    ~Handle() {
        KorError fail = fresh_error();
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
    return out + kor::test::abnormal_exit(routine, ifail);
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
