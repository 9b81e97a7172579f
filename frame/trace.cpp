#include "frame/trace.hpp"

#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <string>

#include "frame/record.hpp"
#include "frame/units.hpp"

namespace kor::frame {

namespace {

std::string real_text(double v) {
    char buffer[40];
    format_real(v, buffer, sizeof buffer);
    return buffer;
}

std::string integer_text(int64_t v) { return std::to_string(v); }

// Arrays are traced element by element, a few to a record.
template <class T, class Text>
void write_array(int64_t unit, const TraceArg &arg, Text text) {
    const T *values = static_cast<const T *>(arg.value);
    std::string head = "   " + std::string(arg.name) + "(" + std::to_string(arg.length) + ")";
    if (!values) {
        units::write_record(unit, head + " = (null)");
        return;
    }
    units::write_record(unit, head + " =");
    std::string line = "     ";
    for (int64_t i = 0; i < arg.length; ++i) {
        line += " " + text(values[i]);
        if (line.size() > 60) {
            units::write_record(unit, line);
            line = "     ";
        }
    }
    if (line.size() > 5) units::write_record(unit, line);
}

}  // namespace

std::atomic<int64_t> trace_switch{0};

void write_trace(const char *layer, const char *moment, std::initializer_list<TraceArg> args) {
    const int64_t unit = units::advisory_unit();
    units::write_record(unit, " " + std::string(layer) + ": " + moment);
    for (const TraceArg &arg : args) {
        const std::string name = "   " + std::string(arg.name);
        switch (arg.kind) {
        case TraceArg::real:
            units::write_record(unit, name + " = " + real_text(*static_cast<const double *>(arg.value)));
            break;
        case TraceArg::integer:
            units::write_record(unit, name + " = " + integer_text(*static_cast<const int64_t *>(arg.value)));
            break;
        case TraceArg::real_array:
            write_array<double>(unit, arg, real_text);
            break;
        case TraceArg::integer_array:
            write_array<int64_t>(unit, arg, integer_text);
            break;
        case TraceArg::text: {
            // Control characters (the record marks) are shown as '|'.
            std::string shown(static_cast<const char *>(arg.value), size_t(arg.length));
            for (char &c : shown)
                if (static_cast<unsigned char>(c) < 32) c = '|';
            while (!shown.empty() && shown.back() == ' ') shown.pop_back();
            units::write_record(unit, name + "(" + std::to_string(arg.length) + ") = '" + shown + "'");
            break;
        }
        case TraceArg::address: {
            char buffer[40];
            std::snprintf(buffer, sizeof buffer, "%p", arg.value);
            units::write_record(unit, name + " at " + (arg.value ? buffer : "(null)"));
            break;
        }
        }
    }
    units::write_record(unit, std::string(75, '-'));
}

}  // namespace kor::frame

extern "C" {
void y90gczn_(const int64_t *mode, int64_t *value) {
    if (*mode == 0)
        *value = kor::frame::trace_switch.load(std::memory_order_relaxed);
    else
        kor::frame::trace_switch.store(*value, std::memory_order_relaxed);
}
void y90gcft_(const int64_t *value) {
    const int64_t set = 1;
    int64_t copy = *value;
    y90gczn_(&set, &copy);
}
}
