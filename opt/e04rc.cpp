#include "e04rc_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rc {

void engine(frame::Record &rec, void *handle, std::string_view ptype, int64_t lidx,
            const int64_t *idx) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    if (lidx < 1) return rec.raise<Exit::lidx_below>(lidx);
    const std::string type = opt::normalize_keyword(ptype);
    if (type != "BIN" && type != "CONT" && type != "GEN" && type != "INT" && type != "LIN")
        return rec.raise<Exit::ptype_unknown>(ptype);
    const std::vector<int64_t> list = opt::copy_of(idx, lidx);
    if (int64_t i = opt::first_outside(list.data(), lidx, 1, n); i >= 0)
        return rec.raise<Exit::idx_range>(i + 1, list[size_t(i)], n);
    if (p->properties.empty()) p->properties.resize(size_t(n));
    for (int64_t j : list) {
        opt::VariableProperty &v = p->properties[size_t(j - 1)];
        if (type == "BIN")
            v.integrality = opt::Integrality::binary;
        else if (type == "INT")
            v.integrality = opt::Integrality::integer;
        else if (type == "CONT")
            v.integrality = opt::Integrality::continuous;
        else
            v.linear = type == "LIN";
    }
}

}  // namespace kor::e04rc
