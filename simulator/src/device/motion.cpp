#include "device/motion.h"

#include <cmath>
#include <numbers>
#include <stdexcept>

namespace oct::simulator {
namespace {

constexpr double kLargestAmplitudeMm = 1.0;

}  // namespace

Motion::Motion(Kind kind, double amplitudeMm, double periodSeconds)
    : kind_(kind), amplitudeMm_(amplitudeMm), periodSeconds_(periodSeconds) {
  if (!(amplitudeMm >= 0.0 && amplitudeMm <= kLargestAmplitudeMm))
    throw std::invalid_argument("The amplitude of a motion must be from 0 to 1 millimetre. ");
  if (!(periodSeconds > 0.0 && std::isfinite(periodSeconds)))
    throw std::invalid_argument("The period of a motion must be above zero. ");
}

BeamPlace Motion::place(double xMm, double yMm, double seconds) const {
  if (!moves()) return {xMm, yMm};
  const double phase = 2.0 * std::numbers::pi * seconds / periodSeconds_;
  if (kind_ == Kind::kBreathing) return {xMm, yMm, amplitudeMm_ * std::sin(phase)};
  // Rates that have no common multiple lead the drift over ever new ground.
  return {xMm - amplitudeMm_ * std::sin(phase), yMm - 0.6 * amplitudeMm_ * std::sin(0.618 * phase),
          0.1 * amplitudeMm_ * std::sin(1.382 * phase)};
}

}  // namespace oct::simulator
