// What the SDPA fuzz target does with one input, shared with the regular
// test that replays the committed corpus: the bytes are read as a sparse
// SDPA file (e04rd's reader), and what a successful reading returns is
// checked against the format's rules and handed to e04rn, which must accept
// it.  A broken expectation traps, which the fuzzer reports as a crash.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <tuple>
#include <vector>

#include "kor.h"
#include "opt/sdpa.hpp"

namespace kor::sdpa_fuzz {

inline void expect(bool condition) {
    if (!condition) __builtin_trap();
}

inline opt::sdpa::Failure fuzz_sdpa(const uint8_t *data, size_t size) {
    using namespace opt::sdpa;
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    MemoryLines lines(text);
    Data d;
    const Error e = read(lines, d);
    const int64_t line_count = int64_t(std::count(text.begin(), text.end(), '\n')) + 1;
    if (e.failure != Failure::none) {
        expect(e.line >= 0 && e.line <= line_count);
        expect(e.first <= e.last || e.failure == Failure::token_too_long || e.first == 0);
        return e.failure;
    }
    expect(d.nvar >= 1 && int64_t(d.c.size()) == d.nvar && !d.block_sizes.empty());
    int64_t dim = 0;
    for (int64_t s : d.block_sizes) {
        expect(s != 0);
        dim += s < 0 ? -s : s;
    }
    // Sorted by matrix, row and column, each once, in the upper triangle of
    // the whole matrix.
    for (size_t k = 0; k < d.entries.size(); ++k) {
        const Entry &x = d.entries[k];
        expect(x.matrix >= 0 && x.matrix <= d.nvar);
        expect(1 <= x.row && x.row <= x.col && x.col <= dim);
        expect(x.line >= 1 && x.line <= line_count);
        if (k > 0) {
            const Entry &p = d.entries[k - 1];
            expect(std::make_tuple(p.matrix, p.row, p.col) < std::make_tuple(x.matrix, x.row, x.col));
        }
    }
    // What e04rd would return defines a matrix inequality as it stands.
    const int64_t nnz = int64_t(d.entries.size());
    if (nnz == 0 || d.nvar > 100000 || d.expanded_blocks() > 100000) return e.failure;
    std::vector<int64_t> blk, nnza(size_t(d.nvar) + 1, 0), irow, icol;
    std::vector<double> a;
    for (int64_t s : d.block_sizes)
        if (s > 0)
            blk.push_back(s);
        else
            blk.insert(blk.end(), size_t(-s), 1);
    for (const Entry &x : d.entries) {
        ++nnza[size_t(x.matrix)];
        irow.push_back(x.row);
        icol.push_back(x.col);
        a.push_back(x.value);
    }
    KorError fail = KOR_ERROR_INIT;
    void *handle = nullptr;
    e04rac(&handle, d.nvar, &fail);
    int64_t idblk = 0;
    e04rnc(handle, d.nvar, dim, nnza.data(), nnz, irow.data(), icol.data(), a.data(), int64_t(blk.size()),
           blk.data(), &idblk, &fail);
    expect(fail.code == 0 && idblk == 1);
    e04rzc(&handle, &fail);
    return e.failure;
}

}  // namespace kor::sdpa_fuzz
