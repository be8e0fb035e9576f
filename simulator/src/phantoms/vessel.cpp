#include "phantoms/vessel.h"

#include <cmath>
#include <utility>

namespace oct::simulator {
namespace {

/// Wiggles of a vessel per length, in radians per millimetre.
constexpr double kWiggleRate = 2.3;

}  // namespace

double Vessel::distance(double xMm, double yMm) const {
  if (alongY) std::swap(xMm, yMm);
  const double angle = kWiggleRate * xMm + wigglePhase;
  const double centre = offset + slope * xMm + bend * xMm * xMm + wiggle * std::sin(angle);
  const double rise = slope + 2.0 * bend * xMm + wiggle * kWiggleRate * std::cos(angle);
  return std::abs(yMm - centre) / std::sqrt(1.0 + rise * rise);
}

double Vessel::halfHeight(double xMm, double yMm) const {
  const double beside = distance(xMm, yMm);
  return beside < radius ? std::sqrt(radius * radius - beside * beside) : 0.0;
}

}  // namespace oct::simulator
