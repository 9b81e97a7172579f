#include "e04zm_def.hpp"
#include "frame/units.hpp"
#include "opt/handle.hpp"
#include "opt/option_text.hpp"
#include "opt/options.hpp"
#include "tables/option_table.hpp"

namespace kor::e04zm {

namespace {

// The string-form reports of a failed setting (e04zp words the same
// failures by line number instead).
void report(frame::Record &rec, std::string_view optstr, const opt::Setting &s) {
    using Status = opt::Setting::Status;
    if (s.status == Status::unknown_option) return opt::raise_unknown_option<Exit>(rec, optstr);

    const std::string value = opt::quoted(s.value);
    if (s.status == Status::not_integer) return rec.raise<Exit::not_integer>(value);
    if (s.status == Status::not_real) return rec.raise<Exit::not_real>(value);
    const std::string name = opt::quoted(opt::table::rows[s.option].display);
    if (s.status == Status::bad_keyword) return rec.raise<Exit::bad_keyword>(name, value);

    // out of bounds
    using R = opt::Relation;
    if (s.is_integer) {
        const int64_t v = s.integer_value, b = s.integer_bound;
        switch (s.relation) {
        case R::ge: return rec.raise<Exit::integer_below>(name, v, b);
        case R::gt: return rec.raise<Exit::integer_not_above>(name, v, b);
        case R::le: return rec.raise<Exit::integer_above>(name, v, b);
        case R::lt: return rec.raise<Exit::integer_not_below>(name, v, b);
        }
    }
    const double v = s.real_value, b = s.real_bound;
    switch (s.relation) {
    case R::ge: return rec.raise<Exit::real_below>(name, v, b);
    case R::gt: return rec.raise<Exit::real_not_above>(name, v, b);
    case R::le: return rec.raise<Exit::real_above>(name, v, b);
    case R::lt: return rec.raise<Exit::real_not_below>(name, v, b);
    }
}

}  // namespace

void engine(frame::Record &rec, void *handle, std::string_view optstr) {
    opt::Problem *problem;
    if (opt::HandleStatus s = opt::check_handle(handle, &problem); s != opt::HandleStatus::valid)
        return opt::raise_handle<Exit>(rec, s);
    if (opt::solver_running(*problem)) return rec.raise<Exit::options_locked>();

    const opt::Setting setting = opt::apply_setting(opt::options(*problem), optstr);
    if (setting.status == opt::Setting::Status::defaults_loaded)
        frame::units::write_record(frame::units::advisory_unit(), "Defaults");
    if (!setting.ok()) report(rec, optstr, setting);
}

}  // namespace kor::e04zm
