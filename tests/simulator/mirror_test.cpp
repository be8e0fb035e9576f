// The device measures itself on a mirror: place, sharpness and level of the peak; four A-scans at a time.

#include "measurement.h"

#include "phantoms/mirror.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace oct::simulator::test {
namespace {

constexpr double kSlope = 0.02;
const ScanPattern kPattern(64, 1, 1.0, 1.0);

RawData mirrorSpectra(double depthMm, float amplitude = 0.1f) {
  Device device(standardSpectrometer(), std::make_shared<Mirror>(depthMm, kSlope, amplitude), 5);
  RawData raw;
  device.start(kPattern, 0);
  device.acquire(raw, 0);
  return raw;
}

Calibration standardCalibration() {
  return Device(standardSpectrometer(), std::make_shared<UniformPhantom>(0.0f), 5).calibration();
}

/// As Volume::peakWidth(), of the transform of a Hann window over the source's Gaussian, worked out by a
/// plain sum.
double idealWidth() {
  const int size = 2048;
  const auto power = [&](int place) {
    double sum = 0.0;
    for (int i = 0; i < size; ++i) {
      const double u = (i + 0.5) / size - 0.5;
      const double gauss = std::exp(-4.0 * std::numbers::ln2 * u * u / (0.75 * 0.75));
      const double hann = std::pow(std::cos(std::numbers::pi * u), 2);
      sum += gauss * hann * std::cos(2.0 * std::numbers::pi * u * place);
    }
    return sum * sum;
  };
  double width = 0.0;
  for (int place = -8; place <= 8; ++place) width += power(place) / power(0);
  return width;
}

TEST(Mirror, PeakLiesAtTheMirrorAndIsAsSharpAsTheSpectrumAllows) {
  const auto calibration = standardCalibration();
  const double expectedWidth = idealWidth();
  std::vector<float> levels;
  for (const double depth : {0.15, 0.6, 1.0, 1.8, 2.3}) {
    const auto volume = process(calibration, mirrorSpectra(depth));
    levels.push_back(volume.at(static_cast<int>(std::lround(volume.peak(32))), 32));
    for (int aScan = 0; aScan < 64; ++aScan) {
      const double depthMm = depth + kSlope * kPattern.xMm(aScan);
      EXPECT_NEAR(volume.peak(aScan) * volume.cellMm(), depthMm, 0.1 * volume.cellMm()) << aScan;
      EXPECT_NEAR(volume.peakWidth(aScan), expectedWidth, 0.08 * expectedWidth) << depth << ", " << aScan;
    }
  }
  EXPECT_LT(levels[4], levels[0] - 0.5) << "deeper mirrors are weaker";
  EXPECT_GT(levels[4], levels[0] - 6.0);
  const auto weak = process(calibration, mirrorSpectra(1.0, 0.02f));
  const auto strong = process(calibration, mirrorSpectra(1.0, 0.2f));
  EXPECT_NEAR(strong.at(284, 32) - weak.at(284, 32), 20.0, 0.5) << "ten times the amplitude";
}

TEST(Mirror, IsSharpAndBrightOnlyWithDispersionAndWavenumbersCorrected) {
  const auto raw = mirrorSpectra(1.0);
  const auto calibration = standardCalibration();
  const auto volume = process(calibration, raw);
  const double noise = volume.meanPower(600, 1000);
  EXPECT_LT(volume.meanPower(0, 10), 3.0 * noise) << "the background";
  EXPECT_GT(std::pow(10.0, 0.1 * volume.at(285, 32)), 1e5 * noise);

  auto dispersed = calibration;
  dispersed.compensationPhase.assign(2048, 0.0);
  EXPECT_GT(process(dispersed, raw).peakWidth(20), 1.5 * volume.peakWidth(20));

  auto unsampled = calibration;
  for (int i = 0; i < 2048; ++i) unsampled.wavenumberPositions[i] = i;
  const auto blurred = process(unsampled, raw);
  float highest = 0.0f;
  for (int depth = 20; depth < 1024; ++depth) highest = std::max(highest, blurred.at(depth, 32));
  EXPECT_LT(highest, volume.at(285, 32) - 6.0);
}

TEST(Mirror, EveryBScanHasItsOwnBackground) {
  RawData raw;
  raw.resize(2048, 20, 2, 1.0, 1.0);
  for (int index = 0; index < 40; ++index)
    for (int pixel = 0; pixel < 2048; ++pixel)
      raw.spectrum(index)[pixel] = static_cast<std::uint16_t>(index < 20 ? 1000 : 500 + pixel);
  const auto volume = process(standardCalibration(), raw);
  EXPECT_LT(volume.meanPower(0, 1023), 1e-5);
}

TEST(Mirror, ASingleAScanUsesTheCalibratedBackground) {
  Device device(standardSpectrometer(), std::make_shared<Mirror>(1.0, kSlope, 0.1f), 5);
  const auto volume = measure(device, ScanPattern(1, 1, 1.0, 1.0));
  EXPECT_NEAR(volume.peak(0) * volume.cellMm(), 1.0, 0.1 * volume.cellMm());
  EXPECT_LT(volume.meanPower(2, 10), 1e-3 * std::pow(10.0, 0.1 * volume.at(284, 0)));
}

TEST(Mirror, IsSeenWithEverySpectrumLength) {
  for (const int length : {-2, 0, 62, 65, 2047, 4098})
    EXPECT_THROW(Spectrometer(length, 1300.0, 3.6), std::invalid_argument) << length;
  for (const int length : {64, 66, 90, 154, 250, 1022, 4096}) {
    Device device(Spectrometer(length, 1300.0, 3.6), std::make_shared<Mirror>(1.0, kSlope, 0.1f), 1);
    const auto volume = measure(device, ScanPattern(20, 1, 0.2, 1.0));
    EXPECT_NEAR(volume.peak(10) * volume.cellMm(), 1.0, 0.3 * volume.cellMm()) << length;
  }
}

/// The last group is not full, and an A-scan may stand in any lane.
TEST(Processing, DoesNotDependOnTheLane) {
  Device device(Spectrometer(256, 1300.0, 3.6), std::make_shared<Mirror>(1.0, 0.3, 0.1f), 5);
  RawData all;
  device.start(ScanPattern(7, 1, 2.0, 1.0), 0);
  device.acquire(all, 0);
  const auto together = process(device.calibration(), all);  // few A-scans take the calibrated background
  for (int first = 0; first < 7; ++first) {
    RawData rest;
    rest.resize(256, 7 - first, 1, 1.0, 1.0);
    for (int index = first; index < 7; ++index)
      std::ranges::copy(all.spectrum(index), rest.spectrum(index - first).begin());
    const auto alone = process(device.calibration(), rest);
    for (int index = first; index < 7; ++index)
      for (int depth = 0; depth < 128; ++depth)
        ASSERT_EQ(alone.at(depth, index - first), together.at(depth, index)) << first << ' ' << index;
  }
}

/// More readings in a B-scan than 32 bits can add up.
TEST(Processing, MeanOfVeryManyBrightAScansIsExact) {
  constexpr int kMany = 70000;
  RawData raw;
  raw.resize(64, kMany, 1, 1.0, 1.0);
  for (int index = 0; index < kMany; ++index) std::ranges::fill(raw.spectrum(index), std::uint16_t{65535});
  Device device(Spectrometer(64, 1300.0, 3.6), std::make_shared<UniformPhantom>(0.0f), 5);
  EXPECT_LT(std::ranges::max(process(device.calibration(), raw).samples()), -59.96f);
}

}  // namespace
}  // namespace oct::simulator::test
