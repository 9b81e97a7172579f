// The steps that every C and Fortran-style interface takes around its
// engine.  Generated shells call these; routines differ only in the
// RoutineInfo and the body that calls their entry layer.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <new>
#include <string>

#include "frame/context.hpp"
#include "frame/errors.hpp"
#include "frame/record.hpp"
#include "frame/trace.hpp"
#include "kor/types.h"

extern "C" {
// One-time preparation of the unit table that records are written to.
void f90_io_init(void);
}

namespace kor::frame {
// Set once the unit table is ready: every C interface tests it inline.
extern std::atomic<bool> io_ready;
}

namespace kor::frame {

struct NamedPointer {
    const char *name;
    const void *pointer;
    bool used = true;  // false: the call does not use it (its count is 0), so null is fine
};

inline void clear_record(char *text) {
    std::memset(text, ' ', record_length - 1);
    text[record_length - 1] = '\0';
}

// The record as a call starts it.  Only a raised exit fills it, and only a
// text that begins with the record mark is read, so a blank first character
// makes it empty; the rest is cleared only when the trace will show it.
// Every call pays for this, so it costs two stores when tracing is off.
inline void start_record(char *text) {
    if (trace_on()) return clear_record(text);
    text[0] = ' ';
    text[record_length - 1] = '\0';
}

void report_null_pointer(const RoutineInfo &info, const char *name, KorError *fail);

// Reports NE_BAD_PARAM for the first null pointer that the call uses; true
// when all are set.  A fold over the pointers, so that a call pays one test
// per pointer and the names are touched only on failure.
template <class... Pointers>
bool check_pointers(const RoutineInfo &info, KorError *fail, Pointers... pointers) {
    const char *missing = nullptr;
    ((missing || pointers.pointer || !pointers.used ? void() : void(missing = pointers.name)), ...);
    if (missing) [[unlikely]] {
        report_null_pointer(info, missing, fail);
        return false;
    }
    return true;
}

// Turn an engine's outcome and record into the C or the Fortran report.
// `texts` holds the call's long text values, where the interface kept any.
void report_c(const RoutineInfo &info, const char *text, int64_t outcome, KorError *fail,
              const RecordTexts *texts = nullptr);
void report_fortran(const RoutineInfo &info, const char *text, int64_t outcome, int64_t *ifail,
                    const RecordTexts *texts = nullptr);

// Composes the C message of an exit from its values ("%s" slots).
void compose_c_message(const ExitInfo &exit, const char *const *values, int nvalues, char *out,
                       int size);

template <class Body>
void run_engine(const RoutineInfo &info, CallbackContext *ctx, char *text, int64_t length,
                int64_t *outcome, Body &&body) {
    Record rec(info, ctx, text, length, outcome);
    try {
        body(rec);
        if (!rec.raised()) *outcome = 0;
    } catch (const Abandon &) {
        return;  // outcome and record stay as the interface left them
    } catch (const UserException &e) {
        std::rethrow_exception(e.original);
    } catch (const std::bad_alloc &) {
        *outcome = -999;
    }
    if (length > 0) text[length - 1] = '\0';
}

// The value a C caller passed for an enumeration, read from its bytes: a
// value outside the enumeration's range is legal in C, but loading it as
// the C++ enumeration type would not be.
template <class Enum>
int64_t enum_value(const Enum &value) {
    static_assert(sizeof(Enum) == sizeof(int32_t), "C enumerations are int-sized");
    int32_t raw;
    std::memcpy(&raw, &value, sizeof raw);
    return raw;
}

// The report that closes every successful C call: kept inline and free of
// any search, since it is paid on every call.
inline void report_success(const RoutineInfo &info, KorError *fail) {
    static constexpr char text[] = "NE_NOERROR:\n  No error.";
    fail->code = 0;
    if (fail->handler) fail->handler(text, 0, info.c_name);
    std::memcpy(fail->message, text, sizeof text);
}

template <class Body, class... Pointers>
void c_interface(const RoutineInfo &info, KorError *fail, Body &&body, Pointers... pointers) {
    if (!io_ready.load(std::memory_order_relaxed)) f90_io_init();
    if (fail) {
        fail->code = 0;
        fail->errnum = 0;
    }
    char text[record_length];
    start_record(text);
    int64_t outcome = 1;
    if (check_pointers(info, fail, pointers...)) {
        CallbackContext ctx;
        y90haan_(&ctx);
        RecordTexts texts;
        ctx.texts = &texts;
        body(&ctx, text, &outcome);
        if (outcome != 0) report_c(info, text, outcome, fail, &texts);
    }
    if (fail && fail->code == 0) report_success(info, fail);
}

template <class Body>
void fortran_interface(const RoutineInfo &info, int64_t *ifail, Body &&body) {
    char text[record_length];
    start_record(text);
    int64_t outcome = 1;
    CallbackContext ctx;
    y90haan_(&ctx);
    RecordTexts texts;
    ctx.texts = &texts;
    body(&ctx, text, &outcome);
    if (outcome == 0)
        *ifail = 0;
    else
        report_fortran(info, text, outcome, ifail, &texts);
}

// Routines that cannot fail (machine constants and the like) still pass a
// context down their layers.
template <class Body>
auto plain_interface(Body &&body) {
    CallbackContext ctx;
    y90haan_(&ctx);
    return body(&ctx);
}

}  // namespace kor::frame
