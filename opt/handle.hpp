// The optimization problem handle: the nine-word header that callers hold,
// its validation, and the phase that keeps a running solver's problem and
// options from being changed under it.
//
// A routine's definition file declares the handle as an argument of type
// "handle" (C: void *handle, or void **handle for intent inout; Fortran: the
// 8-byte handle variable by reference) and its three handle exits under the
// names handle_null, handle_foreign and handle_corrupted; the engine starts
// with
//     opt::Problem *p;
//     if (opt::HandleStatus s = opt::check_handle(handle, &p); s != opt::HandleStatus::valid)
//         return opt::raise_handle<Exit>(rec, s);
#pragma once

#include <cstdint>
#include <memory>

#include "frame/record.hpp"

namespace kor::opt {

class OptionStore;  // opt/options.hpp
struct Problem;     // opt/problem.hpp: the problem data behind the header

// The outcome of the handle check, in the order the checks are made.
enum class HandleStatus : int {
    valid = 0,
    null_handle = 1,  // "handle has not been initialized."
    foreign = 2,      // sentinel or suite tag wrong: not the suite's
    corrupted = 3,    // kind tag wrong or no problem data
};

// The header words as the handle holds them.
inline constexpr int header_words = 9;
inline constexpr int64_t header_sentinel = 65535;
inline constexpr int64_t suite_tag[4] = {'T', 'A', 'L', 'V'};
inline constexpr int64_t kind_tag[3] = {83, 72, 76};  // S, H, L

// Returns the problem data of a valid handle in *problem (null otherwise).
// Reads only the nine header words of an invalid handle.
HandleStatus check_handle(void *handle, Problem **problem);

// The option values of the handle's problem.
OptionStore &options(Problem &problem);
const OptionStore &options(const Problem &problem);

// The phase: true while a solver runs on the handle.  Solvers bracket their
// run with enter_solver_phase / leave_solver_phase (SolverPhase does both).
bool solver_running(const Problem &problem);
void enter_solver_phase(Problem &problem);
void leave_solver_phase(Problem &problem);

class SolverPhase {
public:
    explicit SolverPhase(Problem &problem) : problem_(problem) { enter_solver_phase(problem_); }
    ~SolverPhase() { leave_solver_phase(problem_); }
    SolverPhase(const SolverPhase &) = delete;
    SolverPhase &operator=(const SolverPhase &) = delete;

private:
    Problem &problem_;
};

// Raises the routine's exit for a failed handle check.
template <class Exit>
void raise_handle(frame::Record &rec, HandleStatus status) {
    switch (status) {
    case HandleStatus::null_handle: return rec.raise<typename Exit::handle_null>();
    case HandleStatus::foreign: return rec.raise<typename Exit::handle_foreign>();
    default: return rec.raise<typename Exit::handle_corrupted>();
    }
}

}  // namespace kor::opt
