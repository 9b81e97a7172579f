// The sections that e04ry writes, one function per keyword.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "opt/problem.hpp"

namespace kor::opt {

enum class Section {
    overview,
    simple_bounds,
    linear_bounds,
    linear_detailed,
    nonlinear_bounds,
    nonlinear_detailed,
    quadratic_detailed,
    cones,
    cones_detailed,
    matrices,
    matrices_detailed,
    multipliers,
    options,
    all_options,
    objective,
    dump_all,
    dump_almost_all,
    tasks,
    task_ids,
    validity,
    potato,
};

// The section a keyword (already normalized) names; false when none.
bool find_section(const std::string &keyword, Section &section);

// The longest keyword: longer ones are refused as too long.
inline constexpr size_t max_keyword_length = 30;

// Writes one section to a unit; false when a record could not be written.
bool print_section(Problem &p, int64_t unit, Section section);

}  // namespace kor::opt
