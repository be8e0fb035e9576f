#include "phantoms/ridge_pattern.h"

#include <cmath>
#include <numbers>

#include "base/noise.h"

namespace oct::simulator {
namespace {

constexpr double turn = 2.0 * std::numbers::pi;

// Distance from crest to crest.
constexpr double ridge_period_mm = 0.46;

// The point around which the ridges loop.
constexpr LateralPoint core{0.5, -0.5};

}  // namespace

double RidgePattern::phase(double x_mm, double y_mm) const {
  const double x = x_mm - core.x;
  const double y = y_mm - core.y;
  // Arches on the far side of the core, nearly straight legs on the near side.
  const double stretched = (y > 0.0 ? 0.85 : 0.25) * y;
  const double radius = std::sqrt(x * x + stretched * stretched + 0.01);
  return turn * radius / ridge_period_mm + 1.1 * smooth_noise(seed_, x_mm / 0.9, y_mm / 0.9);
}

LateralPoint RidgePattern::nearest_crest(LateralPoint point) const {
  constexpr double step = 1e-4;
  for (int iteration = 0; iteration < 4; ++iteration) {
    const double here = phase(point.x, point.y);
    const double slope_x = (phase(point.x + step, point.y) - here) / step;
    const double slope_y = (phase(point.x, point.y + step) - here) / step;
    const double steepness = slope_x * slope_x + slope_y * slope_y;
    if (steepness < 1.0) break;
    const double off = std::remainder(here, turn);
    point.x -= off * slope_x / steepness;
    point.y -= off * slope_y / steepness;
  }
  return point;
}

}  // namespace oct::simulator
