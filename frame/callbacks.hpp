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

// void f(const double x[], int64_t nx, double fv[], int64_t *iflag, Kor_Comm *comm)
//   /  subroutine f(x, nx, fv, iflag, iuser, ruser)
// A vectorised function: one call fills fv[i] = f(x[i]) for all nx points.
// The call returns iflag, which the user sets negative to ask the routine
// to stop; it is 0 on entry to every call.
struct VectorOfVector {
    struct Call {
        const double *x = nullptr;
        int64_t nx = 0;
        double *fv = nullptr;
        int64_t iflag = 0;
    };
    using CFunction = void (*)(const double *, int64_t, double *, int64_t *, Kor_Comm *);
    using FortranFunction = void (*)(const double *, const int64_t *, double *, int64_t *,
                                     int64_t *, double *);

    static int64_t result(const Call &call) { return call.iflag; }

    static void call_c(KorUserFn fn, CallbackContext *, void *call, void *u1, void *) {
        auto *request = static_cast<Call *>(call);
        reinterpret_cast<CFunction>(fn)(request->x, request->nx, request->fv, &request->iflag,
                                        static_cast<Kor_Comm *>(u1));
    }
    static void call_fortran(KorUserFn fn, CallbackContext *, void *call, void *u1, void *u2) {
        auto *request = static_cast<Call *>(call);
        reinterpret_cast<FortranFunction>(fn)(request->x, &request->nx, request->fv,
                                              &request->iflag, static_cast<int64_t *>(u1),
                                              static_cast<double *>(u2));
    }
    static void trace(const char *label, const char *moment, const Call &call, void *u1, void *u2) {
        write_trace(label, moment,
                    {trace_array("x", call.x, call.nx), trace_value("nx", &call.nx),
                     trace_array("fv", call.fv, call.nx), trace_value("iflag", &call.iflag),
                     trace_address("iuser", u1), trace_address("ruser", u2)});
    }
};

// void monit(void *handle, const double rinfo[], const double stats[],
//            int64_t *inform, Kor_Comm *comm)
//   /  subroutine monit(handle, rinfo, stats, inform, iuser, ruser)
// A solver's monitor: it sees the handle being solved and the solver's
// current measures and counts, and sets inform negative to stop the solve.
struct Monitor {
    static constexpr int64_t info_size = 100;
    struct Call {
        void *handle = nullptr;
        const double *rinfo = nullptr;
        const double *stats = nullptr;
        int64_t inform = 0;
    };
    using CFunction = void (*)(void *, const double *, const double *, int64_t *, Kor_Comm *);
    // Fortran passes the handle by reference, as every routine of the suite takes it.
    using FortranFunction = void (*)(void *const *, const double *, const double *, int64_t *,
                                     int64_t *, double *);

    static int64_t result(const Call &call) { return call.inform; }

    static void call_c(KorUserFn fn, CallbackContext *, void *call, void *u1, void *) {
        auto *request = static_cast<Call *>(call);
        reinterpret_cast<CFunction>(fn)(request->handle, request->rinfo, request->stats,
                                        &request->inform, static_cast<Kor_Comm *>(u1));
    }
    static void call_fortran(KorUserFn fn, CallbackContext *, void *call, void *u1, void *u2) {
        auto *request = static_cast<Call *>(call);
        reinterpret_cast<FortranFunction>(fn)(&request->handle, request->rinfo, request->stats,
                                              &request->inform, static_cast<int64_t *>(u1),
                                              static_cast<double *>(u2));
    }
    static void trace(const char *label, const char *moment, const Call &call, void *u1, void *u2) {
        write_trace(label, moment,
                    {trace_address("handle", call.handle), trace_array("rinfo", call.rinfo, info_size),
                     trace_array("stats", call.stats, info_size), trace_value("inform", &call.inform),
                     trace_address("iuser", u1), trace_address("ruser", u2)});
    }
};

}  // namespace kor::frame
