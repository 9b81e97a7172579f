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

    const std::string_view value = opt::without_trailing_blanks(s.value);
    const bool short_value = opt::quoted_fits_one_field(value);
    if (s.status == Status::not_integer || s.status == Status::not_real) {
        const bool integer = s.status == Status::not_integer;
        if (short_value) {
            const std::string v = opt::quoted_fields<1>(value)[0];
            return integer ? rec.raise<Exit::not_integer>(v) : rec.raise<Exit::not_real>(v);
        }
        const auto v = opt::quoted_fields<6>(value);
        return integer ? rec.raise<Exit::not_integer_long>(v[0], v[1], v[2], v[3], v[4], v[5])
                       : rec.raise<Exit::not_real_long>(v[0], v[1], v[2], v[3], v[4], v[5]);
    }

    const auto name = opt::quoted_fields<2>(opt::table::rows[s.option].display);
    if (s.status == Status::bad_keyword) {
        if (short_value) return rec.raise<Exit::bad_keyword>(name[0], name[1], opt::quoted_fields<1>(value)[0]);
        const auto v = opt::quoted_fields<5>(value);
        return rec.raise<Exit::bad_keyword_long>(name[0], name[1], v[0], v[1], v[2], v[3], v[4]);
    }

    // out of bounds
    using R = opt::Relation;
    if (s.is_integer) {
        const int64_t v = s.integer_value, b = s.integer_bound;
        switch (s.relation) {
        case R::ge: return rec.raise<Exit::integer_below>(name[0], name[1], v, b);
        case R::gt: return rec.raise<Exit::integer_not_above>(name[0], name[1], v, b);
        case R::le: return rec.raise<Exit::integer_above>(name[0], name[1], v, b);
        case R::lt: return rec.raise<Exit::integer_not_below>(name[0], name[1], v, b);
        }
    }
    const double v = s.real_value, b = s.real_bound;
    switch (s.relation) {
    case R::ge: return rec.raise<Exit::real_below>(name[0], name[1], v, b);
    case R::gt: return rec.raise<Exit::real_not_above>(name[0], name[1], v, b);
    case R::le: return rec.raise<Exit::real_above>(name[0], name[1], v, b);
    case R::lt: return rec.raise<Exit::real_not_below>(name[0], name[1], v, b);
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
