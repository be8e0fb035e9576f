// The pictures must show the anatomy.

#include <array>
#include <cmath>
#include <tuple>

#include <gtest/gtest.h>

#include "phantoms/finger_pad.h"
#include "phantoms/retina.h"
#include "simulator/measurement.h"

namespace oct::simulator::test {
namespace {

TEST(Retina, LayersHaveTheirOrderOfBrightness) {
  const auto retina = std::make_shared<Retina>(2);
  Device device(Spectrometer(2048, 850.0, 2.4), retina, 2);
  const ScanPattern pattern(400, 1, 8.0, 1.0);
  const auto volume = measure(device, pattern);
  constexpr int vitreous = Retina::layer_count;
  std::array<double, vitreous + 1> level{};  // power first, then decibels
  for (int a_scan = 0; a_scan < 400; ++a_scan) {
    const double x = pattern.x_mm(a_scan);
    if (std::abs(x) < 1.0 || std::abs(x) > 3.0) continue;
    const auto border = retina->borders(x, 0.0);
    const auto power_at = [&](double depth_mm) {
      return volume.power(static_cast<int>(std::lround(depth_mm / volume.cell_mm())), a_scan);
    };
    for (int layer = 0; layer < vitreous; ++layer)
      level[layer] += power_at(0.5 * (border[layer] + border[layer + 1]));
    level[vitreous] += power_at(border[0] - 0.15);
  }
  for (double& value : level) value = 10.0 * std::log10(value);
  for (const auto& [bright, dark, decibels] : {std::tuple{Retina::nerve_fibres, Retina::ganglion_cells, 3.0},
                                               {Retina::inner_plexiform, Retina::inner_nuclear, 3.0},
                                               {Retina::outer_plexiform, Retina::inner_nuclear, 2.0},
                                               {Retina::outer_plexiform, Retina::outer_nuclear, 5.0},
                                               {Retina::outer_limiting_membrane, Retina::inner_segments, 2.0},
                                               {Retina::segment_junction, Retina::outer_segments, 5.0},
                                               {Retina::pigment_epithelium, Retina::outer_nuclear, 15.0},
                                               {Retina::pigment_epithelium, Retina::choroid, 3.0}})
    EXPECT_GT(level[bright], level[dark] + decibels) << bright;
  EXPECT_GT(level[Retina::outer_nuclear], level[vitreous] + 6.0);
}

TEST(Retina, LayersLieBelowEachOtherEverywhere) {
  const Retina retina(2);
  for (double y = -4.0; y <= 4.0; y += 0.5)
    for (double x = -4.0; x <= 4.0; x += 0.25) {
      const auto border = retina.borders(x, y);
      for (int layer = 0; layer < Retina::layer_count; ++layer)
        EXPECT_LT(border[layer], border[layer + 1]) << "layer " << layer << " at " << x << ", " << y;
      EXPECT_NEAR(border[Retina::layer_count] - border[0], 0.75, 0.25) << x << ", " << y;
    }
  for (const double beside : {-1.0, 1.0})
    EXPECT_GT(retina.borders(0.0, 0.0)[0], retina.borders(beside, 0.0)[0] + 0.1) << "the fovea is a pit";
}

TEST(FingerPad, HasRidgesOfAFingerprintInBothDirections) {
  const FingerPad pad(2);
  const auto crests = [&](auto surface_at) {
    int count = 0;
    for (double s = -2.5; s < 2.5; s += 0.01)
      count += surface_at(s) < surface_at(s - 0.01) && surface_at(s) <= surface_at(s + 0.01);
    return count;
  };
  const int across = crests([&](double x) { return pad.surface_mm(x, -1.0); });
  EXPECT_GE(across, 7);
  EXPECT_LE(across, 20);
  EXPECT_GE(crests([&](double y) { return pad.surface_mm(-1.0, y); }), 2);
}

TEST(FingerPad, DuctsWindThroughTheHornyLayer) {
  const std::uint64_t seed = 2;
  const FingerPad pad(seed);
  DepthProfile profile;
  const double cell = 0.004;
  // Look straight down on a fine grid, at half the horny layer's depth: ducts are small, bright and apart.
  int bright = 0, all = 0;
  double wandering = 0.0;
  for (double y = -1.0; y < 1.0; y += 0.02) {
    for (double x = -1.0; x < 1.0; x += 0.02, ++all) {
      profile.scattering.assign(900, 0.0F);
      pad.describe(x, y, cell, profile);
      const int top = static_cast<int>(pad.surface_mm(x, y) / cell);
      const bool upper = profile.scattering[top + 40] > 0.15F;
      const bool lower = profile.scattering[top + 61] > 0.15F;  // half a turn further down
      bright += upper;
      wandering += upper != lower;
    }
  }
  EXPECT_GT(bright, all / 500);
  EXPECT_LT(bright, all / 25);
  EXPECT_GT(wandering, 1.0 * bright);
}

}  // namespace
}  // namespace oct::simulator::test
