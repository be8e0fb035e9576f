/// @file
/// The sweat ducts of a finger pad.
#pragma once

#include "phantoms/ridge_pattern.h"

#include <cstdint>
#include <vector>

namespace oct::simulator {

/// A duct winds around a vertical axis.
struct Duct {
  LateralPoint axis;
  double turnPhase;  ///< direction from the axis at the skin's surface, in radians
};

/// Ducts along the crests of the ridges, and a quick search for those near a point.
class DuctMap {
 public:
  DuctMap(std::uint64_t seed, const RidgePattern& ridges);

  /// The duct whose axis is nearest, if one lies within the reach of a duct; otherwise null.
  const Duct* near(double xMm, double yMm) const;

  /// Distance from a duct's axis within which it is seen.
  static constexpr double kReachMm = 0.1;

 private:
  std::vector<Duct>& cellAt(int ix, int iy);
  const std::vector<Duct>* findCell(int ix, int iy) const;

  std::vector<std::vector<Duct>> cells_;
};

}  // namespace oct::simulator
