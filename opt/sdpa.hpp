// The sparse SDPA format reader behind e04rd: line by line from any source
// of lines (a unit, or memory for the fuzz target), every failure naming
// its line.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kor::opt::sdpa {

// Lines of the input, in order, without their line ends.
class LineSource {
public:
    virtual ~LineSource() = default;
    enum class Status { ok, end, not_readable };
    virtual Status next(std::string &line) = 0;
};

// Splits a buffer at '\n' (a '\r' before it is dropped, as the unit reader
// drops it).
class MemoryLines : public LineSource {
public:
    explicit MemoryLines(std::string_view text) : rest_(text) {}
    Status next(std::string &line) override;

private:
    std::string_view rest_;
    bool done_ = false;
};

// Lines of a unit connected for reading (kor_file_open, mode 0).  The
// first record comes through the unit table, which knows whether the unit
// is connected for reading; the rest straight from the unit's stream, a
// line at a time rather than a character at a time.
class UnitLines : public LineSource {
public:
    explicit UnitLines(int64_t unit) : unit_(unit) {}
    ~UnitLines() override;
    Status next(std::string &line) override;

private:
    int64_t unit_;
    bool first_ = true;
    std::FILE *stream_ = nullptr;
    char *buffer_ = nullptr;
    size_t capacity_ = 0;
};

struct Entry {
    int64_t matrix;    // 0 .. nvar
    int64_t row, col;  // in the whole block-diagonal matrix, 1-based
    double value;
    int64_t line;
};

struct Data {
    int64_t nvar = 0;
    std::vector<int64_t> block_sizes;  // as written: negative for a diagonal block
    std::vector<double> c;
    std::vector<Entry> entries;        // grouped by matrix, by row and column, once read
    // The block structure as e04rn takes it: diagonal blocks of size k
    // counted as k blocks of size 1.
    int64_t expanded_blocks() const;
};

enum class Failure {
    none,
    not_readable,
    stream_empty,
    premature_end,
    too_few_tokens,
    not_integer,
    not_real,
    token_too_long,
    too_few_variables,
    too_few_blocks,
    block_size_zero,
    dimension_overflow,
    matrix_number,
    block_number,
    row_outside,
    column_outside,
    lower_triangle,
    off_diagonal,
    repeated,
};

struct Error {
    Failure failure = Failure::none;
    int64_t line = 0;
    int64_t first = 0, last = 0;       // token columns, 1-based
    const char *part = "";             // premature_end, too_few_tokens
    int64_t expected = 0, found = 0;   // too_few_tokens
    int64_t value = 0, limit = 0, block = 0, row = 0, col = 0;
};

// Longest token recognised.
inline constexpr int64_t max_token_length = 64;

// Reads the whole input.  On success the entries are sorted (matrix, row,
// column); a repeated entry is reported at the first line that repeats an
// earlier one, before any failure on a later line.
Error read(LineSource &source, Data &data);

}  // namespace kor::opt::sdpa
