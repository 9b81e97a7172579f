// libFuzzer target: option files and option strings (see
// tests/opt/option_file_fuzz_body.hpp).  Seed corpus: tests/data/opt/corpus/option_file.
#include "opt/option_file_fuzz_body.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    kor::opt_fuzz::fuzz_option_file(data, size);
    return 0;
}
