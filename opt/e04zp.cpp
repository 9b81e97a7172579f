#include "e04zp_def.hpp"
#include "opt/handle.hpp"
#include "opt/options.hpp"

namespace kor::e04zp {

void engine(frame::Record &rec, void *handle, int64_t fileid) {
    opt::Problem *problem;
    if (opt::HandleStatus s = opt::check_handle(handle, &problem); s != opt::HandleStatus::valid)
        return opt::raise_handle<Exit>(rec, s);
    if (opt::solver_running(*problem)) return rec.raise<Exit::options_locked>();

    const opt::FileReading r = opt::read_option_block(opt::options(*problem), fileid);
    using F = opt::FileReading::Status;
    using S = opt::Setting::Status;
    switch (r.status) {
    case F::ok: return;
    case F::no_begin: return rec.raise<Exit::no_begin>();
    case F::no_end: return rec.raise<Exit::no_end>();
    case F::no_delimiter: return rec.raise<Exit::no_delimiter>(r.line);
    case F::setting_failed: break;
    }
    switch (r.setting.status) {
    case S::unknown_option: return rec.raise<Exit::unknown_option>(r.line);
    case S::not_integer:
    case S::not_real: return rec.raise<Exit::not_numeric>(r.line);
    case S::bad_keyword: return rec.raise<Exit::bad_keyword>(r.line);
    default:  // out of bounds
        return r.setting.is_integer ? rec.raise<Exit::integer_out_of_bounds>(r.line)
                                    : rec.raise<Exit::real_out_of_bounds>(r.line);
    }
}

}  // namespace kor::e04zp
