// Optimization handle: defining a linear-constraint block of nnz unique
// random entries (time per entry should grow no faster than log nnz), and
// the sparse SDPA reader's throughput on the largest SDPLIB file.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "kor.h"

namespace {

struct Block {
    int64_t nvar, nclin;
    std::vector<int64_t> row, col;
    std::vector<double> value, bl, bu;
};

// nnz distinct (row, column) pairs drawn at random from an nclin by nvar
// grid about ten times as large, in random order.
Block random_block(int64_t nnz) {
    Block b;
    b.nvar = b.nclin = std::max<int64_t>(16, int64_t(std::sqrt(double(nnz) * 10)));
    std::mt19937_64 rng(20240611 + uint64_t(nnz));
    std::vector<uint64_t> keys;
    keys.reserve(size_t(nnz) * 2);
    std::uniform_int_distribution<int64_t> row(1, b.nclin), col(1, b.nvar);
    while (int64_t(keys.size()) < nnz) {
        while (int64_t(keys.size()) < nnz + nnz / 8) keys.push_back(uint64_t(row(rng)) << 32 | uint64_t(col(rng)));
        std::sort(keys.begin(), keys.end());
        keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    }
    std::shuffle(keys.begin(), keys.end(), rng);
    keys.resize(size_t(nnz));
    std::uniform_real_distribution<double> value(-1, 1);
    for (uint64_t k : keys) {
        b.row.push_back(int64_t(k >> 32));
        b.col.push_back(int64_t(k & 0xffffffffu));
        b.value.push_back(value(rng));
    }
    b.bl.assign(size_t(b.nclin), -1.0);
    b.bu.assign(size_t(b.nclin), 1.0);
    return b;
}

void LinearConstraintBlock(benchmark::State &state) {
    const int64_t nnz = state.range(0);
    const Block b = random_block(nnz);
    KorError fail = KOR_ERROR_INIT;
    for (auto _ : state) {
        state.PauseTiming();
        void *handle = nullptr;
        e04rac(&handle, b.nvar, &fail);
        state.ResumeTiming();
        int64_t idlc = 0;
        e04rjc(handle, b.nclin, b.bl.data(), b.bu.data(), nnz, b.row.data(), b.col.data(), b.value.data(), &idlc,
               &fail);
        state.PauseTiming();
        if (fail.code != 0) state.SkipWithError(fail.message);
        e04rzc(&handle, &fail);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * nnz);
    state.counters["time_per_nnz"] = benchmark::Counter(
        double(nnz), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(LinearConstraintBlock)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// The SDPLIB copies beside the tests; the largest of them.
std::string largest_sdplib_file() {
    namespace fs = std::filesystem;
    const fs::path dir = fs::path(__FILE__).parent_path().parent_path() / "tests" / "opt" / "data";
    std::string best;
    uintmax_t size = 0;
    for (const auto &entry : fs::directory_iterator(dir))
        if (entry.path().extension() == ".dat-s" && entry.file_size() > size) {
            size = entry.file_size();
            best = entry.path().string();
        }
    return best;
}

void SdpaRead(benchmark::State &state) {
    const std::string path = largest_sdplib_file();
    const auto bytes = int64_t(std::filesystem::file_size(path));
    KorError fail = KOR_ERROR_INIT;
    int64_t unit = -1, nvar = 0, nblk = 0;
    // The sizes, from a query call.
    kor_file_open(path.c_str(), 0, &unit, &fail);
    e04rdc(unit, 0, 0, 0, &nvar, &nblk, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &fail);
    KorError closing = KOR_ERROR_INIT;
    kor_file_close(unit, &closing);
    int64_t nnz = 0;
    const char *size = std::strstr(fail.message, "maxnnz should be at least ");
    if (!size || std::sscanf(size, "maxnnz should be at least %ld", &nnz) != 1) {
        state.SkipWithError((path + ": " + fail.message).c_str());
        return;
    }
    std::vector<int64_t> blk(static_cast<size_t>(nblk)), nnza(static_cast<size_t>(nvar) + 1),
        irow(static_cast<size_t>(nnz)), icol(static_cast<size_t>(nnz));
    std::vector<double> c(static_cast<size_t>(nvar)), a(static_cast<size_t>(nnz));
    for (auto _ : state) {
        kor_file_open(path.c_str(), 0, &unit, &fail);
        e04rdc(unit, nvar, nblk, nnz, &nvar, &nblk, blk.data(), c.data(), nnza.data(), irow.data(), icol.data(),
               a.data(), &fail);
        if (fail.code != 0) state.SkipWithError(fail.message);
        kor_file_close(unit, &fail);
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.SetLabel(std::filesystem::path(path).filename().string() + ", " + std::to_string(bytes) + " bytes");
}
BENCHMARK(SdpaRead)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
