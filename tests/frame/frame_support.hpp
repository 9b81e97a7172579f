// Helpers shared by the frame tests: scratch files, saved process-wide
// settings, and the C-side companions that no public header declares.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "frame/trace.hpp"
#include "frame/units.hpp"
#include "kor.h"

extern "C" {
void x04aaf_f(int64_t iflag, int64_t *nerr);
void x04abf_f(int64_t iflag, int64_t *nadv);
void x04baf_f(int64_t nout, const char *record);
void x04bah(FILE *stream, const char *record, int64_t *status);
void x04aaz(const char *text);
}

namespace kor::test {

inline KorError fresh_error() { return KorError KOR_ERROR_INIT; }

// A directory of its own under /tmp, removed with its files at the end.
class ScratchDir {
public:
    ScratchDir() {
        char name[] = "/tmp/kor_frame_XXXXXX";
        path_ = mkdtemp(name) ? name : "";
    }
    ~ScratchDir() {
        if (!path_.empty()) std::system(("rm -rf '" + path_ + "'").c_str());
    }
    const std::string &path() const { return path_; }
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

// Puts the error and advisory units and the trace switch back on scope exit,
// so that a failing test leaves the process as it found it.
class SettingsGuard {
public:
    SettingsGuard() : error_(frame::units::error_unit()), advisory_(frame::units::advisory_unit()) {
        const int64_t get = 0;
        y90gczn_(&get, &trace_);
    }
    ~SettingsGuard() {
        const int64_t set = 1;
        frame::units::set_error_unit(error_);
        frame::units::set_advisory_unit(advisory_);
        y90gczn_(&set, &trace_);
    }

private:
    int64_t error_, advisory_, trace_ = 0;
};

inline int64_t open_unit(const std::string &path, int64_t mode) {
    KorError fail = fresh_error();
    int64_t unit = -1;
    kor_file_open(path.c_str(), mode, &unit, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
    return unit;
}

inline void close_unit(int64_t unit) {
    KorError fail = fresh_error();
    kor_file_close(unit, &fail);
    EXPECT_EQ(fail.code, NE_NOERROR) << fail.message;
}

}  // namespace kor::test
