// What the option-file fuzz target does with one input, shared with the
// regular test that replays the committed corpus: the bytes are read as the
// lines of an option file (e04zp's reader), and each line is also given to
// e04zm and e04zn through both interfaces, so that any byte stream reaches
// the parser, the lookup and the composition of every message.  A broken
// expectation traps, which the fuzzer reports as a crash.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "e04zm_def.hpp"
#include "e04zn_def.hpp"
#include "frame/units.hpp"
#include "kor.h"
#include "opt/options.hpp"
#include "opt/sdpa.hpp"

namespace kor::opt_fuzz {

// The input's lines as the unit reader gives them (the SDPA reader's
// splitting of a buffer is the same).
inline std::vector<std::string> split_lines(const uint8_t *data, size_t size) {
    opt::sdpa::MemoryLines source(std::string_view(reinterpret_cast<const char *>(data), size));
    std::vector<std::string> lines;
    for (std::string line; source.next(line) == opt::sdpa::LineSource::Status::ok;) lines.push_back(line);
    return lines;
}

class Lines : public opt::LineSource {
public:
    explicit Lines(const std::vector<std::string> &lines) : lines_(lines) {}
    bool next(std::string &line) override { return next_ < lines_.size() && (line = lines_[next_++], true); }

private:
    const std::vector<std::string> &lines_;
    size_t next_ = 0;
};

inline void require(bool condition) {
    if (!condition) __builtin_trap();
}

inline opt::FileReading::Status fuzz_option_file(const uint8_t *data, size_t size) {
    static void *handle = [] {
        frame::units::set_advisory_unit(-1);  // "Defaults" records go nowhere
        void *h = nullptr;
        KorError fail = KOR_ERROR_INIT;
        e04rac(&h, 1, &fail);
        return h;
    }();
    const std::vector<std::string> lines = split_lines(data, size);

    opt::OptionStore store;
    Lines source(lines);
    const opt::FileReading r = opt::read_option_block(store, source, 1);
    using S = opt::FileReading::Status;
    if (r.status == S::no_delimiter || r.status == S::setting_failed)
        require(r.line >= 2 && r.line <= int64_t(lines.size()));
    if (r.status == S::setting_failed) require(!r.setting.ok() && r.setting.status != opt::Setting::Status::stored);

    // Each line (a bounded number of them) as e04zm and e04zn strings.
    size_t done = 0;
    for (const std::string &line : lines) {
        if (++done > 32) break;
        const std::string text = line.substr(0, std::strlen(line.c_str()));  // what a C caller can pass
        KorError fail = KOR_ERROR_INIT;
        e04zmc(handle, text.c_str(), &fail);
        require(fail.code == NE_NOERROR || fail.code == NE_INVALID_OPTION || fail.code == NE_INVALID_FORMAT ||
                fail.code == NE_INVALID_VALUE);
        require(std::strlen(fail.message) > 0);
        int64_t ifail = 1;
        void *h = handle;
        e04zmf_(&h, line.data(), &ifail, line.size());
        require(ifail == 0 || ifail == 11 || ifail == 12 || ifail == 13);

        int64_t ivalue = 0, optype = 0;
        double rvalue = 0;
        char cvalue[31];
        fail = KorError KOR_ERROR_INIT;
        e04znc(handle, text.c_str(), &ivalue, &rvalue, cvalue, sizeof cvalue, &optype, &fail);
        require(fail.code == NE_NOERROR || fail.code == NE_INVALID_OPTION);
        require(fail.code != NE_NOERROR || (optype >= 1 && optype <= 3));
    }
    return r.status;
}

}  // namespace kor::opt_fuzz
