#include "frame/interface.hpp"

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "frame/errors.hpp"
#include "kor/codes.h"

// An out-of-line copy of the inline context initialiser, for callers
// outside C++.
[[gnu::used]] static void (*const keep_y90haan)(CallbackContext *) = y90haan_;

namespace kor::frame {

namespace {

const ExitInfo *find_exit(const RoutineInfo &info, int64_t message) {
    for (int i = 0; i < info.nexits; ++i)
        if (info.exits[i].message == message) return &info.exits[i];
    return nullptr;
}

// Appends `piece` to a bounded buffer; `used` tracks the length.
void append(char *out, int size, int &used, const char *piece, size_t n) {
    const size_t room = size_t(size - 1 - used);
    if (n > room) n = room;
    std::memcpy(out + used, piece, n);
    used += int(n);
    out[used] = '\0';
}

// Copies `pattern` into out, replacing each "%s" by the next value and "%%"
// by "%".  Values are inserted as text, never used as formats.
void substitute(const char *pattern, const char *const *values, int nvalues, char *out, int size,
                int &used) {
    int next = 0;
    for (const char *p = pattern; *p; ++p) {
        if (p[0] == '%' && p[1] == 's') {
            const char *v = next < nvalues ? values[next] : "";
            ++next;
            append(out, size, used, v, std::strlen(v));
            ++p;
        } else if (p[0] == '%' && p[1] == '%') {
            append(out, size, used, "%", 1);
            ++p;
        } else {
            append(out, size, used, p, 1);
        }
    }
}

void report_internal_error(const RoutineInfo &info, KorError *fail) {
    p01acc_c(nullptr, NE_INTERNAL_ERROR, info.c_name, fail);
}

}  // namespace

int format_real(double v, char *out, int size) {
    if (std::isnan(v)) return std::snprintf(out, size_t(size), "NaN");
    if (std::isinf(v)) return std::snprintf(out, size_t(size), v > 0 ? "Infinity" : "-Infinity");
    for (int digits = 1; digits < 17; ++digits) {
        std::snprintf(out, size_t(size), "%.*e", digits, v);
        if (std::strtod(out, nullptr) == v) break;
    }
    return int(std::strlen(out));
}

const char *RecordTexts::resolve(const char *field) const {
    if (field[0] != text_mark) return field;
    const long at = std::strtol(field + 1, nullptr, 10);
    return at >= 0 && at < used ? data + at : "";
}

// Puts a text value where the report will find it: in the interface's store
// when there is one (the field then refers to it), else into the field.
// Marks and NULs would break the record or the message; they show as '?'.
namespace {

void store_text(RecordTexts *texts, std::string_view text, char *field, size_t size) {
    const size_t room = texts ? size_t(RecordTexts::capacity - texts->used) : 0;
    if (room == 0) {
        std::snprintf(field, size, "%.25s", std::string(text).c_str());
        for (char *c = field; *c; ++c)
            if (*c == record_mark || *c == text_mark) *c = '?';
        return;
    }
    const size_t n = std::min(text.size(), room - 1);
    char *out = texts->data + texts->used;
    for (size_t i = 0; i < n; ++i)
        out[i] = text[i] == '\0' || text[i] == record_mark ? '?' : text[i];
    out[n] = '\0';
    std::snprintf(field, size, "%c%d", text_mark, texts->used);
    texts->used += int(n + 1);
}

}  // namespace

void Record::write_record(RecordTexts *texts, char *text, int64_t length, const ExitInfo &exit,
                          const RecordValue *values, int count) {
    if (length <= 0) return;
    char buffer[record_length * 2];
    int used = std::snprintf(buffer, sizeof buffer, "\x01%" PRId64 "\x01%" PRId64 "\x01%d\x01",
                             exit.outcome, exit.message, count);
    for (int i = 0; i < count; ++i) {
        char field[40];
        switch (values[i].kind) {
        case RecordValue::real_value:
            format_real(values[i].real, field, sizeof field);
            break;
        case RecordValue::integer_value:
            std::snprintf(field, sizeof field, "%" PRId64, values[i].integer);
            break;
        case RecordValue::text_value:
            store_text(texts, values[i].text, field, sizeof field);
            break;
        }
        used += std::snprintf(buffer + used, sizeof buffer - size_t(used), "%s\x01", field);
    }
    const size_t n = std::min<size_t>(size_t(used), size_t(length - 1));
    std::memcpy(text, buffer, n);
    std::memset(text + n, ' ', size_t(length - 1) - n);
    text[length - 1] = '\0';
}

void report_null_pointer(const RoutineInfo &info, const char *name, KorError *fail) {
    char message[512];
    std::snprintf(message, sizeof message, kor_errlist[NE_BAD_PARAM], name);
    p01acc_c(message, NE_BAD_PARAM, info.c_name, fail);
}

void compose_c_message(const ExitInfo &exit, const char *const *values, int nvalues, char *out,
                       int size) {
    int used = 0;
    out[0] = '\0';
    append(out, size, used, exit.code_name, std::strlen(exit.code_name));
    append(out, size, used, ":\n  ", 4);
    substitute(exit.c_text, values, nvalues, out, size, used);
}

void report_c(const RoutineInfo &info, const char *text, int64_t outcome, KorError *fail,
              const RecordTexts *texts) {
    if (outcome == 0) return;
    if (fail) fail->errnum = outcome;
    if (outcome == -999) {
        p01acc_c("NE_ALLOC_FAIL:\n  Dynamic memory allocation failed.", NE_ALLOC_FAIL,
                 info.c_name, fail);
        return;
    }
    int64_t scanned_outcome = 0, message = 0;
    if (std::sscanf(text, "\x01%" SCNd64 "\x01%" SCNd64 "\x01", &scanned_outcome, &message) != 2)
        return report_internal_error(info, fail);
    const ExitInfo *exit = find_exit(info, message);
    if (!exit) return report_internal_error(info, fail);
    if (exit->c_success) return;

    // The scanning template holds one 25-character conversion per value.
    char pattern[64 + 16 * max_record_values];
    int used = std::snprintf(pattern, 64, "\x01%%" SCNd64 "\x01%%" SCNd64 "\x01%%" SCNd64);
    for (int i = 0; i < exit->nvalues; ++i) used += std::snprintf(pattern + used, 16, "\x01%%25[^\x01]");
    char values[max_record_values][26] = {};
    int64_t count = 0;
    char *v[max_record_values];
    for (int i = 0; i < max_record_values; ++i) v[i] = values[i];
    const int scanned = std::sscanf(text, pattern, &scanned_outcome, &message, &count, v[0], v[1],
                                    v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], v[11]);
    if (scanned < 3 + exit->nvalues || count != exit->nvalues) return report_internal_error(info, fail);

