#include "phantoms/retina.h"

#include "base/noise.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace oct::simulator {
namespace {

constexpr double kRefractiveIndex = 1.38;

/// How a layer looks: scattering as in DepthProfile, loss in nepers of amplitude per millimetre, there and
/// back.
struct Tissue {
  double scattering;
  double loss;
};

constexpr std::array<Tissue, Retina::kLayerCount> kTissues{{
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

constexpr Tissue kSclera{0.11, 6.0};
constexpr Tissue kVitreous{0.002, 0.0};
constexpr double kChoroidVessel = 0.05;

/// Retardation in radians per geometric millimetre, passing once.
constexpr double kFibreRetardance = 2.2;
constexpr double kScleraRetardance = 9.0;

/// Grains of pigment destroy the polarization of nearly all light they scatter.
constexpr float kPigmentDepolarization = 0.9f;

/// Part of the amplitude that a retinal vessel lets pass.
constexpr double kVesselShadow = 0.3;

/// Rises from 0 in the fovea to 1 outside the pit.
double outsideFovea(double radius, double pitRadius) {
  const double relative = radius / pitRadius;
  return 1.0 - std::exp(-relative * relative);
}

}  // namespace

Retina::Retina(std::uint64_t seed) : seed_(mix(seed, 0xe1)) {
  // The large vessels arch around the fovea; small ones come nearer from both sides.
  for (int i = 0; i < 10; ++i) {
    const auto dice = mix(seed_, 100 + i);
    const auto throwDie = [&](int die) { return signedUnit(mix(dice, die)); };
    const bool small = i >= 4;
    const double side = i % 2 == 0 ? 1.0 : -1.0;
    const double away = small ? 1.1 + 0.45 * (i / 2 - 2) : 1.9 + 0.5 * (i / 2);
    vessels_.push_back({.alongY = small && i % 4 < 2,
                        .offset = side * (away + 0.15 * throwDie(1)),
                        .slope = 0.08 * throwDie(2),
                        .bend = side * (small ? 0.05 : -0.06) * (1.0 + 0.4 * throwDie(3)),
                        .wiggle = small ? 0.06 : 0.1,
                        .wigglePhase = 3.0 * throwDie(4),
                        .depth = 0.03,
                        .radius = small ? 0.025 + 0.008 * throwDie(5) : 0.055 + 0.012 * throwDie(5)});
  }
}

Retina::Borders Retina::borders(double xMm, double yMm) const {
  const double radius = std::hypot(xMm, yMm);
  const double far = std::exp(-radius * radius / 18.0);  // the inner layers thin out towards the periphery
  const double pit = outsideFovea(radius, 0.42);
  const double rim = outsideFovea(radius, 0.55) * far;
  const double clivus = 1.0 - outsideFovea(radius, 0.5);
  const auto uneven = [&](int layer) {
    return 1.0 + 0.06 * smoothNoise(mix(seed_, layer), xMm / 0.8, yMm / 0.8);
  };
  // Fibres run from the optic nerve's side, here the right, and are thickest there.
  const double fibres = 0.004 + 0.040 * outsideFovea(radius, 1.5) * (1.0 + 0.16 * std::clamp(xMm, -4.0, 4.0));
  const std::array<double, kLayerCount> thickness{
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
      0.24 + 0.04 * smoothNoise(mix(seed_, 50), xMm / 1.5, yMm / 1.5),
  };
  Borders borders{};
  // The pigment epithelium carries the shape of the eye; everything above is stacked on it.
  const double eye = (1.30 - (xMm * xMm + yMm * yMm) / 44.0 + 0.018 * xMm) +
                     0.012 * smoothNoise(mix(seed_, 51), xMm / 2.0, yMm / 2.0);
  borders[kPigmentEpithelium] = eye;
  for (int layer = kPigmentEpithelium; layer < kLayerCount; ++layer)
    borders[layer + 1] = borders[layer] + kRefractiveIndex * thickness[layer] * uneven(layer);
  for (int layer = kPigmentEpithelium - 1; layer >= 0; --layer)
    borders[layer] = borders[layer + 1] - kRefractiveIndex * thickness[layer] * uneven(layer);
  return borders;
}

void Retina::describe(double xMm, double yMm, double cellMm, DepthProfile& profile) const {
  const auto border = borders(xMm, yMm);
  const NoiseColumn grain(mix(seed_, 60), xMm, yMm, 0.05);
  const NoiseColumn choroidVessels(mix(seed_, 61), 0.6 * xMm, 0.6 * yMm, 0.11);
  profile.reflectors.push_back({border[kNerveFibres], 0.006f});

  double vesselTop = 0.0;
  double vesselBottom = 0.0;
  for (const auto& vessel : vessels_)
    if (const double half = vessel.halfHeight(xMm, yMm); half > 0.0) {
      const double axis = border[kNerveFibres] + kRefractiveIndex * vessel.depth;
      vesselTop = axis - kRefractiveIndex * half;
      vesselBottom = axis + kRefractiveIndex * half;
    }

  // Fibres run in arches around the fovea, those of the sclera every way.
  const double fibreAxis = std::atan2(yMm, xMm);
  const double scleraAxis = std::numbers::pi * smoothNoise(mix(seed_, 62), xMm / 0.9, yMm / 0.9);

  double passed = 1.0;
  int layer = -1;  // -1: vitreous body
  const int cells = static_cast<int>(profile.scattering.size());
  for (int m = 0; m < cells; ++m) {
    const double depth = m * cellMm;
    while (layer < kLayerCount && depth >= border[layer + 1]) ++layer;
    Tissue tissue = layer < 0 ? kVitreous : layer < kLayerCount ? kTissues[layer] : kSclera;
    tissue.scattering *= 1.0 + 0.25 * grain(depth);
    if (layer == kChoroid) {
      const double blood = std::clamp(4.0 * choroidVessels(depth) - 0.3, 0.0, 1.0);
      tissue.scattering = std::lerp(tissue.scattering, kChoroidVessel, blood);
    }
    if (depth > vesselTop && depth < vesselBottom) {
      // Blood scatters at its surface and swallows light on the way through.
      const double below = (depth - vesselTop) / (vesselBottom - vesselTop);
      tissue.scattering = 0.17 * std::exp(-2.0 * below);
      tissue.loss = -std::log(kVesselShadow) * kRefractiveIndex / (vesselBottom - vesselTop);
    }
    profile.scattering[m] = static_cast<float>(tissue.scattering * passed);
    if (profile.isPolarized()) {
      auto& polarization = profile.polarization;
      const double rate = layer == kNerveFibres  ? kFibreRetardance
                          : layer == kLayerCount ? kScleraRetardance
                                                 : 0;
      polarization.retardance[m] = static_cast<float>(rate * cellMm / kRefractiveIndex);
      polarization.axis[m] = static_cast<float>(layer == kNerveFibres ? fibreAxis : scleraAxis);
      polarization.depolarization[m] = layer == kPigmentEpithelium ? kPigmentDepolarization : 0.0f;
    }
    passed /= 1.0 + tissue.loss * cellMm / kRefractiveIndex;
  }
}

}  // namespace oct::simulator
