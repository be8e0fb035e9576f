#include "phantoms/finger_pad.h"

#include "base/noise.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace oct::simulator {
namespace {

constexpr double kRefractiveIndex = 1.4;

/// How a kind of tissue looks: scattering as in DepthProfile, loss in nepers of amplitude per millimetre,
/// there and back.
struct Tissue {
  double scattering;
  double loss;
};

constexpr Tissue kHornyLayer{0.05, 0.7};
constexpr Tissue kEpidermis{0.038, 1.1};
constexpr Tissue kJunction{0.17, 1.8};
constexpr Tissue kDermis{0.11, 3.0};
constexpr Tissue kBlood{0.035, 4.0};

/// Collagen of the dermis: retardation in radians per geometric millimetre, passing once, and the part of
/// scattered light that loses its polarization.
constexpr double kCollagenRetardance = 5.0;
constexpr float kCollagenDepolarization = 0.1f;

/// Thickness of a vessel's wall, in millimetres.
constexpr double kWall = 0.015;

/// Scattering of a duct's lining.
constexpr double kDuctScattering = 0.45;

/// Radius and height per turn of a duct's spiral, and the thickness of the tube itself, in millimetres.
constexpr double kDuctRadius = 0.036;
constexpr double kDuctPitch = 0.12;
constexpr double kDuctTube = 0.017;

/// Smooth step from 0 to 1 around an edge.
double smoothStep(double value, double edge, double width) {
  const double t = std::clamp((value - edge) / width + 0.5, 0.0, 1.0);
  return t * t * (3.0 - 2.0 * t);
}

double ductScattering(const Duct& duct, double xMm, double yMm, double depth, double hornyLayerEnd) {
  const double angle = duct.turnPhase + 2.0 * std::numbers::pi * depth / kDuctPitch;
  // Below the horny layer the duct straightens and fades.
  const double below = std::max(0.0, depth - hornyLayerEnd);
  const double radius = kDuctRadius * std::exp(-below / 0.03);
  const double dx = xMm - duct.axis.x - radius * std::cos(angle);
  const double dy = yMm - duct.axis.y - radius * std::sin(angle);
  return kDuctScattering * std::exp(-0.5 * (dx * dx + dy * dy) / (kDuctTube * kDuctTube) - below / 0.05);
}

}  // namespace

/// Where the layers end at one lateral position: the first from the device, the others from the surface, all
/// geometric, in millimetres.
struct FingerPad::Borders {
  double surface;
  double hornyLayerEnd;
  double epidermisEnd;
};

FingerPad::FingerPad(std::uint64_t seed)
    : seed_(mix(seed, 0xf1)), ridges_(mix(seed, 0xf2)), ducts_(mix(seed, 0xf3), ridges_) {
  for (int i = 0; i < 12; ++i) {
    const auto dice = mix(seed_, 100 + i);
    const auto throwDie = [&](int die) { return signedUnit(mix(dice, die)); };
    vessels_.push_back({.alongY = i % 2 == 0,
                        .offset = (i / 2 - 2.5) * 0.9 + 0.35 * throwDie(1),
                        .slope = 0.3 * throwDie(2),
                        .bend = 0.04 * throwDie(3),
                        .wiggle = 0.08,
                        .wigglePhase = 3.0 * throwDie(4),
                        .depth = 0.24 + 0.13 * throwDie(5),
                        .radius = 0.042 + 0.018 * throwDie(6)});
  }
}

FingerPad::Borders FingerPad::borders(double xMm, double yMm) const {
  const double phase = ridges_.phase(xMm, yMm);
  const double ridge = 0.5 + 0.5 * std::cos(phase);
  // Crests are broad and furrows narrow.
  const double height = 1.0 - (1.0 - ridge) * (1.0 - ridge);
  const double bow = xMm * xMm / 15.0 + yMm * yMm / 24.0;
  const double unevenness = 0.02 * smoothNoise(mix(seed_, 1), xMm / 0.7, yMm / 0.7);
  const double surface = 0.42 + bow + unevenness + 0.055 * (1.0 - height);
  // The inner borders repeat the ridges in a flattened form, and the border to the dermis has twice as many.
  const double bumps = smoothNoise(mix(seed_, 2), xMm / 0.2, yMm / 0.2);
  const double hornyLayerEnd = 0.27 + 0.035 * ridge + 0.015 * bumps;
  const double papilla = smoothNoise(mix(seed_, 3), xMm / 0.09, yMm / 0.09);
  const double epidermis = 0.12 + 0.035 * std::cos(2.0 * phase) + 0.035 * papilla;
  return {surface, hornyLayerEnd, hornyLayerEnd + std::max(epidermis, 0.03)};
}

