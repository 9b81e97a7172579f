// Helpers shared by the frame tests: saved process-wide settings, and the
// C-side companions that no public header declares.
#pragma once

#include <cstdint>
#include <cstdio>

#include "frame/trace.hpp"
#include "frame/units.hpp"
#include "kor.h"
#include "support/files.hpp"

extern "C" {
void x04aaf_f(int64_t iflag, int64_t *nerr);
void x04abf_f(int64_t iflag, int64_t *nadv);
void x04baf_f(int64_t nout, const char *record);
void x04bah(FILE *stream, const char *record, int64_t *status);
void x04aaz(const char *text);
}

namespace kor::test {

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

}  // namespace kor::test
