// The argument trace: when the process-wide switch is on, each trace layer
// writes every argument by name on entry and on exit, to the advisory unit.
#pragma once

#include <atomic>
#include <cstdint>
#include <initializer_list>

extern "C" {
// mode 0: copy the switch into *value; otherwise make *value the switch.
void y90gczn_(const int64_t *mode, int64_t *value);
// Sets the switch.
void y90gcft_(const int64_t *value);
}

namespace kor::frame {

// The switch itself; read on every call, so the test is inline.
extern std::atomic<int64_t> trace_switch;
inline bool trace_on() { return trace_switch.load(std::memory_order_relaxed) != 0; }

struct TraceArg {
    enum Kind { real, integer, real_array, integer_array, text, address } kind;
    const char *name;
    const void *value;
    int64_t length;
};

inline TraceArg trace_value(const char *name, const double *v) { return {TraceArg::real, name, v, 1}; }
inline TraceArg trace_value(const char *name, const int64_t *v) { return {TraceArg::integer, name, v, 1}; }
inline TraceArg trace_array(const char *name, const double *v, int64_t n) { return {TraceArg::real_array, name, v, n}; }
inline TraceArg trace_array(const char *name, const int64_t *v, int64_t n) { return {TraceArg::integer_array, name, v, n}; }
inline TraceArg trace_text(const char *name, const char *v, int64_t n) { return {TraceArg::text, name, v, n}; }
inline TraceArg trace_address(const char *name, const void *v) { return {TraceArg::address, name, v, 0}; }

// Writes one block: a header naming the layer and the moment, one entry per
// argument, and a rule line.
void write_trace(const char *layer, const char *moment, std::initializer_list<TraceArg> args);

// Runs `call` between an entry and an exit block when tracing is on.
template <class Call>
void traced(const char *layer, Call &&call, std::initializer_list<TraceArg> args) {
    if (!trace_on()) {
        call();
        return;
    }
    write_trace(layer, "entry", args);
    call();
    write_trace(layer, "exit", args);
}

}  // namespace kor::frame
