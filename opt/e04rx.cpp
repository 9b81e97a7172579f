#include <algorithm>

#include "e04rx_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rx {

namespace {

struct Name {
    const char *keyword;
    opt::ResultItem item;
};

constexpr Name names[] = {
    {"PRIMAL VARIABLES", opt::ResultItem::primal_variables},
    {"DUAL VARIABLES", opt::ResultItem::dual_variables},
    {"DUAL CONE VARIABLES", opt::ResultItem::dual_cone_variables},
    {"DUAL CONE", opt::ResultItem::dual_cone_variables},
    {"DUAL MATRIX VARIABLES", opt::ResultItem::dual_matrix_variables},
    {"DUAL MATRIX", opt::ResultItem::dual_matrix_variables},
    {"RESIDUAL WEIGHTS", opt::ResultItem::residual_weights},
    {"COVARIANCE MATRIX", opt::ResultItem::covariance_matrix},
    {"HESSIAN MATRIX", opt::ResultItem::hessian_matrix},
    {"SLACK VARIABLES", opt::ResultItem::slack_variables},
    {"SLACK", opt::ResultItem::slack_variables},
    {"SLK", opt::ResultItem::slack_variables},
    {"MCS LIST", opt::ResultItem::mcs_list},
    {"MCSL", opt::ResultItem::mcs_list},
};

}  // namespace

void engine(frame::Record &rec, void *handle, std::string_view cmdstr, int64_t ioflag,
            int64_t lrarr, double *rarr) {
    opt::Problem *p = opt::open_handle<Exit>(rec, handle);
    if (!p) return;
    if (ioflag != 0 && ioflag != 1) return rec.raise<Exit::ioflag_invalid>(ioflag);
    const std::string keyword = opt::normalize_keyword(cmdstr);
    const Name *found = nullptr;
    for (const Name &n : names)
        if (keyword == n.keyword) found = &n;
    if (!found) return rec.raise<Exit::cmdstr_unknown>();
    const bool write = ioflag == 1;
    // Results are a solver's to write; the MCS list is solver input.
    const bool input = found->item == opt::ResultItem::mcs_list;
    if (write && p->solver_running) return rec.raise<Exit::phase_forbids>();
    if (write && !input) return rec.raise<Exit::write_not_supported>();
    if (!write && input) return rec.raise<Exit::read_not_supported>();
    if (write) {
        // Three initialization points for every variable.
        const int64_t size = p->nvar > INT64_MAX / 3 ? INT64_MAX : 3 * p->nvar;
        if (lrarr != size) return rec.raise<Exit::lrarr_mismatch>(lrarr, size);
        opt::store_result(*p, found->item, opt::copy_of(rarr, size));
        return;
    }
    const auto it = p->results.find(found->item);
    if (it == p->results.end()) return rec.raise<Exit::not_available>();
    const int64_t size = int64_t(it->second.size());
    if (lrarr != size) return rec.raise<Exit::lrarr_mismatch>(lrarr, size);
    std::copy(it->second.begin(), it->second.end(), rarr);
}

}  // namespace kor::e04rx
