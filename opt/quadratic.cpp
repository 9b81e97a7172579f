#include "opt/quadratic.hpp"

namespace kor::opt {

void store_quadratic(Problem &p, QuadraticConstraint qc, int64_t &idqc) {
    if (idqc == -1) {
        Objective o;
        o.kind = ObjectiveKind::quadratic;
        o.constant = qc.constant;
        o.idxc = std::move(qc.idxr);
        o.c = std::move(qc.r);
        o.factorized = qc.factorized;
        o.mf = qc.mf;
        (qc.factorized ? o.f : o.h) = std::move(qc.q);
        p.objective = std::move(o);
        p.hessians.clear();
    } else if (idqc == 0) {
        p.quadratic.push_back(std::move(qc));  // room reserved by the caller
        idqc = int64_t(p.quadratic.size());
    } else {
        p.quadratic[size_t(idqc - 1)] = std::move(qc);
    }
}

}  // namespace kor::opt
