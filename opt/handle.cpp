#include "opt/handle.hpp"

#include <mutex>
#include <new>
#include <unordered_set>

#include "opt/engine.hpp"
#include "opt/problem.hpp"

namespace kor::opt {

namespace {

struct Header {
    int64_t words[header_words];
};

// The problem data of every live handle.  A header whose data word was
// overwritten with some other non-null value is recognised as corrupted by
// a look-up here, without following the pointer.
struct LiveProblems {
    std::mutex lock;
    std::unordered_set<const Problem *> set;
};

LiveProblems &live() {
    static LiveProblems *instance = new LiveProblems;  // outlives every handle
    return *instance;
}

bool is_live(const Problem *p) {
    LiveProblems &l = live();
    std::lock_guard<std::mutex> guard(l.lock);
    return l.set.count(p) != 0;
}

}  // namespace

HandleStatus check_handle(void *handle, Problem **problem) {
    *problem = nullptr;
    if (!handle) return HandleStatus::null_handle;
    const int64_t *w = static_cast<const Header *>(handle)->words;
    if (w[0] != header_sentinel) return HandleStatus::foreign;
    for (int i = 0; i < 4; ++i)
        if (w[1 + i] != suite_tag[i]) return HandleStatus::foreign;
    for (int i = 0; i < 3; ++i)
        if (w[5 + i] != kind_tag[i]) return HandleStatus::corrupted;
    auto *p = reinterpret_cast<Problem *>(static_cast<intptr_t>(w[8]));
    if (!p || !is_live(p) || p->header != handle) return HandleStatus::corrupted;
    *problem = p;
    return HandleStatus::valid;
}

OptionStore &options(Problem &problem) { return *problem.options; }
const OptionStore &options(const Problem &problem) { return *problem.options; }
bool solver_running(const Problem &problem) { return problem.solver_running; }
void enter_solver_phase(Problem &problem) { problem.solver_running = true; }
void leave_solver_phase(Problem &problem) { problem.solver_running = false; }

void *create_handle(int64_t nvar) {
    // Every step that can fail comes before the header is filled in, and
    // the smart pointers release what was allocated if one does.
    auto header = std::make_unique<Header>();
    auto problem = std::make_unique<Problem>();
    problem->nvar = nvar;
    // Room for every variable's properties, taken when first set: a count
    // no allocation can hold fails here, and nothing is touched yet.
    reserve_for(problem->properties, nvar);
    problem->options = make_option_store();
    {
        LiveProblems &l = live();
        std::lock_guard<std::mutex> guard(l.lock);
        l.set.insert(problem.get());
    }
    problem->header = header.get();
    int64_t *w = header->words;
    w[0] = header_sentinel;
    for (int i = 0; i < 4; ++i) w[1 + i] = suite_tag[i];
    for (int i = 0; i < 3; ++i) w[5 + i] = kind_tag[i];
    w[8] = static_cast<int64_t>(reinterpret_cast<intptr_t>(problem.release()));
    return header.release();
}

void destroy_handle(void *handle, Problem *problem) {
    {
        LiveProblems &l = live();
        std::lock_guard<std::mutex> guard(l.lock);
        l.set.erase(problem);
    }
    delete problem;
    auto *header = static_cast<Header *>(handle);
    // A stale copy of the handle that still reaches this memory before it is
    // reused finds no sentinel.
    for (int64_t &w : header->words) w = 0;
    delete header;
}

void store_result(Problem &problem, ResultItem item, std::vector<double> values) {
    problem.results[item] = std::move(values);
}

}  // namespace kor::opt
