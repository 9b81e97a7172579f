// The user-function adapters shared by every routine that takes a user
// function.  A routine's own adapter symbols forward here; a callback kind
// (frame/callbacks.hpp) supplies the request record and the actual calls.
#pragma once

#include <exception>

#include "frame/context.hpp"
#include "frame/record.hpp"
#include "frame/trace.hpp"

namespace kor::frame {

// Calls through only when the context allows a direct call.
inline void internal_fh(KorAdapter adapter, KorUserFn fn, CallbackContext *ctx, void *call,
                        void *u1, void *u2) {
    if (ctx->direct_call == 1)
        adapter(fn, ctx, call, u1, u2);
    else
        ctx->status = deferred_call;
}

// Repeats a deferred call with direct calls allowed, so that every request
// reaches the user function exactly once.
inline int32_t marshal_fh(KorInternalFh internal, KorAdapter adapter, KorUserFn fn,
                          CallbackContext *ctx, void *call, void *u1, void *u2) {
    const int32_t saved = ctx->direct_call;
    internal(adapter, fn, ctx, call, u1, u2);
    while (ctx->status == deferred_call) {
        ctx->direct_call = 1;
        ctx->status = 0;
        internal(adapter, fn, ctx, call, u1, u2);
    }
    ctx->direct_call = saved;
    return ctx->status;
}

template <class Kind>
void print_fh(const char *label, KorMarshalFh marshal, KorAdapter adapter, KorUserFn fn,
              CallbackContext *ctx, void *call, void *u1, void *u2) {
    if (!trace_on()) {
        marshal(adapter, fn, ctx, call, u1, u2);
        return;
    }
    auto *request = static_cast<typename Kind::Call *>(call);
    Kind::trace(label, "entry", *request, u1, u2);
    marshal(adapter, fn, ctx, call, u1, u2);
    Kind::trace(label, "exit", *request, u1, u2);
}

// What an engine holds to call its user function: each call goes through the
// routine's traced adapter chain, and a context left non-zero abandons the
// engine.
template <class Kind>
class UserFunction {
public:
    UserFunction(CallbackContext *ctx, KorUserFn fn, KorAdapter adapter, void *u1, void *u2,
                 KorPrintFh print)
        : ctx_(ctx), fn_(fn), adapter_(adapter), u1_(u1), u2_(u2), print_(print) {}

    // False for an optional function the caller left out (a null pointer).
    bool present() const { return fn_ != nullptr; }

    template <class... Args>
    auto operator()(Args... args) {
        typename Kind::Call call{args...};
        try {
            print_(adapter_, fn_, ctx_, &call, u1_, u2_);
        } catch (...) {
            // The caller's own exception: it is to reach the caller as it
            // was thrown, not be taken for one of the library's.
            throw UserException{std::current_exception()};
        }
        if (ctx_->status != 0) throw Abandon{};
        return Kind::result(call);
    }

private:
    CallbackContext *ctx_;
    KorUserFn fn_;
    KorAdapter adapter_;
    void *u1_;
    void *u2_;
    KorPrintFh print_;
};

}  // namespace kor::frame
