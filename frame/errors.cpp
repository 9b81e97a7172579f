#include "frame/errors.hpp"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "frame/units.hpp"
#include "kor/codes.h"

namespace {

using kor::frame::units::error_unit;
using kor::frame::units::write_record;

// A report is a warning unless the letter after the first N among its first
// five characters is E (the sixth character when there is no such N).
bool is_error_text(const char *text) {
    const size_t length = std::strlen(text);
    size_t at = 5;
    for (size_t i = 0; i < 5 && i < length; ++i)
        if (text[i] == 'N') {
            at = i + 1;
            break;
        }
    return at < length && text[at] == 'E';
}

std::string fixed_text(const char *s, size_t n) {
    std::string out(s, n);
    while (!out.empty() && (out.back() == ' ' || out.back() == '\0')) out.pop_back();
    return out;
}

}  // namespace

extern "C" {

void p01acc_c(const char *text, int code, const char *routine, KorError *fail) {
    if (!text) {
        const bool known = code >= 0 && code < KOR_ERRLIST_SIZE && kor_errlist[code];
        text = known ? kor_errlist[code] : kor_errlist[NE_INTERNAL_ERROR];
    }
    if (code == 0 && !fail) return;
    if (code != 0 && (!fail || fail->print)) {
        std::fprintf(stderr,
                     is_error_text(text) ? "Error detected by KOR routine %s:\n%s\n"
                                         : "Warning from KOR routine %s:\n%s\n",
                     routine, text);
        if (!fail) {
            std::fprintf(stderr, "...KOR Function Terminated\n");
            std::exit(1);
        }
    }
    fail->code = code;
    if (fail->handler) fail->handler(text, code, routine);
    // Every successful call ends here, so the copy is kept cheap.
    const size_t n = strnlen(text, sizeof fail->message - 1);
    std::memcpy(fail->message, text, n);
    fail->message[n] = '\0';
}

void p01abzu_(int64_t *ifail, const int64_t *outcome, const char *routine, const char *lines,
              const int64_t *nlines, size_t routine_len, size_t line_len) {
    if (*outcome != 0) {
        const int64_t hard = *ifail == 0;
        const int64_t quiet = *ifail != 0 && *ifail != -1;
        p01abxu_(&quiet, &hard, outcome, routine, lines, nlines, routine_len, line_len);
    }
    *ifail = *outcome;
}

void p01abxu_(const int64_t *quiet, const int64_t *hard, const int64_t *outcome,
              const char *routine, const char *lines, const int64_t *nlines, size_t routine_len,
              size_t line_len) {
    if (*quiet) return;
    const int64_t unit = error_unit();
    for (int64_t i = 0; i < *nlines; ++i) write_record(unit, std::string_view(lines + i * line_len, line_len));
    char record[73];
    std::snprintf(record, sizeof record, " ** ABNORMAL EXIT from KOR Library routine %s: IFAIL =%6" PRId64,
                  fixed_text(routine, routine_len).c_str(), *outcome);
    write_record(unit, record);
    if (*hard) {
        write_record(unit, " ** KOR hard failure - execution terminated");
        std::exit(1);
    }
    write_record(unit, " ** KOR soft failure - control returned");
}

void p01abtn_(const char *text, int64_t *message, char *fields, int64_t *status, size_t text_len,
              size_t field_len) {
    std::memset(fields, ' ', 12 * field_len);
    *message = 0;
    *status = 0;
    if (text_len == 0 || text[0] != '\x01') {
        *status = -1000;
        return;
    }
    size_t length = text_len;
    while (length > 1 && (text[length - 1] == ' ' || text[length - 1] == '\0')) --length;
    if (length == 1 || text[length - 1] != '\x01') {
        *status = -1000;
        return;
    }
    // Fields lie between consecutive marks: outcome, message, count, values.
    size_t start = 1;
    int index = 0;
    for (size_t i = 1; i < length; ++i) {
        if (text[i] != '\x01') continue;
        const std::string field(text + start, i - start);
        if (index == 1) {
            char *end = nullptr;
            *message = std::strtoll(field.c_str(), &end, 10);
            if (field.empty() || *end != '\0') {
                *status = -1000;
                return;
            }
        } else if (index >= 3 && index < 3 + 12) {
            std::memcpy(fields + (index - 3) * field_len, field.data(), std::min(field.size(), field_len));
        }
        ++index;
        start = i + 1;
    }
    if (index < 3) *status = -1000;
}

void p01abz_f(void) {}

void p01acf_f(int64_t *ifail, int64_t error, const char *routine, const char *variable,
              const char *text) {
    const int64_t value = *ifail;
    const int64_t magnitude = value < 0 ? -value : value;
    const bool prints = value == -13 || value == -1 || value == 0 || (value > 0 && (value / 10) % 10 != 0);
    if (prints) {
        if (text) std::fprintf(stderr, "%s\n", text);
        if (value != -13) {
            char record[160];
            if (variable)
                std::snprintf(record, sizeof record,
                              " ** ABNORMAL EXIT from KOR Library routine %6.6s: %s = %6" PRId64,
                              routine, variable, error);
            else
                std::snprintf(record, sizeof record, " ** ABNORMAL EXIT from KOR Library routine %6.6s",
                              routine);
            write_record(error_unit(), record);
            if (magnitude % 10 == 1) {
                write_record(error_unit(), " ** KOR soft failure - control returned");
            } else {
                write_record(error_unit(), " ** KOR hard failure - execution terminated");
                p01abz_f();
            }
        }
    }
    *ifail = error;
}

void p01abw_f(const char *parameter, const char *routine, const char *value, int64_t *count,
              int64_t ifail_switch) {
    ++*count;
    const int64_t magnitude = ifail_switch < 0 ? -ifail_switch : ifail_switch;
    if (magnitude % 10 == 1 && (magnitude / 10) % 10 == 0) return;
    char text[256];
    std::snprintf(text, sizeof text,
                  " *****  Parameter  %1.1s  is invalid in routine  %1.1s  ***** \n"
                  "        Value supplied is\n        %1.1s",
                  parameter, routine, value);
    const int64_t unit = error_unit();
    write_record(unit, "");
    // Each line of the report is a record of its own.
    const char *line = text;
    while (const char *end = std::strchr(line, '\n')) {
        write_record(unit, std::string_view(line, size_t(end - line)));
        line = end + 1;
    }
    write_record(unit, line);
}

}  // extern "C"
