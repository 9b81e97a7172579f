// libFuzzer target: the sparse SDPA reader of e04rd (see
// tests/opt/sdpa_fuzz_body.hpp).  Seed corpus: tests/data/opt/corpus/sdpa.
#include "opt/sdpa_fuzz_body.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    kor::sdpa_fuzz::fuzz_sdpa(data, size);
    return 0;
}
