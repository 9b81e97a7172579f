// The per-call record that every layer passes down as its first argument,
// and the pointer types through which engines reach user functions.
#pragma once

#include <cstdint>

extern "C" {

struct CallbackContext {
    void *texts = nullptr;       // the interface's RecordTexts: long text values of a report
    int32_t status = 0;          // -8888: an adapter declined a direct call
    void *reserved3 = nullptr;
    int32_t direct_call = 1;     // 1: adapters may call the user function at once
    int32_t reserved5 = 0;
    int32_t reserved6 = 0;
    void *reserved7 = nullptr;
    void *reserved8 = nullptr;
    void (*reserved9)() = nullptr;
    int32_t reserved10 = 1;
    int32_t reserved11 = 0;
    int32_t reserved12 = 0;
};

// Resets a context to the values every call starts from.  Inline because
// every call pays for it, and field by field, which compiles to a few
// stores; the symbol is still emitted (frame/interface.cpp).
inline void y90haan_(CallbackContext *ctx) {
    ctx->texts = nullptr;
    ctx->status = 0;
    ctx->reserved3 = nullptr;
    ctx->direct_call = 1;
    ctx->reserved5 = 0;
    ctx->reserved6 = 0;
    ctx->reserved7 = nullptr;
    ctx->reserved8 = nullptr;
    ctx->reserved9 = nullptr;
    ctx->reserved10 = 1;
    ctx->reserved11 = 0;
    ctx->reserved12 = 0;
}

// A user function of any kind, its type erased; each callback kind knows
// its real signature.
typedef void (*KorUserFn)();

// An adapter calls the user function for one request.  `call` points to the
// kind's request record (arguments and result slots); u1 and u2 are the
// caller's data (Kor_Comm from C; IUSER and RUSER from Fortran).
typedef void (*KorAdapter)(KorUserFn fn, CallbackContext *ctx, void *call, void *u1, void *u2);

// The layer between an engine and its adapter, one per routine.
typedef void (*KorPrintFh)(KorAdapter adapter, KorUserFn fn, CallbackContext *ctx, void *call,
                           void *u1, void *u2);
typedef int32_t (*KorMarshalFh)(KorAdapter adapter, KorUserFn fn, CallbackContext *ctx,
                                void *call, void *u1, void *u2);
typedef void (*KorInternalFh)(KorAdapter adapter, KorUserFn fn, CallbackContext *ctx, void *call,
                              void *u1, void *u2);
}

namespace kor::frame {

// The status an adapter leaves when it declines a direct call.
inline constexpr int32_t deferred_call = -8888;

// Length of the error record text that every interface hands its engine.
inline constexpr int64_t record_length = 200;

}  // namespace kor::frame