    const char *shown[max_record_values];
    for (int i = 0; i < max_record_values; ++i) shown[i] = texts ? texts->resolve(values[i]) : values[i];
    char composed[512];
    compose_c_message(*exit, shown, exit->nvalues, composed, sizeof composed);
    p01acc_c(composed, exit->code, info.c_name, fail);
}

namespace {

// Appends `line` as 80-character records: a longer line goes on in further
// records, each again beginning "** ", broken after a blank where there is
// one.
void add_fortran_line(std::string &records, std::string line) {
    constexpr size_t width = fortran_line_length, prefix = 3;
    while (line.size() > width) {
        size_t cut = line.rfind(' ', width);
        if (cut == std::string::npos || cut <= prefix) cut = width;
        std::string head = line.substr(0, cut);
        head.resize(width, ' ');
        records += head;
        size_t rest = cut;
        while (rest < line.size() && line[rest] == ' ') ++rest;
        line = "** " + line.substr(rest);
    }
    line.resize(width, ' ');
    records += line;
}

}  // namespace

void report_fortran(const RoutineInfo &info, const char *text, int64_t outcome, int64_t *ifail,
                    const RecordTexts *texts) {
    if (outcome == 0) {
        *ifail = 0;
        return;
    }
    constexpr int width = fortran_line_length;
    std::string records;
    if (outcome == -999) {
        add_fortran_line(records, "** Dynamic memory allocation failed.");
    } else {
        int64_t message = 0, status = 0;
        char fields[max_record_values][width];
        p01abtn_(text, &message, &fields[0][0], &status, record_length, width);
        const ExitInfo *exit = status == 0 ? find_exit(info, message) : nullptr;
        if (!exit) {
            char line[width + 1];
            std::snprintf(line, sizeof line, "** Unexpected error (%5" PRId64 ",%5" PRId64 ")",
                          outcome, message);
            add_fortran_line(records, line);
        } else {
            std::string values[max_record_values];
            for (int i = 0; i < max_record_values; ++i) {
                int n = width;
                while (n > 0 && fields[i][n - 1] == ' ') --n;
                values[i].assign(fields[i], size_t(n));
                if (texts) values[i] = texts->resolve(values[i].c_str());
            }
            // Each line takes the values its own "%s" slots ask for, in order.
            int next = 0;
            for (int l = 0; l < exit->nlines; ++l) {
                std::string line = "** ";
                for (const char *p = exit->fortran_lines[l]; *p; ++p) {
                    if (p[0] == '%' && (p[1] == 's' || p[1] == '%')) {
                        line += p[1] == 's' ? (next < max_record_values ? values[next++] : "") : "%";
                        ++p;
                    } else {
                        line += *p;
                    }
                }
                add_fortran_line(records, line);
            }
        }
    }
    const int64_t nlines = int64_t(records.size() / width);
    const size_t name_len = std::strlen(info.fortran_name);
    p01abzu_(ifail, &outcome, info.fortran_name, records.data(), &nlines, name_len, width);
}

}  // namespace kor::frame

namespace kor::frame {

void TextOut::assign(std::string_view text) const {
    const size_t n = std::min<size_t>(text.size(), size_t(length > 0 ? length : 0));
    std::memcpy(data, text.data(), n);
    std::memset(data + n, ' ', size_t(length > 0 ? length : 0) - n);
}

void terminate_text(char *data, int64_t length) {
    if (length < 0) return;
    while (length > 0 && data[length - 1] == ' ') --length;
    data[length] = '\0';
}

}  // namespace kor::frame
