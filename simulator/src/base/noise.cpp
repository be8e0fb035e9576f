#include "base/noise.h"

#include <algorithm>
#include <cmath>

namespace oct::simulator {
namespace {

// Blend weight with zero slope at both ends, so that the lattice does not show as creases.
double fade(double t) {
  return t * t * (3.0 - 2.0 * t);
}

}  // namespace

double smooth_noise(std::uint64_t seed, double x, double y) {
  const double fx = std::floor(x);
  const double fy = std::floor(y);
  const int ix = static_cast<int>(fx);
  const int iy = static_cast<int>(fy);
  const double u = fade(x - fx);
  const double v = fade(y - fy);
  const auto node = [&](int dx, int dy) { return signed_unit(mix(seed, ix + dx, iy + dy)); };
  return std::lerp(std::lerp(node(0, 0), node(1, 0), u), std::lerp(node(0, 1), node(1, 1), u), v);
}

NoiseColumn::NoiseColumn(std::uint64_t seed, double x_mm, double y_mm, double spacing_mm)
    : per_mm_(1.0 / spacing_mm) {
  for (std::size_t i = 0; i < nodes_.size(); ++i)
    nodes_[i] = static_cast<float>(smooth_noise(mix(seed, i), x_mm * per_mm_, y_mm * per_mm_));
}

double NoiseColumn::operator()(double depth_mm) const {
  const double position = std::clamp(depth_mm * per_mm_, 0.0, static_cast<double>(nodes_.size()) - 1.001);
  const int i = static_cast<int>(position);
  return std::lerp(static_cast<double>(nodes_[i]), static_cast<double>(nodes_[i + 1]), fade(position - i));
}

}  // namespace oct::simulator
