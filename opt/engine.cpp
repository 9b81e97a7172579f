#include "opt/engine.hpp"

#include <sys/sysinfo.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <utility>

namespace kor::opt {

bool memory_can_hold(uint64_t bytes) {
    static const uint64_t limit = [] {
        struct sysinfo info;
        if (sysinfo(&info) != 0) return UINT64_MAX;
        const uint64_t total = (uint64_t(info.totalram) + uint64_t(info.totalswap)) * info.mem_unit;
        return total ? total : UINT64_MAX;
    }();
    return bytes <= limit;
}

int64_t first_outside(const int64_t *v, int64_t n, int64_t lo, int64_t hi) {
    for (int64_t i = 0; i < n; ++i)
        if (v[i] < lo || v[i] > hi) return i;
    return -1;
}

int64_t first_below_diagonal(const int64_t *row, const int64_t *col, int64_t n) {
    for (int64_t i = 0; i < n; ++i)
        if (row[i] > col[i]) return i;
    return -1;
}

int64_t first_not_ascending(const int64_t *v, int64_t n) {
    for (int64_t i = 0; i + 1 < n; ++i)
        if (v[i] >= v[i + 1]) return i;
    return -1;
}

namespace {

// Sorts keys and tells whether two are equal: the common case, with no
// repeat, needs nothing more.
template <class Key>
bool has_equal_keys(std::vector<Key> &keys) {
    std::sort(keys.begin(), keys.end());
    return std::adjacent_find(keys.begin(), keys.end()) != keys.end();
}

// With a repeat present: the earliest position whose key occurred before.
template <class Key, class MakeKey>
int64_t earliest_repeat(int64_t n, MakeKey make_key) {
    std::vector<std::pair<Key, int64_t>> keyed;
    reserve_for(keyed, n);
    for (int64_t i = 0; i < n; ++i) keyed.emplace_back(make_key(i), i);
    std::sort(keyed.begin(), keyed.end());
    int64_t best = -1;
    for (size_t i = 1; i < keyed.size(); ++i)
        if (keyed[i].first == keyed[i - 1].first &&
            (i < 2 || keyed[i - 2].first != keyed[i].first) &&
            (best < 0 || keyed[i].second < best))
            best = keyed[i].second;  // the second occurrence of its key
    return best;
}

}  // namespace

Repeat first_repeated_pair(const int64_t *row, const int64_t *col, int64_t n, int64_t max_row,
                           int64_t max_col) {
    Repeat r;
    if (n < 2) return r;
    int64_t at = -1;
    if (max_row < (int64_t(1) << 32) && max_col < (int64_t(1) << 32)) {
        // Both indices fit in one 64-bit key.
        auto key = [&](int64_t i) { return (uint64_t(row[i]) << 32) | uint64_t(col[i]); };
        std::vector<uint64_t> keys;
        reserve_for(keys, n);
        for (int64_t i = 0; i < n; ++i) keys.push_back(key(i));
        if (!has_equal_keys(keys)) return r;
        keys = {};
        at = earliest_repeat<uint64_t>(n, key);
    } else {
        auto key = [&](int64_t i) { return std::make_pair(row[i], col[i]); };
        std::vector<std::pair<int64_t, int64_t>> keys;
        reserve_for(keys, n);
        for (int64_t i = 0; i < n; ++i) keys.push_back(key(i));
        if (!has_equal_keys(keys)) return r;
        keys = {};
        at = earliest_repeat<std::pair<int64_t, int64_t>>(n, key);
    }
    r.found = true;
    r.position = at;
    r.row = row[at];
    r.col = col[at];
    return r;
}

Repeat first_repeated(const int64_t *v, int64_t n) {
    Repeat r;
    if (n < 2) return r;
    std::vector<int64_t> keys;
    reserve_for(keys, n);
    keys.assign(v, v + n);
    if (!has_equal_keys(keys)) return r;
    keys = {};
    const int64_t at = earliest_repeat<int64_t>(n, [&](int64_t i) { return v[i]; });
    r.found = true;
    r.position = at;
    r.row = v[at];
    return r;
}

std::string normalize_keyword(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    bool blank = false;
    for (char c : text) {
        if (c == ' ' || c == '\t') {
            blank = !out.empty();
            continue;
        }
        if (blank) out.push_back(' ');
        blank = false;
        out.push_back(char(std::toupper(static_cast<unsigned char>(c))));
    }
    return out;
}

double infinite_bound(const Problem &p) { return infinite_bound_size(*p.options); }

}  // namespace kor::opt
