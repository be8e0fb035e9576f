#include "phantoms/polarization_target.h"

#include <algorithm>
#include <cmath>

namespace oct::simulator {
namespace {

constexpr float kScattering = 0.12f;

/// Part of a depth cell's range that lies between two borders.
double overlap(double cellTop, double cellMm, double top, double bottom) {
  return std::max(0.0, std::min(cellTop + cellMm, bottom) - std::max(cellTop, top)) / cellMm;
}

}  // namespace

void PolarizationTarget::describe(double, double, double cellMm, DepthProfile& profile) const {
  const int cells = static_cast<int>(profile.scattering.size());
  for (int m = 0; m < cells; ++m) {
    const double depth = m * cellMm;
    const bool inside = depth >= kGelTop && depth < kBottom && !(depth >= kPlateTop && depth < kPlateBottom);
    if (inside) profile.scattering[m] = kScattering;
    if (!profile.isPolarized()) continue;
    auto& polarization = profile.polarization;
    const double plate =
        overlap(depth, cellMm, kPlateTop, kPlateBottom) * cellMm / (kPlateBottom - kPlateTop);
    const double fibres = overlap(depth, cellMm, kFibresTop, kBottom) * cellMm;
    polarization.retardance[m] = static_cast<float>(retardance_ * plate + kFibreRate * fibres);
    polarization.axis[m] = static_cast<float>(axis_);
    polarization.depolarization[m] = depth >= kDepolarizerTop && depth < kFibresTop ? 1.0f : 0.0f;
  }
}

}  // namespace oct::simulator
