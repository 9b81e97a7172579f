#include "opt/option_text.hpp"

#include <algorithm>
#include <vector>

namespace kor::opt {

bool quoted_fits_one_field(std::string_view text) {
    return text.size() + 2 <= record_field_length;
}

namespace detail {

void split_quoted(std::string_view text, std::string *fields, size_t count) {
    const size_t capacity = count * record_field_length;
    std::string quoted = "\"";
    if (text.size() + 2 <= capacity) {
        quoted += text;
    } else {
        quoted += text.substr(0, capacity > 5 ? capacity - 5 : 0);
        quoted += "...";
    }
    quoted += '"';
    for (char &c : quoted)
        if (c == '\0' || c == '\x01') c = '?';

    // Cuts go after a character that is not a blank wherever possible.  First
    // the fewest fields: each as long as it can be; then, while fields are
    // missing, the longest field that can be cut is cut near its middle.
    const size_t n = quoted.size();
    auto cut_allowed = [&](size_t p) { return p > 0 && p < n && quoted[p - 1] != ' '; };
    std::vector<size_t> cuts = {0};  // field starts
    for (size_t start = 0; n - start > record_field_length;) {
        size_t p = start + record_field_length;
        while (p > start + 1 && !cut_allowed(p)) --p;
        if (!cut_allowed(p)) p = start + record_field_length;  // only blanks within reach
        cuts.push_back(p);
        start = p;
    }
    if (cuts.size() > count) {
        // Cutting after blanks made too many fields: full fields then (the
        // Fortran-style report may lose a blank at a field's end).
        cuts.clear();
        for (size_t p = 0; p < n; p += record_field_length) cuts.push_back(p);
    }
    while (cuts.size() < count) {
        size_t best = 0, best_at = 0, best_length = 0;
        bool found = false;
        for (size_t f = 0; f < cuts.size(); ++f) {
            const size_t a = cuts[f], b = f + 1 < cuts.size() ? cuts[f + 1] : n;
            if (b - a < 2 || (found && b - a <= best_length)) continue;
            const size_t mid = a + (b - a) / 2;
            for (size_t d = 0; d < b - a; ++d) {
                const size_t candidates[2] = {mid + d, mid - d};
                for (size_t p : candidates)
                    if (p > a && p < b && cut_allowed(p)) {
                        best = f, best_at = p, best_length = b - a, found = true;
                        d = b - a;  // stop searching this field
                        break;
                    }
            }
        }
        if (!found) {  // only blanks to cut after: cut the longest field anyway
            for (size_t f = 0; f < cuts.size(); ++f) {
                const size_t a = cuts[f], b = f + 1 < cuts.size() ? cuts[f + 1] : n;
                if (b - a >= 2 && b - a > best_length) best = f, best_at = a + (b - a) / 2, best_length = b - a;
            }
            if (best_length < 2) break;  // too short a text for this form
        }
        cuts.insert(cuts.begin() + long(best) + 1, best_at);
    }
    for (size_t i = 0; i < count; ++i) {
        if (i >= cuts.size()) {
            fields[i] = "?";
            continue;
        }
        const size_t a = cuts[i], b = i + 1 < cuts.size() ? cuts[i + 1] : n;
        fields[i] = quoted.substr(a, b - a);
    }
}

}  // namespace detail
}  // namespace kor::opt
