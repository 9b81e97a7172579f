#include <algorithm>

#include "e04rw_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rw {

namespace {

enum class Item { xprop, irowb, iccolb, idxcc, cctype, idxc, blx, bux, blb, bub, cvec, blc, buc, unknown };

Item find_item(const std::string &k) {
    static const std::pair<const char *, Item> names[] = {
        {"XPROP", Item::xprop}, {"IROWB", Item::irowb}, {"ICCOLB", Item::iccolb},
        {"IDXCC", Item::idxcc}, {"CCTYPE", Item::cctype}, {"IDXC", Item::idxc},
        {"BLX", Item::blx},     {"BUX", Item::bux},     {"BLB", Item::blb},
        {"BUB", Item::bub},     {"CVEC", Item::cvec},   {"BLC", Item::blc},
        {"BUC", Item::buc}};
    for (const auto &[name, item] : names)
        if (k == name) return item;
    return Item::unknown;
}

bool is_integer_item(Item i) { return i <= Item::idxc; }
bool is_writable(Item i) { return i == Item::xprop || i > Item::idxc; }

// The linear constraints' matrix by columns: row indices and 1-based
// column starts.
void by_columns(const opt::Problem &p, std::vector<int64_t> &rows, std::vector<int64_t> &starts) {
    const opt::Coordinates &b = p.linear.b;
    std::vector<size_t> order(b.size());
    for (size_t k = 0; k < order.size(); ++k) order[k] = k;
    std::sort(order.begin(), order.end(), [&](size_t x, size_t y) {
        return b.col[x] != b.col[y] ? b.col[x] < b.col[y] : b.row[x] < b.row[y];
    });
    rows.resize(order.size());
    starts.assign(size_t(p.nvar) + 1, 0);
    for (size_t k = 0; k < order.size(); ++k) {
        rows[k] = b.row[order[k]];
        ++starts[size_t(b.col[order[k]])];
    }
    starts[0] = 1;
    for (size_t j = 1; j < starts.size(); ++j) starts[j] += starts[j - 1];
}

}  // namespace

void engine(frame::Record &rec, void *handle, std::string_view cmdstr, int64_t ioflag,
            int64_t liarr, int64_t *iarr, int64_t lrarr, double *rarr) {
    opt::Problem *p = opt::open_handle<Exit>(rec, handle);
    if (!p) return;
    if (ioflag != 0 && ioflag != 1) return rec.raise<Exit::ioflag_invalid>(ioflag);
    const Item item = find_item(opt::normalize_keyword(cmdstr));
    if (item == Item::unknown) return rec.raise<Exit::cmdstr_unknown>();
    const bool write = ioflag == 1;
    if (write && p->solver_running) return rec.raise<Exit::phase_forbids>();
    if (write && !is_writable(item)) return rec.raise<Exit::write_not_supported>();

    // The item as it stands, or not available.
    std::vector<int64_t> ivalues;
    std::vector<double> *reals = nullptr;
    const opt::Objective &o = p->objective;
    switch (item) {
    case Item::xprop:
        if (p->properties.empty()) {
            ivalues.assign(size_t(p->nvar), 0);  // every variable continuous, general
        } else {
            ivalues.reserve(p->properties.size());
            for (const opt::VariableProperty &v : p->properties)
                ivalues.push_back(int64_t(v.integrality) + (v.linear ? 10 : 0));
        }
        break;
    case Item::irowb:
    case Item::iccolb: {
        std::vector<int64_t> rows, starts;
        by_columns(*p, rows, starts);
        ivalues = item == Item::irowb ? std::move(rows) : std::move(starts);
        break;
    }
    case Item::idxcc:
        if (p->cones.empty()) return rec.raise<Exit::not_available>();
        for (const opt::Cone &c : p->cones) ivalues.insert(ivalues.end(), c.members.begin(), c.members.end());
        break;
    case Item::cctype:
        if (p->cones.empty()) return rec.raise<Exit::not_available>();
        for (const opt::Cone &c : p->cones) ivalues.push_back(int64_t(c.type));
        break;
    case Item::idxc:
        if (o.kind != opt::ObjectiveKind::quadratic) return rec.raise<Exit::not_available>();
        ivalues = o.idxc;
        break;
    case Item::blx:
    case Item::bux:
        if (!p->bounds) return rec.raise<Exit::not_available>();
        reals = item == Item::blx ? &p->bounds->first : &p->bounds->second;
        break;
    case Item::blb: reals = &p->linear.bl; break;
    case Item::bub: reals = &p->linear.bu; break;
    case Item::blc:
    case Item::buc:
        if (!p->nonlinear.defined) return rec.raise<Exit::not_available>();
        reals = item == Item::blc ? &p->nonlinear.bl : &p->nonlinear.bu;
        break;
    case Item::cvec:
        if (o.kind == opt::ObjectiveKind::linear)
            reals = &p->objective.cvec;
        else if (o.kind == opt::ObjectiveKind::quadratic)
            reals = &p->objective.c;
        else
            return rec.raise<Exit::not_available>();
        break;
    default: return rec.raise<Exit::cmdstr_unknown>();
    }

    if (is_integer_item(item)) {
        const int64_t size = int64_t(ivalues.size());
        if (liarr != size) return rec.raise<Exit::liarr_mismatch>(liarr, size);
        // iarr may be null for a real item (C callers), not for this one.
        if (size > 0 && !iarr) return rec.raise<Exit::array_null>(std::string_view("iarr"));
        if (!write) {
            std::copy(ivalues.begin(), ivalues.end(), iarr);
            return;
        }
        // XPROP, the one writable integer item.
        for (int64_t i = 0; i < size; ++i) {
            const int64_t v = iarr[i];
            if (!(v == 0 || v == 1 || v == 2 || v == 10 || v == 11 || v == 12))
                return rec.raise<Exit::xprop_invalid>(i + 1, v);
        }
        if (p->properties.empty()) p->properties.resize(size_t(size));
        for (int64_t i = 0; i < size; ++i) {
            opt::VariableProperty &v = p->properties[size_t(i)];
            v.integrality = opt::Integrality(iarr[i] % 10);
            v.linear = iarr[i] >= 10;
        }
        return;
    }
    const int64_t size = int64_t(reals->size());
    if (lrarr != size) return rec.raise<Exit::lrarr_mismatch>(lrarr, size);
    if (size > 0 && !rarr) return rec.raise<Exit::array_null>(std::string_view("rarr"));
    if (!write) {
        std::copy(reals->begin(), reals->end(), rarr);
        return;
    }
    // A bound written must stay on its side of the other bound.
    const std::vector<double> *other = nullptr;
    bool lower = false;
    switch (item) {
    case Item::blx: other = &p->bounds->second; lower = true; break;
    case Item::bux: other = &p->bounds->first; break;
    case Item::blb: other = &p->linear.bu; lower = true; break;
    case Item::bub: other = &p->linear.bl; break;
    case Item::blc: other = &p->nonlinear.bu; lower = true; break;
    case Item::buc: other = &p->nonlinear.bl; break;
    default: break;
    }
    if (other)
        for (int64_t i = 0; i < size; ++i) {
            const double lo = lower ? rarr[i] : (*other)[size_t(i)];
            const double hi = lower ? (*other)[size_t(i)] : rarr[i];
            if (!(lo <= hi)) return rec.raise<Exit::bounds_crossed>(i + 1, lo, hi);
        }
    std::copy(rarr, rarr + size, reals->begin());
}

}  // namespace kor::e04rw
