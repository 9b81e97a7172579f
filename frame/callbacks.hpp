// Callback kinds: the shapes of user function that routines take.  One kind
// serves every routine whose user function has its shape; the generator
// knows each kind's C and Fortran declarations (frame/callbacks.toml).
#pragma once

#include <cstdint>

#include "frame/context.hpp"
#include "frame/trace.hpp"
#include "kor/types.h"

namespace kor::frame {

// double f(double x, Kor_Comm *comm)  /  real(8) function f(x, iuser, ruser)
struct RealOfReal {
    struct Call {
        double x = 0.0;
        double value = 0.0;
    };
    using CFunction = double (*)(double, Kor_Comm *);
    using FortranFunction = double (*)(const double *, int64_t *, double *);

    static double result(const Call &call) { return call.value; }

    static void call_c(KorUserFn fn, CallbackContext *, void *call, void *u1, void *) {
        auto *request = static_cast<Call *>(call);
        request->value = reinterpret_cast<CFunction>(fn)(request->x, static_cast<Kor_Comm *>(u1));
    }
    static void call_fortran(KorUserFn fn, CallbackContext *, void *call, void *u1, void *u2) {
        auto *request = static_cast<Call *>(call);
        request->value = reinterpret_cast<FortranFunction>(fn)(
            &request->x, static_cast<int64_t *>(u1), static_cast<double *>(u2));
    }
    static void trace(const char *label, const char *moment, const Call &call, void *u1, void *u2) {
        write_trace(label, moment,
                    {trace_value("x", &call.x), trace_value("retval", &call.value),
                     trace_address("iuser", u1), trace_address("ruser", u2)});
    }
};

}  // namespace kor::frame
