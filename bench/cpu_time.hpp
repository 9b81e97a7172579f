// CPU time of the calling thread, for benchmarks that time two codes in
// alternating rounds: unlike the wall clock it leaves out the time other
// programs hold the processor, so the two see the same machine.
#pragma once

#include <time.h>

namespace kor::bench {

inline double cpu_seconds() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

}  // namespace kor::bench
