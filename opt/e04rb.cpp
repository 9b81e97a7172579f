#include "e04rb_def.hpp"
#include "opt/engine.hpp"

namespace kor::e04rb {

void engine(frame::Record &rec, void *handle, std::string_view gtype, int64_t lgroup,
            const int64_t *group, int64_t &idgroup) {
    opt::Problem *p = opt::open_for_change<Exit>(rec, handle);
    if (!p) return;
    const int64_t n = p->nvar;
    const int64_t cones = int64_t(p->cones.size());
    if (lgroup < 0) return rec.raise<Exit::lgroup_below>(lgroup);
    if (idgroup < 0) return rec.raise<Exit::idgroup_below>(idgroup);
    const std::string type = opt::normalize_keyword(gtype);
    opt::Cone cone;
    if (type == "QUAD" || type == "Q")
        cone.type = opt::ConeType::quadratic;
    else if (type == "RQUAD" || type == "R")
        cone.type = opt::ConeType::rotated_quadratic;
    else
        return rec.raise<Exit::gtype_unknown>(gtype);
    if (cone.type == opt::ConeType::quadratic && lgroup == 1)
        return rec.raise<Exit::quadratic_cone_too_small>(lgroup);
    if (cone.type == opt::ConeType::rotated_quadratic && (lgroup == 1 || lgroup == 2))
        return rec.raise<Exit::rotated_cone_too_small>(lgroup);
    if (idgroup > cones) return rec.raise<Exit::idgroup_unknown>(idgroup, cones);
    opt::reserve_for(cone.members, lgroup);
    if (idgroup == 0) opt::reserve_for(p->cones, cones + 1);
    if (int64_t i = opt::first_outside(group, lgroup, 1, n); i >= 0)
        return rec.raise<Exit::group_range>(i + 1, group[i], n);
    if (opt::Repeat r = opt::first_repeated(group, lgroup); r.found)
        return rec.raise<Exit::member_repeated>(r.position + 1, r.row);
    cone.members.assign(group, group + lgroup);
    if (idgroup == 0) {
        p->cones.push_back(std::move(cone));
        idgroup = cones + 1;
    } else {
        p->cones[size_t(idgroup - 1)] = std::move(cone);
    }
}

}  // namespace kor::e04rb
