#include "phantoms/retina.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/noise.h"

namespace oct::simulator {
namespace {

constexpr double retina_index = 1.38;

// How a layer looks: scattering as in DepthProfile, loss in nepers of amplitude
// per millimetre, there and back.
struct RetinaTissue {
  double scattering;
  double loss;
};

constexpr std::array<RetinaTissue, Retina::layer_count> tissues{{
    {0.150, 2.0},   // nerve fibres
    {0.055, 0.6},   // ganglion cells
    {0.085, 0.6},   // inner plexiform
    {0.036, 0.5},   // inner nuclear
    {0.075, 0.5},   // outer plexiform
    {0.020, 0.4},   // outer nuclear
    {0.070, 0.4},   // outer limiting membrane
    {0.030, 0.4},   // inner segments
    {0.230, 1.0},   // junction of inner and outer segments
    {0.075, 0.6},   // outer segments
    {0.300, 12.0},  // pigment epithelium
    {0.170, 5.0},   // choriocapillaris
    {0.130, 5.0},   // choroid
}};

constexpr RetinaTissue sclera{0.11, 6.0};
constexpr RetinaTissue vitreous{0.002, 0.0};
constexpr double choroid_vessel = 0.05;

// Retardation in radians per geometric millimetre, passing once.
constexpr double fibre_retardance = 2.2;
constexpr double sclera_retardance = 9.0;

// Grains of pigment destroy the polarization of nearly all light they scatter.
constexpr float pigment_depolarization = 0.9F;

// Part of the amplitude that a retinal vessel lets pass.
constexpr double vessel_shadow = 0.3;

// Rises from 0 in the fovea to 1 outside the pit.
double outside_fovea(double radius, double pit_radius) {
  const double relative = radius / pit_radius;
  return 1.0 - std::exp(-relative * relative);
}

}  // namespace

Retina::Retina(std::uint64_t seed) : seed_(mix(seed, 0xE1)) {
  // The large vessels arch around the fovea; small ones come nearer from both sides.
  for (int i = 0; i < 10; ++i) {
    const auto dice = mix(seed_, 100 + i);
    const auto throw_die = [&](int die) { return signed_unit(mix(dice, die)); };
    const bool small = i >= 4;
    const double side = i % 2 == 0 ? 1.0 : -1.0;
    const double away = small ? 1.1 + 0.45 * (i / 2 - 2) : 1.9 + 0.5 * (i / 2);
    vessels_.push_back({.along_y = small && i % 4 < 2,
                        .offset = side * (away + 0.15 * throw_die(1)),
                        .slope = 0.08 * throw_die(2),
                        .bend = side * (small ? 0.05 : -0.06) * (1.0 + 0.4 * throw_die(3)),
                        .wiggle = small ? 0.06 : 0.1,
                        .wiggle_phase = 3.0 * throw_die(4),
                        .depth = 0.03,
                        .radius = small ? 0.025 + 0.008 * throw_die(5) : 0.055 + 0.012 * throw_die(5)});
  }
}

Retina::Borders Retina::borders(double x_mm, double y_mm) const {
  const double radius = std::hypot(x_mm, y_mm);
  const double far = std::exp(-radius * radius / 18.0);  // the inner layers thin out towards the periphery
  const double pit = outside_fovea(radius, 0.42);
  const double rim = outside_fovea(radius, 0.55) * far;
  const double clivus = 1.0 - outside_fovea(radius, 0.5);
  const auto uneven = [&](int layer) {
    return 1.0 + 0.06 * smooth_noise(mix(seed_, layer), x_mm / 0.8, y_mm / 0.8);
  };
  // Fibres run from the optic nerve's side, here the right, and are thickest there.
  const double fibres =
      0.004 + 0.040 * outside_fovea(radius, 1.5) * (1.0 + 0.16 * std::clamp(x_mm, -4.0, 4.0));
  const std::array<double, layer_count> thickness{
      fibres,
      0.050 * rim + 0.002,
      0.040 * pit * (0.5 + 0.5 * far) + 0.002,
      0.036 * pit * (0.6 + 0.4 * far) + 0.003,
      0.020 + 0.010 * pit,
      0.058 + 0.050 * clivus,
      0.007,
      0.022,
      0.013,
      0.022 + 0.014 * clivus,
      0.021,
      0.012,
      0.24 + 0.04 * smooth_noise(mix(seed_, 50), x_mm / 1.5, y_mm / 1.5),
  };
  Borders borders{};
  // The pigment epithelium carries the shape of the eye; everything above is stacked on it.
  const double eye = (1.30 - (x_mm * x_mm + y_mm * y_mm) / 44.0 + 0.018 * x_mm) +
                     0.012 * smooth_noise(mix(seed_, 51), x_mm / 2.0, y_mm / 2.0);
  borders[pigment_epithelium] = eye;
  for (int layer = pigment_epithelium; layer < layer_count; ++layer)
    borders[layer + 1] = borders[layer] + retina_index * thickness[layer] * uneven(layer);
  for (int layer = pigment_epithelium - 1; layer >= 0; --layer)
    borders[layer] = borders[layer + 1] - retina_index * thickness[layer] * uneven(layer);
  return borders;
}

void Retina::describe(double x_mm, double y_mm, double cell_mm, DepthProfile& profile) const {
  const auto border = borders(x_mm, y_mm);
  const NoiseColumn grain(mix(seed_, 60), x_mm, y_mm, 0.05);
  const NoiseColumn choroid_vessels(mix(seed_, 61), 0.6 * x_mm, 0.6 * y_mm, 0.11);
  profile.reflectors.push_back({border[nerve_fibres], 0.006F});

  double vessel_top = 0.0;
  double vessel_bottom = 0.0;
  for (const auto& vessel : vessels_)
    if (const double half = vessel.half_height(x_mm, y_mm); half > 0.0) {
      const double axis = border[nerve_fibres] + retina_index * vessel.depth;
      vessel_top = axis - retina_index * half;
      vessel_bottom = axis + retina_index * half;
    }

  // Fibres run in arches around the fovea, those of the sclera every way.
  const double fibre_axis = std::atan2(y_mm, x_mm);
  const double sclera_axis = std::numbers::pi * smooth_noise(mix(seed_, 62), x_mm / 0.9, y_mm / 0.9);

  double passed = 1.0;
  int layer = -1;  // -1: vitreous body
  const int cells = static_cast<int>(profile.scattering.size());
  for (int m = 0; m < cells; ++m) {
    const double depth = m * cell_mm;
    while (layer < layer_count && depth >= border[layer + 1]) ++layer;
    RetinaTissue tissue = layer < 0 ? vitreous : layer < layer_count ? tissues[layer] : sclera;
    tissue.scattering *= 1.0 + 0.25 * grain(depth);
    if (layer == choroid) {
      const double blood = std::clamp(4.0 * choroid_vessels(depth) - 0.3, 0.0, 1.0);
      tissue.scattering = std::lerp(tissue.scattering, choroid_vessel, blood);
    }
    if (depth > vessel_top && depth < vessel_bottom) {
      // Blood scatters at its surface and swallows light on the way through.
      const double below = (depth - vessel_top) / (vessel_bottom - vessel_top);
      tissue.scattering = 0.17 * std::exp(-2.0 * below);
      tissue.loss = -std::log(vessel_shadow) * retina_index / (vessel_bottom - vessel_top);
    }
    profile.scattering[m] = static_cast<float>(tissue.scattering * passed);
    if (profile.is_polarized()) {
      auto& polarization = profile.polarization;
      const double rate = layer == nerve_fibres  ? fibre_retardance
                          : layer == layer_count ? sclera_retardance
                                                 : 0;
      polarization.retardance[m] = static_cast<float>(rate * cell_mm / retina_index);
      polarization.axis[m] = static_cast<float>(layer == nerve_fibres ? fibre_axis : sclera_axis);
      polarization.depolarization[m] = layer == pigment_epithelium ? pigment_depolarization : 0.0F;
    }
    passed /= 1.0 + tissue.loss * cell_mm / retina_index;
  }
}

}  // namespace oct::simulator
