// Output units: the engines of the x04 routines, and the C-side companions
// that C-coded parts of the library use.  The C side differs on purpose: its
// error unit is always standard output, and its record writer prints to
// standard output whatever unit it is given.
#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <string>

#include "frame/units.hpp"
#include "x04aa_def.hpp"
#include "x04ab_def.hpp"
#include "x04ac_def.hpp"
#include "x04ad_def.hpp"
#include "x04ba_def.hpp"
#include "x04bb_def.hpp"

namespace kor {

namespace {

void get_or_set(int64_t iflag, int64_t &unit, int64_t (*get)(), void (*set)(int64_t)) {
    if (iflag == 0)
        unit = get();
    else if (iflag == 1)
        set(unit);
}

std::string_view without_trailing_blanks(std::string_view text) {
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

std::atomic<int64_t> c_side_advisory_unit{frame::units::standard_output};

}  // namespace

void x04aa::engine(int64_t iflag, int64_t &nerr) {
    get_or_set(iflag, nerr, frame::units::error_unit, frame::units::set_error_unit);
}

void x04ab::engine(int64_t iflag, int64_t &nadv) {
    get_or_set(iflag, nadv, frame::units::advisory_unit, frame::units::set_advisory_unit);
}

void x04ba::engine(int64_t nout, std::string_view rec) { frame::units::write_record(nout, rec); }

void x04bb::engine(frame::Record &rec, int64_t nin, frame::TextOut text) {
    std::string line;
    switch (frame::units::read_record(nin, line)) {
    case frame::units::ReadStatus::ok:
        return text.assign(line);
    case frame::units::ReadStatus::end_of_file:
        return rec.raise<Exit::end_of_file>(nin);
    case frame::units::ReadStatus::not_connected:
        return rec.raise<Exit::not_readable>(nin);
    }
}

void x04ac::engine(frame::Record &rec, std::string_view filename, int64_t mode, int64_t &unit) {
    if (mode < 0 || mode > 2) return rec.raise<Exit::mode_invalid>(mode);
    const std::string path(without_trailing_blanks(filename));
    unit = frame::units::open_file(path.c_str(), frame::units::OpenMode(mode));
    if (unit >= 0) return;
    if (mode == 0) return rec.raise<Exit::cannot_read>();
    if (mode == 1) return rec.raise<Exit::cannot_write>();
    return rec.raise<Exit::cannot_append>();
}

void x04ad::engine(frame::Record &rec, int64_t unit) {
    if (!frame::units::stream_of(unit) || unit < frame::units::first_file_unit)
        return rec.raise<Exit::not_open>(unit);
    if (!frame::units::close_file(unit)) return rec.raise<Exit::close_failed>(unit);
}

}  // namespace kor

#define KOR_EXPORT __attribute__((visibility("default")))

extern "C" {

// C side: the error unit is standard output, and cannot be changed.
KOR_EXPORT void x04aaf_f(int64_t iflag, int64_t *nerr) {
    if (iflag == 0 && nerr) *nerr = kor::frame::units::standard_output;
}

// C side: its own advisory unit, with the same get/set rules.
KOR_EXPORT void x04abf_f(int64_t iflag, int64_t *nadv) {
    if (!nadv) return;
    if (iflag == 0)
        *nadv = kor::c_side_advisory_unit.load(std::memory_order_relaxed);
    else if (iflag == 1)
        kor::c_side_advisory_unit.store(*nadv, std::memory_order_relaxed);
}

// Writes a record to `stream` as the C side does; *status is 1 when the
// write fails.
KOR_EXPORT void x04bah(FILE *stream, const char *record, int64_t *status) {
    *status = 0;
    if (!stream || !record) {
        *status = 1;
        return;
    }
    const std::string_view text = kor::without_trailing_blanks(record);
    char format[32];
    std::snprintf(format, sizeof format, "%%.%lds\n", long(text.size()));
    if (std::fprintf(stream, format, text.data()) < 0) *status = 1;
    if (stream == stdout || stream == stderr) std::fflush(stream);
}

// C side: a record for any non-negative unit goes to standard output; a
// record of blanks only is an empty line.
KOR_EXPORT void x04baf_f(int64_t nout, const char *record) {
    if (nout < 0 || !record) return;
    int64_t status;
    x04bah(stdout, record, &status);
}

// Appends a line of debugging text to "KorDebug_file" in the current
// directory; does nothing when the file cannot be opened.
KOR_EXPORT void x04aaz(const char *text) {
    if (!text) return;
    FILE *file = std::fopen("KorDebug_file", "a");
    if (!file) return;
    std::fprintf(file, "%s\n", text);
    std::fclose(file);
}
}
