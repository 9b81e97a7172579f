#include "e04zn_def.hpp"
#include "opt/handle.hpp"
#include "opt/option_text.hpp"
#include "opt/options.hpp"
#include "tables/option_table.hpp"

namespace kor::e04zn {

void engine(frame::Record &rec, void *handle, std::string_view optstr, int64_t &ivalue,
            double &rvalue, frame::TextOut cvalue, int64_t &optype) {
    opt::Problem *problem;
    if (opt::HandleStatus s = opt::check_handle(handle, &problem); s != opt::HandleStatus::valid)
        return opt::raise_handle<Exit>(rec, s);
    if (opt::solver_running(*problem)) return rec.raise<Exit::options_locked>();

    const int option = opt::find_option(opt::to_upper(opt::trim(optstr)));
    if (option < 0) return opt::raise_unknown_option<Exit>(rec, optstr);

    const opt::OptionStore &store = opt::options(*problem);
    const opt::table::Row &row = opt::table::rows[option];
    cvalue.assign("");
    switch (row.type) {
    case opt::table::Type::integer:
        ivalue = store.get(opt::IntegerSlot{row.slot});
        optype = 1;
        break;
    case opt::table::Type::real:
        rvalue = store.get(opt::RealSlot{row.slot});
        optype = 2;
        break;
    case opt::table::Type::keyword:
        cvalue.assign(store.keyword(opt::KeywordSlot{row.slot}));
        optype = 3;
        break;
    }
}

}  // namespace kor::e04zn
