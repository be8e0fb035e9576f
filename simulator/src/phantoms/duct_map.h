// The sweat ducts of a finger pad.
#pragma once

#include <cstdint>
#include <vector>

#include "phantoms/ridge_pattern.h"

namespace oct::simulator {

// A duct winds around a vertical axis.
struct Duct {
  LateralPoint axis;
  double turn_phase;  // direction from the axis at the skin's surface, in radians
};

// Ducts along the crests of the ridges, and a quick search for those near a point.
class DuctMap {
 public:
  DuctMap(std::uint64_t seed, const RidgePattern& ridges);

  // The duct whose axis is nearest, if one lies within the reach of a duct; otherwise null.
  const Duct* near(double x_mm, double y_mm) const;

  // Distance from a duct's axis within which it is seen.
  static constexpr double reach_mm = 0.1;

 private:
  std::vector<Duct>& cell_at(int ix, int iy);
  const std::vector<Duct>* find_cell(int ix, int iy) const;

  std::vector<std::vector<Duct>> cells_;
};

}  // namespace oct::simulator
