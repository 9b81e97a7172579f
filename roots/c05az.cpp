#include "c05az_def.hpp"
#include "roots/brent.hpp"

static_assert(KOR_C05AZ_LC >= kor::roots::brent_state_length);

namespace kor::c05az {

void engine(frame::Record &rec, double &x, double &y, double fx, double tolx, int64_t ir, double *c,
            int64_t &ind) {
    using roots::BrentStatus;
    switch (roots::brent_step(x, y, fx, tolx, ir, c, ind)) {
    case BrentStatus::evaluate:
    case BrentStatus::finished:
        return;
    case BrentStatus::no_sign_change:
        return rec.raise<Exit::no_sign_change>(fx, roots::brent_first_end_value(c));
    case BrentStatus::ind_initial:
        return rec.raise<Exit::ind_initial>(ind);
    case BrentStatus::ind_intermediate:
        return rec.raise<Exit::ind_intermediate>(ind);
    case BrentStatus::tolx_not_positive:
        return rec.raise<Exit::tolx_not_positive>(tolx);
    case BrentStatus::ir_invalid:
        return rec.raise<Exit::ir_invalid>(ir);
    case BrentStatus::ends_not_finite:
        return rec.raise<Exit::ends_not_finite>(x, y);
    case BrentStatus::probable_pole:
        return rec.raise<Exit::probable_pole>();
    case BrentStatus::too_much_accuracy:
        return rec.raise<Exit::too_much_accuracy>(tolx);
    }
}

}  // namespace kor::c05az