double FingerPad::surfaceMm(double xMm, double yMm) const {
  return borders(xMm, yMm).surface;
}

void FingerPad::describe(double xMm, double yMm, double cellMm, DepthProfile& profile) const {
  const auto border = borders(xMm, yMm);
  const Duct* duct = ducts_.near(xMm, yMm);
  const NoiseColumn grain(mix(seed_, 4), xMm, yMm, 0.09);

  constexpr double kSlopeStep = 0.01;
  const double riseX = surfaceMm(xMm + kSlopeStep, yMm) - border.surface;
  const double riseY = surfaceMm(xMm, yMm + kSlopeStep) - border.surface;
  const double slope = std::hypot(riseX, riseY) / kSlopeStep;
  // A surface that leans away mirrors the light past the device.
  const double facing = std::exp(-0.5 * slope * slope / (0.1 * 0.1));
  profile.reflectors.push_back({border.surface, static_cast<float>(0.004 + 0.05 * facing)});

  struct Lumen {
    double top;
    double bottom;
  };
  std::vector<Lumen> lumens;
  for (const auto& vessel : vessels_)
    if (const double half = vessel.halfHeight(xMm, yMm); half > 0.0) {
      const double axis = border.epidermisEnd + vessel.depth;
      lumens.push_back({axis - half, axis + half});
    }

  // Bundles of collagen run their own way every millimetre or so.
  const double collagenAxis = std::numbers::pi * smoothNoise(mix(seed_, 5), xMm / 1.1, yMm / 1.1);

  double passed = 1.0;
  const int cells = static_cast<int>(profile.scattering.size());
  for (int m = std::max(0, static_cast<int>(std::ceil(border.surface / cellMm))); m < cells; ++m) {
    const double depth = (m * cellMm - border.surface) / kRefractiveIndex;
    const double texture = grain(depth);
    double scattering = 0.0;
    double loss = 0.0;
    if (depth < border.hornyLayerEnd) {
      // Dry flakes at the surface and the granular cells at the lower end are brighter than what is between.
      const double flakes = 2.2 * std::exp(-depth / 0.018);
      const double granular = 0.9 * smoothStep(depth, border.hornyLayerEnd - 0.02, 0.05);
      scattering = kHornyLayer.scattering * (1.0 + flakes + granular + 0.35 * texture);
      loss = kHornyLayer.loss;
    } else if (depth < border.epidermisEnd) {
      scattering = kEpidermis.scattering * (1.0 + 0.3 * texture);
      loss = kEpidermis.loss;
    } else {
      const double below = depth - border.epidermisEnd;
      const double junction = std::exp(-below / 0.06) * smoothStep(below, 0.015, 0.03);
      scattering = std::lerp(kDermis.scattering, kJunction.scattering, junction) * (1.0 + 0.45 * texture);
      loss = std::lerp(kDermis.loss, kJunction.loss, junction);
      for (const auto& lumen : lumens) {
        const double blood = smoothStep(depth, lumen.top, kWall) * smoothStep(-depth, -lumen.bottom, kWall);
        scattering = std::lerp(scattering, kBlood.scattering, blood);
        loss = std::lerp(loss, kBlood.loss, blood);
      }
    }
    if (duct && depth < border.epidermisEnd)
      scattering += ductScattering(*duct, xMm, yMm, depth, border.hornyLayerEnd);
    profile.scattering[m] = static_cast<float>(scattering * passed);
    if (profile.isPolarized() && depth >= border.epidermisEnd) {
      auto& polarization = profile.polarization;
      polarization.retardance[m] = static_cast<float>(kCollagenRetardance * cellMm / kRefractiveIndex);
      polarization.axis[m] = static_cast<float>(collagenAxis);
      polarization.depolarization[m] = kCollagenDepolarization;
    }
    passed /= 1.0 + loss * cellMm / kRefractiveIndex;
  }
}

}  // namespace oct::simulator
