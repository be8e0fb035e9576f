#include "phantoms/finger_pad.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/noise.h"

namespace oct::simulator {
namespace {

constexpr double skin_index = 1.4;

// How a kind of tissue looks: scattering as in DepthProfile, loss in nepers of amplitude per millimetre,
// there and back.
struct SkinTissue {
  double scattering;
  double loss;
};

constexpr SkinTissue horny_layer{0.05, 0.7};
constexpr SkinTissue epidermis_tissue{0.038, 1.1};
constexpr SkinTissue junction_tissue{0.17, 1.8};
constexpr SkinTissue dermis{0.11, 3.0};
constexpr SkinTissue blood_tissue{0.035, 4.0};

// Collagen of the dermis: retardation in radians per geometric millimetre, passing once, and the part of
// scattered light that loses its polarization.
constexpr double collagen_retardance = 5.0;
constexpr float collagen_depolarization = 0.1F;

// Thickness of a vessel's wall, in millimetres.
constexpr double wall = 0.015;

// Scattering of a duct's lining.
constexpr double scattering_in_ducts = 0.45;

// Radius and height per turn of a duct's spiral, and the thickness of the tube itself, in millimetres.
constexpr double duct_radius = 0.036;
constexpr double duct_pitch = 0.12;
constexpr double duct_tube = 0.017;

// Smooth step from 0 to 1 around an edge.
double smooth_step(double value, double edge, double width) {
  const double t = std::clamp((value - edge) / width + 0.5, 0.0, 1.0);
  return t * t * (3.0 - 2.0 * t);
}

double duct_scattering(const Duct& duct, double x_mm, double y_mm, double depth, double horny_layer_end) {
  const double angle = duct.turn_phase + 2.0 * std::numbers::pi * depth / duct_pitch;
  // Below the horny layer the duct straightens and fades.
  const double below = std::max(0.0, depth - horny_layer_end);
  const double radius = duct_radius * std::exp(-below / 0.03);
  const double dx = x_mm - duct.axis.x - radius * std::cos(angle);
  const double dy = y_mm - duct.axis.y - radius * std::sin(angle);
  return scattering_in_ducts * std::exp(-0.5 * (dx * dx + dy * dy) / (duct_tube * duct_tube) - below / 0.05);
}

}  // namespace

// Where the layers end at one lateral position: the first from the device, the others from the surface, all
// geometric, in millimetres.
struct FingerPad::Borders {
  double surface;
  double horny_layer_end;
  double epidermis_end;
};

FingerPad::FingerPad(std::uint64_t seed)
    : seed_(mix(seed, 0xF1)), ridges_(mix(seed, 0xF2)), ducts_(mix(seed, 0xF3), ridges_) {
  for (int i = 0; i < 12; ++i) {
    const auto dice = mix(seed_, 100 + i);
    const auto throw_die = [&](int die) { return signed_unit(mix(dice, die)); };
    vessels_.push_back({.along_y = i % 2 == 0,
                        .offset = (i / 2 - 2.5) * 0.9 + 0.35 * throw_die(1),
                        .slope = 0.3 * throw_die(2),
                        .bend = 0.04 * throw_die(3),
                        .wiggle = 0.08,
                        .wiggle_phase = 3.0 * throw_die(4),
                        .depth = 0.24 + 0.13 * throw_die(5),
                        .radius = 0.042 + 0.018 * throw_die(6)});
  }
}

FingerPad::Borders FingerPad::borders(double x_mm, double y_mm) const {
  const double phase = ridges_.phase(x_mm, y_mm);
  const double ridge = 0.5 + 0.5 * std::cos(phase);
  // Crests are broad and furrows narrow.
  const double height = 1.0 - (1.0 - ridge) * (1.0 - ridge);
  const double bow = x_mm * x_mm / 15.0 + y_mm * y_mm / 24.0;
  const double unevenness = 0.02 * smooth_noise(mix(seed_, 1), x_mm / 0.7, y_mm / 0.7);
  const double surface = 0.42 + bow + unevenness + 0.055 * (1.0 - height);
  // The inner borders repeat the ridges in a flattened form, and the border to the dermis has twice as many.
  const double bumps = smooth_noise(mix(seed_, 2), x_mm / 0.2, y_mm / 0.2);
  const double horny_layer_end = 0.27 + 0.035 * ridge + 0.015 * bumps;
  const double papilla = smooth_noise(mix(seed_, 3), x_mm / 0.09, y_mm / 0.09);
  const double epidermis = 0.12 + 0.035 * std::cos(2.0 * phase) + 0.035 * papilla;
  return {surface, horny_layer_end, horny_layer_end + std::max(epidermis, 0.03)};
}

double FingerPad::surface_mm(double x_mm, double y_mm) const {
  return borders(x_mm, y_mm).surface;
}

void FingerPad::describe(double x_mm, double y_mm, double cell_mm, DepthProfile& profile) const {
  const auto border = borders(x_mm, y_mm);
  const Duct* duct = ducts_.near(x_mm, y_mm);
  const NoiseColumn grain(mix(seed_, 4), x_mm, y_mm, 0.09);

  constexpr double slope_step = 0.01;
  const double rise_x = surface_mm(x_mm + slope_step, y_mm) - border.surface;
  const double rise_y = surface_mm(x_mm, y_mm + slope_step) - border.surface;
  const double slope = std::hypot(rise_x, rise_y) / slope_step;
  // A surface that leans away mirrors the light past the device.
  const double facing = std::exp(-0.5 * slope * slope / (0.1 * 0.1));
  profile.reflectors.push_back({border.surface, static_cast<float>(0.004 + 0.05 * facing)});

  struct Lumen {
    double top;
    double bottom;
  };
  std::vector<Lumen> lumens;
  for (const auto& vessel : vessels_)
    if (const double half = vessel.half_height(x_mm, y_mm); half > 0.0) {
      const double axis = border.epidermis_end + vessel.depth;
      lumens.push_back({axis - half, axis + half});
    }

  // Bundles of collagen run their own way every millimetre or so.
  const double collagen_axis = std::numbers::pi * smooth_noise(mix(seed_, 5), x_mm / 1.1, y_mm / 1.1);

  double passed = 1.0;
  const int cells = static_cast<int>(profile.scattering.size());
  for (int m = std::max(0, static_cast<int>(std::ceil(border.surface / cell_mm))); m < cells; ++m) {
    const double depth = (m * cell_mm - border.surface) / skin_index;
    const double texture = grain(depth);
    double scattering = 0.0;
    double loss = 0.0;
    if (depth < border.horny_layer_end) {
      // Dry flakes at the surface and the granular cells at the lower end are brighter than what is between.
      const double flakes = 2.2 * std::exp(-depth / 0.018);
      const double granular = 0.9 * smooth_step(depth, border.horny_layer_end - 0.02, 0.05);
      scattering = horny_layer.scattering * (1.0 + flakes + granular + 0.35 * texture);
      loss = horny_layer.loss;
    } else if (depth < border.epidermis_end) {
      scattering = epidermis_tissue.scattering * (1.0 + 0.3 * texture);
      loss = epidermis_tissue.loss;
    } else {
      const double below = depth - border.epidermis_end;
      const double junction = std::exp(-below / 0.06) * smooth_step(below, 0.015, 0.03);
      scattering =
          std::lerp(dermis.scattering, junction_tissue.scattering, junction) * (1.0 + 0.45 * texture);
      loss = std::lerp(dermis.loss, junction_tissue.loss, junction);
      for (const auto& lumen : lumens) {
        const double blood = smooth_step(depth, lumen.top, wall) * smooth_step(-depth, -lumen.bottom, wall);
        scattering = std::lerp(scattering, blood_tissue.scattering, blood);
        loss = std::lerp(loss, blood_tissue.loss, blood);
      }
    }
    if (duct && depth < border.epidermis_end)
      scattering += duct_scattering(*duct, x_mm, y_mm, depth, border.horny_layer_end);
    profile.scattering[m] = static_cast<float>(scattering * passed);
    if (profile.is_polarized() && depth >= border.epidermis_end) {
      auto& polarization = profile.polarization;
      polarization.retardance[m] = static_cast<float>(collagen_retardance * cell_mm / skin_index);
      polarization.axis[m] = static_cast<float>(collagen_axis);
      polarization.depolarization[m] = collagen_depolarization;
    }
    passed /= 1.0 + loss * cell_mm / skin_index;
  }
}

}  // namespace oct::simulator
