#include "device/motion.h"

#include <cmath>
#include <numbers>
#include <stdexcept>

namespace oct::simulator {
namespace {

constexpr double largest_amplitude_mm = 1.0;

}  // namespace

Motion::Motion(Kind kind, double amplitude_mm, double period_seconds)
    : kind_(kind), amplitude_mm_(amplitude_mm), period_seconds_(period_seconds) {
  if (!(amplitude_mm >= 0.0 && amplitude_mm <= largest_amplitude_mm))
    throw std::invalid_argument("The amplitude of a motion must be from 0 to 1 millimetre. ");
  if (!(period_seconds > 0.0 && std::isfinite(period_seconds)))
    throw std::invalid_argument("The period of a motion must be above zero. ");
}

BeamPlace Motion::place(double x_mm, double y_mm, double seconds) const {
  if (!moves()) return {x_mm, y_mm};
  const double phase = 2.0 * std::numbers::pi * seconds / period_seconds_;
  if (kind_ == Kind::breathing) return {x_mm, y_mm, amplitude_mm_ * std::sin(phase)};
  // Rates that have no common multiple lead the drift over ever new ground.
  return {x_mm - amplitude_mm_ * std::sin(phase), y_mm - 0.6 * amplitude_mm_ * std::sin(0.618 * phase),
          0.1 * amplitude_mm_ * std::sin(1.382 * phase)};
}

}  // namespace oct::simulator
