#include "e04ry_def.hpp"
#include "opt/engine.hpp"
#include "opt/printer.hpp"

namespace kor::e04ry {

void engine(frame::Record &rec, void *handle, int64_t nout, std::string_view cmdstr) {
    opt::Problem *p = opt::open_handle<Exit>(rec, handle);
    if (!p) return;
    // Every keyword is checked before anything is written.
    std::vector<opt::Section> sections;
    int64_t number = 0;
    size_t start = 0;
    while (start <= cmdstr.size()) {
        size_t end = cmdstr.find_first_of(",;", start);
        if (end == std::string_view::npos) end = cmdstr.size();
        const std::string keyword = opt::normalize_keyword(cmdstr.substr(start, end - start));
        start = end + 1;
        if (keyword.empty()) continue;
        ++number;
        opt::Section s;
        if (keyword.size() > opt::max_keyword_length) return rec.raise<Exit::keyword_too_long>(number);
        if (!opt::find_section(keyword, s)) return rec.raise<Exit::keyword_unknown>(number);
        sections.push_back(s);
    }
    if (sections.empty()) return rec.raise<Exit::no_keywords>();
    for (opt::Section s : sections)
        if (!opt::print_section(*p, nout, s)) return rec.raise<Exit::write_failed>();
}

}  // namespace kor::e04ry
