#include "phantoms/ridge_pattern.h"

#include "base/noise.h"

#include <cmath>
#include <numbers>

namespace oct::simulator {
namespace {

constexpr double kTurn = 2.0 * std::numbers::pi;

/// Distance from crest to crest.
constexpr double kRidgePeriodMm = 0.46;

/// The point around which the ridges loop.
constexpr LateralPoint kCore{0.5, -0.5};

}  // namespace

double RidgePattern::phase(double xMm, double yMm) const {
  const double x = xMm - kCore.x;
  const double y = yMm - kCore.y;
  // Arches on the far side of the core, nearly straight legs on the near side.
  const double stretched = (y > 0.0 ? 0.85 : 0.25) * y;
  const double radius = std::sqrt(x * x + stretched * stretched + 0.01);
  return kTurn * radius / kRidgePeriodMm + 1.1 * smoothNoise(seed_, xMm / 0.9, yMm / 0.9);
}

LateralPoint RidgePattern::nearestCrest(LateralPoint point) const {
  constexpr double kStep = 1e-4;
  for (int iteration = 0; iteration < 4; ++iteration) {
    const double here = phase(point.x, point.y);
    const double slopeX = (phase(point.x + kStep, point.y) - here) / kStep;
    const double slopeY = (phase(point.x, point.y + kStep) - here) / kStep;
    const double steepness = slopeX * slopeX + slopeY * slopeY;
    if (steepness < 1.0) break;
    const double off = std::remainder(here, kTurn);
    point.x -= off * slopeX / steepness;
    point.y -= off * slopeY / steepness;
  }
  return point;
}

}  // namespace oct::simulator
