#include "phantoms/polarization_target.h"

#include <algorithm>
#include <cmath>

namespace oct::simulator {
namespace {

constexpr float tissue_scattering = 0.12F;

// Part of a depth cell's range that lies between two borders.
double overlap(double cell_top, double cell_mm, double top, double bottom) {
  return std::max(0.0, std::min(cell_top + cell_mm, bottom) - std::max(cell_top, top)) / cell_mm;
}

}  // namespace

void PolarizationTarget::describe(double, double, double cell_mm, DepthProfile& profile) const {
  const int cells = static_cast<int>(profile.scattering.size());
  for (int m = 0; m < cells; ++m) {
    const double depth = m * cell_mm;
    const bool inside =
        depth >= gel_top && depth < bottom_mm && !(depth >= plate_top && depth < plate_bottom);
    if (inside) profile.scattering[m] = tissue_scattering;
    if (!profile.is_polarized()) continue;
    auto& polarization = profile.polarization;
    const double plate =
        overlap(depth, cell_mm, plate_top, plate_bottom) * cell_mm / (plate_bottom - plate_top);
    const double fibres = overlap(depth, cell_mm, fibres_top, bottom_mm) * cell_mm;
    polarization.retardance[m] = static_cast<float>(retardance_ * plate + fibre_rate * fibres);
    polarization.axis[m] = static_cast<float>(axis_);
    polarization.depolarization[m] = depth >= depolarizer_top && depth < fibres_top ? 1.0F : 0.0F;
  }
}

}  // namespace oct::simulator
