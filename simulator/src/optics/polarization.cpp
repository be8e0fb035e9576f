#include "optics/polarization.h"

#include <cmath>

namespace oct::simulator {

void LightPath::pass(double retardance, double axis) {
  if (retardance == 0.0) return;
  // cos(r/2) - i sin(r/2) [cos 2a, sin 2a; sin 2a, -cos 2a]
  const double c = std::cos(0.5 * retardance);
  const double s = std::sin(0.5 * retardance);
  const std::complex<double> slow(c, -s * std::cos(2.0 * axis));
  const std::complex<double> fast(c, s * std::cos(2.0 * axis));
  const std::complex<double> across(0.0, -s * std::sin(2.0 * axis));
  for (auto* field : {&sent_, &mirrored_}) {
    const auto [x, y] = *field;
    *field = {slow * x + across * y, across * x + fast * y};
  }
}

PolarizedLight LightPath::returned() const {
  const auto product = [](const Field& a, const Field& b) {
    return std::complex<float>(a[0] * b[0] + a[1] * b[1]);
  };
  return {product(mirrored_, sent_), product(sent_, sent_)};
}

}  // namespace oct::simulator
