// How far apart samples lie.
#pragma once

#include <algorithm>
#include <array>
#include <string>

namespace oct::app {

struct VoxelSpacing {
  std::array<double, 3> mm{};  // along depth, A-scans, B-scans; 0: not known
  std::string source;          // who says so, such as "NRRD header"

  bool is_known() const {
    return std::ranges::all_of(mm, [](double step) { return step > 0; });
  }
};

}  // namespace oct::app
