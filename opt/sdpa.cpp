#include "opt/sdpa.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "frame/units.hpp"

namespace kor::opt::sdpa {

LineSource::Status MemoryLines::next(std::string &line) {
    if (done_) return Status::end;
    if (rest_.empty()) {
        done_ = true;
        return Status::end;
    }
    const size_t end = rest_.find('\n');
    std::string_view piece = rest_.substr(0, end);
    if (end == std::string_view::npos) {
        rest_ = {};
        done_ = true;
    } else {
        rest_.remove_prefix(end + 1);
    }
    if (!piece.empty() && piece.back() == '\r') piece.remove_suffix(1);
    line.assign(piece.data(), piece.size());
    return Status::ok;
}

UnitLines::~UnitLines() { std::free(buffer_); }

LineSource::Status UnitLines::next(std::string &line) {
    if (first_) {
        first_ = false;
        switch (frame::units::read_record(unit_, line)) {
        case frame::units::ReadStatus::ok: stream_ = frame::units::stream_of(unit_); return Status::ok;
        case frame::units::ReadStatus::end_of_file: return Status::end;
        default: return Status::not_readable;
        }
    }
    if (!stream_) return Status::end;
    const ssize_t n = ::getline(&buffer_, &capacity_, stream_);
    if (n <= 0) return Status::end;
    size_t length = size_t(n);
    if (buffer_[length - 1] == '\n') --length;
    if (length && buffer_[length - 1] == '\r') --length;  // as read_record drops it
    line.assign(buffer_, length);
    return Status::ok;
}

int64_t Data::expanded_blocks() const {
    int64_t n = 0;
    for (int64_t s : block_sizes) n += s < 0 ? -s : 1;  // bounded: the sizes' sum fits
    return n;
}

namespace {

// Blanks of the format: white space and the punctuation that some files
// wrap the block sizes and the objective in.
struct SeparatorTable {
    bool is[256] = {};
    constexpr SeparatorTable() {
        for (unsigned char c : {' ', '\t', '\r', '\v', '\f', ',', '{', '}', '(', ')'}) is[c] = true;
    }
};
constexpr SeparatorTable separators;
inline bool is_separator(char c) { return separators.is[static_cast<unsigned char>(c)]; }

struct Token {
    std::string_view text;
    int64_t first;  // 1-based columns
    int64_t last;
};

// Splits a line into at most `wanted` tokens (the rest are never looked
// at); returns how many were found.
size_t tokenize(std::string_view line, Token *out, size_t wanted) {
    size_t n = 0, i = 0;
    const size_t size = line.size();
    while (n < wanted) {
        while (i < size && is_separator(line[i])) ++i;
        if (i == size) break;
        const size_t start = i;
        while (i < size && !is_separator(line[i])) ++i;
        out[n++] = {line.substr(start, i - start), int64_t(start) + 1, int64_t(i)};
    }
    return n;
}

bool has_token(std::string_view line) {
    for (char c : line)
        if (!is_separator(c)) return true;
    return false;
}

bool parse_integer(std::string_view t, int64_t &value) {
    const char *p = t.data(), *end = p + t.size();
    bool negative = false;
    if (p != end && (*p == '+' || *p == '-')) negative = *p++ == '-';
    if (p == end) return false;
    if (end - p <= 18) {
        // No overflow possible: the common case, without from_chars.
        int64_t v = 0;
        for (; p != end; ++p) {
            const unsigned d = unsigned(*p) - '0';
            if (d > 9) return false;
            v = v * 10 + int64_t(d);
        }
        value = negative ? -v : v;
        return true;
    }
    uint64_t magnitude = 0;
    auto [ptr, ec] = std::from_chars(p, end, magnitude);
    if (ec != std::errc() || ptr != end) return false;
    if (magnitude > uint64_t(INT64_MAX) + (negative ? 1 : 0)) return false;
    value = negative ? int64_t(0 - magnitude) : int64_t(magnitude);
    return true;
}

bool parse_real(std::string_view t, double &value) {
    // Fortran-style exponents (1.0D+00) are read as e; a leading '+' is
    // dropped since from_chars does not take one.
    char buffer[max_token_length + 1];
    size_t n = t.size();
    const char *p = t.data();
    if (n && *p == '+') {
        ++p;
        --n;
        if (n && (*p == '-' || *p == '+')) return false;
    }
    if (n == 0 || n > max_token_length) return false;
    std::memcpy(buffer, p, n);
    for (size_t i = 0; i < n; ++i) {
        if (buffer[i] == 'd' || buffer[i] == 'D') buffer[i] = 'e';
        // from_chars would take "inf" and "nan" words; the format has none.
        const char c = buffer[i];
        if (!((c >= '0' && c <= '9') || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-'))
            return false;
    }
    auto [ptr, ec] = std::from_chars(buffer, buffer + n, value, std::chars_format::general);
    return ec == std::errc() && ptr == buffer + n && std::isfinite(value);
}

class Reader {
public:
    Reader(LineSource &source, Data &data) : source_(source), data_(data) {}

    Error run();

private:
    // The next line holding a token; false at the end of the input.
    bool next_data_line(bool comments_allowed);
    Error token_error(const Token &t, Failure kind) {
        Error e;
        e.failure = t.text.size() > size_t(max_token_length) ? Failure::token_too_long : kind;
        e.line = line_number_;
        e.first = t.first;
        e.last = t.last;
        return e;
    }
    Error at_line(Failure kind) {
        Error e;
        e.failure = kind;
        e.line = line_number_;
        return e;
    }
    Error premature_end(const char *part) {
        Error e = at_line(Failure::premature_end);
        e.part = part;
        return e;
    }
    Error too_few(const char *part, int64_t expected, int64_t found) {
        Error e = at_line(Failure::too_few_tokens);
        e.part = part;
        e.expected = expected;
        e.found = found;
        return e;
    }
    bool integer(const Token &t, int64_t &v, Error &e) {
        if (t.text.size() <= size_t(max_token_length) && parse_integer(t.text, v)) return true;
        e = token_error(t, Failure::not_integer);
        return false;
    }
    bool real(const Token &t, double &v, Error &e) {
        if (t.text.size() <= size_t(max_token_length) && parse_real(t.text, v)) return true;
        e = token_error(t, Failure::not_real);
        return false;
    }
    // The count that opens the current line, at least 1; below it the
    // failure `too_few` names the value.
    bool count_on_line(Failure too_few, int64_t &v, Error &e) {
        Token t{};
        tokenize(line_, &t, 1);
        if (!integer(t, v, e)) return false;
        if (v >= 1) return true;
        e = at_line(too_few);
        e.value = v;
        return false;
    }
    // An integer in [lo, hi]; outside it the failure `outside` names the
    // value, hi and the block (0 while the block is not yet known).
    bool integer_within(const Token &t, int64_t lo, int64_t hi, Failure outside, int64_t block,
                        int64_t &v, Error &e) {
        if (!integer(t, v, e)) return false;
        if (v >= lo && v <= hi) return true;
        e = at_line(outside);
        e.value = v;
        e.limit = hi;
        e.block = block;
        return false;
    }
    // Reads one entry line; false after leaving the failure in error_.
    bool entry_line();
    // Sorts the entries and reports the first line repeating an earlier one.
    Error sort_entries();

    LineSource &source_;
    Data &data_;
    std::string line_;
    int64_t line_number_ = 0;
    bool not_readable_ = false;
    std::vector<int64_t> offsets_;  // first row of each block, less one
    Error error_;
};

bool Reader::next_data_line(bool comments_allowed) {
    for (;;) {
        const LineSource::Status s = source_.next(line_);
        if (s != LineSource::Status::ok) {
            not_readable_ = s == LineSource::Status::not_readable && line_number_ == 0;
            return false;
        }
        ++line_number_;
        size_t i = 0;
        while (i < line_.size() && (line_[i] == ' ' || line_[i] == '\t')) ++i;
        if (comments_allowed && i < line_.size() && (line_[i] == '"' || line_[i] == '*')) continue;
        if (has_token(line_)) return true;
    }
}

Error Reader::run() {
    Error e;
    // The number of variables, after any comment lines.
    if (!next_data_line(true)) return at_line(not_readable_ ? Failure::not_readable : Failure::stream_empty);
    int64_t m = 0;
    if (!count_on_line(Failure::too_few_variables, m, e)) return e;
    data_.nvar = m;

    // The number of blocks.
    if (!next_data_line(false)) return premature_end("the number of blocks");
    int64_t nblocks = 0;
    if (!count_on_line(Failure::too_few_blocks, nblocks, e)) return e;

    // The block sizes, all on one line.
    if (!next_data_line(false)) return premature_end("the block sizes");
    {
        std::vector<Token> tokens(size_t(std::min<int64_t>(nblocks, int64_t(line_.size()) / 2 + 1)));
        const size_t found = tokenize(line_, tokens.data(), tokens.size());
        if (int64_t(found) < nblocks) return too_few("block sizes", nblocks, int64_t(found));
        int64_t offset = 0;
        offsets_.reserve(found);
        data_.block_sizes.reserve(found);
        for (size_t k = 0; k < found; ++k) {
            int64_t size = 0;
            if (!integer(tokens[k], size, e)) return e;
            if (size == 0) return token_error(tokens[k], Failure::block_size_zero);
            if (size == INT64_MIN || __builtin_add_overflow(offset, size < 0 ? -size : size, &offset))
                return at_line(Failure::dimension_overflow);
            offsets_.push_back(offset - (size < 0 ? -size : size));
            data_.block_sizes.push_back(size);
        }
    }

    // The objective, all on one line.
    if (!next_data_line(false)) return premature_end("the objective function");
    {
        const size_t room = std::min<size_t>(size_t(m), line_.size() / 2 + 1);
        std::vector<Token> tokens(room);
        const size_t found = tokenize(line_, tokens.data(), room);
        if (int64_t(found) < m) return too_few("the objective function", m, int64_t(found));
        data_.c.resize(found);
        for (size_t k = 0; k < found; ++k)
            if (!real(tokens[k], data_.c[k], e)) return e;
    }

    // The entries, to the end of the input.
    while (next_data_line(false))
        if (!entry_line()) {
            // A repeat on an earlier line comes first.
            Error repeat = sort_entries();
            return repeat.failure != Failure::none ? repeat : error_;
        }
    return sort_entries();
}

bool Reader::entry_line() {
    Error &e = error_;
    Token t[5];
    const size_t found = tokenize(line_, t, 5);
    if (found < 5) return e = too_few("nonzero matrix elements", 5, int64_t(found)), false;
    int64_t matrix = 0, block = 0, row = 0, col = 0;
    double value = 0.0;
    if (!integer_within(t[0], 0, data_.nvar, Failure::matrix_number, 0, matrix, e)) return false;
    const int64_t nblocks = int64_t(data_.block_sizes.size());
    if (!integer_within(t[1], 1, nblocks, Failure::block_number, 0, block, e)) return false;
    const int64_t size = data_.block_sizes[size_t(block - 1)];
    const int64_t dim = size < 0 ? -size : size;
    if (!integer_within(t[2], 1, dim, Failure::row_outside, block, row, e)) return false;
    if (!integer_within(t[3], 1, dim, Failure::column_outside, block, col, e)) return false;
    if (!real(t[4], value, e)) return false;
    if (row > col || (size < 0 && row != col)) {
        e = at_line(row > col ? Failure::lower_triangle : Failure::off_diagonal);
        e.row = row;
        e.col = col;
        e.block = block;
        return false;
    }
    const int64_t offset = offsets_[size_t(block - 1)];
    // Filled field by field: a braced copy of the record compiles to a
    // block move that costs more than the rest of the line.
    Entry &x = data_.entries.emplace_back();
    x.matrix = matrix;
    x.row = offset + row;
    x.col = offset + col;
    x.value = value;
    x.line = line_number_;
    return true;
}

Error Reader::sort_entries() {
    std::vector<Entry> &v = data_.entries;
    const auto before = [](const Entry &a, const Entry &b) {
        if (a.matrix != b.matrix) return a.matrix < b.matrix;
        if (a.row != b.row) return a.row < b.row;
        if (a.col != b.col) return a.col < b.col;
        return a.line < b.line;
    };
    // Files are mostly written in this order already.
    if (!std::is_sorted(v.begin(), v.end(), before)) std::sort(v.begin(), v.end(), before);
    int64_t line = 0;
    for (size_t i = 1; i < v.size(); ++i) {
        const Entry &a = v[i - 1], &b = v[i];
        const bool same = a.matrix == b.matrix && a.row == b.row && a.col == b.col;
        const bool second = same && (i < 2 || !(v[i - 2].matrix == b.matrix && v[i - 2].row == b.row &&
                                                v[i - 2].col == b.col));
        if (second && (line == 0 || b.line < line)) line = b.line;
    }
    Error e;
    if (line) {
        e.failure = Failure::repeated;
        e.line = line;
    }
    return e;
}

}  // namespace

Error read(LineSource &source, Data &data) {
    data = Data{};
    Reader reader(source, data);
    return reader.run();
}

}  // namespace kor::opt::sdpa
