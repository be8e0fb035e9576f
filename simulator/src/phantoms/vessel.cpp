#include "phantoms/vessel.h"

#include <cmath>
#include <utility>

namespace oct::simulator {
namespace {

// Wiggles of a vessel per length, in radians per millimetre.
constexpr double wiggle_rate = 2.3;

}  // namespace

double Vessel::distance(double x_mm, double y_mm) const {
  if (along_y) std::swap(x_mm, y_mm);
  const double angle = wiggle_rate * x_mm + wiggle_phase;
  const double centre = offset + slope * x_mm + bend * x_mm * x_mm + wiggle * std::sin(angle);
  const double rise = slope + 2.0 * bend * x_mm + wiggle * wiggle_rate * std::cos(angle);
  return std::abs(y_mm - centre) / std::sqrt(1.0 + rise * rise);
}

double Vessel::half_height(double x_mm, double y_mm) const {
  const double beside = distance(x_mm, y_mm);
  return beside < radius ? std::sqrt(radius * radius - beside * beside) : 0.0;
}

}  // namespace oct::simulator
