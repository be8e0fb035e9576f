// What the device promises about its spectra: noise, range, and speckle with the statistics of interference. What the
// pictures show is the anatomy.
#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <tuple>

#include <gtest/gtest.h>

#include "optics/camera.h"
#include "phantoms/finger_pad.h"
#include "phantoms/mirror.h"
#include "phantoms/retina.h"
#include "simulator/measurement.h"

namespace oct::simulator::test {
namespace {

// The readings of all A-scans, one after the other.
std::span<const std::uint16_t> readings(const RawData& raw) {
  return {raw.spectrum(0).data(), raw.spectrum(0).size() * raw.a_scans() * raw.b_scans()};
}

TEST(Device, SuccessiveVolumesDifferByCameraNoiseOnly) {
  Device device(Spectrometer(512, 1300.0, 3.6), std::make_shared<FingerPad>(3), 3);
  RawData first, second;
  device.start(ScanPattern(37, 5, 3.0, 3.0), 0);
  for (RawData* const volume : {&first, &second}) device.acquire(*volume, 0);
  double ratio = 0.0, difference = 0.0;
  const auto count = static_cast<double>(readings(first).size());
  for (std::size_t i = 0; i < readings(first).size(); ++i) {
    const double a = readings(first)[i];
    const double b = readings(second)[i];
    // 60 electrons per count, 80 counts of dark level, 1.6 counts of read noise, rounding to whole counts.
    const double variance = (0.5 * (a + b) - 80.0) / 60.0 + 1.6 * 1.6 + 1.0 / 12.0;
    ratio += (a - b) * (a - b) / (2.0 * variance);
    difference += a - b;
  }
  EXPECT_NEAR(ratio / count, 1.0, 0.03);
  EXPECT_NEAR(difference / count, 0.0, 0.1);
}

TEST(Device, UsesTheRangeOfTheCameraButDoesNotExceedIt) {
  const std::shared_ptr<const Phantom> phantoms[] = {
      std::make_shared<FingerPad>(1), std::make_shared<Retina>(1), std::make_shared<Mirror>(1.0, 0.02, 0.1F)};
  for (const auto& phantom : phantoms) {
    Device device(standard_spectrometer, phantom, 1);
    const RawData raw = acquire(device, ScanPattern(200, 2, 4.0, 4.0));
    const auto [lowest, highest] = std::ranges::minmax(readings(raw));
    EXPECT_GT(lowest, 0);
    EXPECT_GT(highest, Camera::largest_count / 2);
    EXPECT_LT(highest, Camera::largest_count);
  }
  std::vector<std::uint16_t> mean(64), counts(64);
  Camera::mean_reading(std::vector<float>(64, 100.0F), mean);
  Camera(1).expose(mean, 0, counts);
  EXPECT_EQ(counts, std::vector<std::uint16_t>(64, 4095)) << "far too much light";
}

// Correlation of power between samples a number of A-scans, B-scans and depths apart.
double correlation(const Volume& volume, int a_scans, int b_scans, int depths) {
  std::vector<double> here, there;
  for (int b_scan = 0; b_scan + b_scans < volume.b_scans(); ++b_scan)
    for (int a_scan = 0; a_scan + a_scans < volume.a_scans(); ++a_scan)
      for (int depth = 100; depth < 500; ++depth) {
        here.push_back(volume.power(depth, a_scan, b_scan));
        there.push_back(volume.power(depth + depths, a_scan + a_scans, b_scan + b_scans));
      }
  return correlation_of(here, there);
}

TEST(Speckle, IsFullyDevelopedAndAsLargeAsTheBeam) {
  constexpr double step_mm = 0.003;
  Device device(standard_spectrometer, std::make_shared<UniformPhantom>(0.1F), 11);
  const auto volume = measure(device, ScanPattern(600, 1, 600 * step_mm, step_mm));
  double squares = 0.0;
  int count = 0, dark = 0;
  const double mean = volume.mean_power(100, 500);
  for (int a_scan = 0; a_scan < volume.a_scans(); ++a_scan)
    for (int depth = 100; depth <= 500; ++depth, ++count) {
      const double power = volume.power(depth, a_scan) / mean;
      squares += power * power;
      dark += power < 0.1;
    }
  // Power of fully developed speckle is exponentially distributed: contrast 1, and 1 - exp(-0.1) of it dark.
  EXPECT_NEAR(std::sqrt(squares / count - 1.0), 1.0, 0.05);
  EXPECT_NEAR(static_cast<double>(dark) / count, 1.0 - std::exp(-0.1), 0.01);
  // 3 micrometres: the same speckle. 30 micrometres: another. In depth the axial resolution counts.
  EXPECT_GT(correlation(volume, 1, 0, 0), 0.8);
  EXPECT_LT(correlation(volume, 10, 0, 0), 0.1);
  EXPECT_GT(correlation(volume, 0, 0, 1), 0.3);
  EXPECT_LT(correlation(volume, 0, 0, 6), 0.1);
  const auto row = measure(device, ScanPattern(1, 600, step_mm, 600 * step_mm));
  EXPECT_GT(correlation(row, 0, 1, 0), 0.8);
  EXPECT_LT(correlation(row, 0, 10, 0), 0.1);

  Device empty(standard_spectrometer, std::make_shared<UniformPhantom>(0.0F), 11);
  EXPECT_GT(mean, 30.0 * measure(empty, ScanPattern(64, 1, 1.0, 1.0)).mean_power(100, 500)) << "noise";
}

TEST(Recording, NoiseHasTheGivenStrengthAndDiffersFromPlaceToPlaceAndFromVolumeToVolume) {
  constexpr std::size_t count = 256 * 50 * 40;
  const Recording recording(std::vector<float>(count, 30.0F).data(), {256, 50, 40}, 1, 2.0, 7);
  std::vector<float> first(count), second(count);
  recording.play(0, first, 0);
  recording.play(1, second, 0);
  // Half a million deviates out of a table of 16384, whose own mean is off by 2 / 128 at one sigma.
  const auto mean = [](auto value) {
    double sum = 0.0;
    for (std::size_t n = 0; n < count; ++n) sum += value(n);
    return sum / count;
  };
  EXPECT_NEAR(mean([&](auto n) { return first[n] - 30.0; }), 0.0, 0.06);
  EXPECT_NEAR(mean([&](auto n) { return std::pow(first[n] - 30.0, 2); }), 4.0, 0.2);
  EXPECT_NEAR(mean([&](auto n) { return (first[n] - 30.0) * (second[n] - 30.0); }), 0.0, 0.2);
  // Neighbours must not repeat each other's noise, which an average would not remove.
  for (const std::size_t distance : {1, 256, 256 * 50})
    EXPECT_NEAR(mean([&](auto n) { return (first[n] - 30.0) * (first[(n + distance) % count] - 30.0); }), 0.0,
                0.08)
        << distance;
}

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
