#include "base/noise.h"

#include <algorithm>
#include <cmath>

namespace oct::simulator {
namespace {

/// Blend weight with zero slope at both ends, so that the lattice does not show as creases.
double fade(double t) {
  return t * t * (3.0 - 2.0 * t);
}

}  // namespace

double smoothNoise(std::uint64_t seed, double x, double y) {
  const double fx = std::floor(x);
  const double fy = std::floor(y);
  const int ix = static_cast<int>(fx);
  const int iy = static_cast<int>(fy);
  const double u = fade(x - fx);
  const double v = fade(y - fy);
  const auto node = [&](int dx, int dy) { return signedUnit(mix(seed, ix + dx, iy + dy)); };
  return std::lerp(std::lerp(node(0, 0), node(1, 0), u), std::lerp(node(0, 1), node(1, 1), u), v);
}

NoiseColumn::NoiseColumn(std::uint64_t seed, double xMm, double yMm, double spacingMm)
    : perMm_(1.0 / spacingMm) {
  for (std::size_t i = 0; i < nodes_.size(); ++i)
    nodes_[i] = static_cast<float>(smoothNoise(mix(seed, i), xMm * perMm_, yMm * perMm_));
}

double NoiseColumn::operator()(double depthMm) const {
  const double position = std::clamp(depthMm * perMm_, 0.0, static_cast<double>(nodes_.size()) - 1.001);
  const int i = static_cast<int>(position);
  return std::lerp(static_cast<double>(nodes_[i]), static_cast<double>(nodes_[i + 1]), fade(position - i));
}

}  // namespace oct::simulator
