// What the device promises about its spectra: noise, range, and speckle with the statistics of interference.

#include "measurement.h"

#include "optics/camera.h"
#include "phantoms/finger_pad.h"
#include "phantoms/mirror.h"
#include "phantoms/retina.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace oct::simulator::test {
namespace {

TEST(Device, SuccessiveVolumesDifferByCameraNoiseOnly) {
  Device device(Spectrometer(512, 1300.0, 3.6), std::make_shared<FingerPad>(3), 3);
  RawData first, second;
  device.start(ScanPattern(37, 5, 3.0, 3.0), 0);
  device.acquire(first, 0);
  device.acquire(second, 0);
  double ratio = 0.0, difference = 0.0;
  int count = 0;
  for (int index = 0; index < 37 * 5; ++index)
    for (int pixel = 0; pixel < 512; ++pixel, ++count) {
      const double a = first.spectrum(index)[pixel];
      const double b = second.spectrum(index)[pixel];
      // 60 electrons per count, 80 counts of dark level, 1.6 counts of read noise, rounding to whole counts.
      const double variance = (0.5 * (a + b) - 80.0) / 60.0 + 1.6 * 1.6 + 1.0 / 12.0;
      ratio += (a - b) * (a - b) / (2.0 * variance);
      difference += a - b;
    }
  EXPECT_NEAR(ratio / count, 1.0, 0.03);
  EXPECT_NEAR(difference / count, 0.0, 0.1);
}

TEST(Device, UsesTheRangeOfTheCameraButDoesNotExceedIt) {
  for (const std::shared_ptr<Phantom>& phantom :
       {std::shared_ptr<Phantom>(std::make_shared<FingerPad>(1)),
        std::shared_ptr<Phantom>(std::make_shared<Retina>(1)),
        std::shared_ptr<Phantom>(std::make_shared<Mirror>(1.0, 0.02, 0.1f))}) {
    Device device(standardSpectrometer(), phantom, 1);
    RawData raw;
    device.start(ScanPattern(200, 2, 4.0, 4.0), 0);
    device.acquire(raw, 0);
    std::uint16_t lowest = 65535, highest = 0;
    for (int index = 0; index < 400; ++index) {
      const auto [least, most] = std::ranges::minmax(raw.spectrum(index));
      lowest = std::min(lowest, least);
      highest = std::max(highest, most);
    }
    EXPECT_GT(lowest, 0);
    EXPECT_GT(highest, Camera::kLargestCount / 2);
    EXPECT_LT(highest, Camera::kLargestCount);
  }
  std::vector<std::uint16_t> mean(64), counts(64);
  Camera::meanReading(std::vector<float>(64, 100.0f), mean);
  Camera(1).expose(mean, 0, counts);
  EXPECT_EQ(counts, std::vector<std::uint16_t>(64, 4095)) << "far too much light";
}

/// Correlation of power between samples a number of A-scans, B-scans and depths apart.
double correlation(const Volume& volume, int aScans, int bScans, int depths) {
  Correlation correlation;
  for (int bScan = 0; bScan + bScans < volume.bScans(); ++bScan)
    for (int aScan = 0; aScan + aScans < volume.aScans(); ++aScan)
      for (int depth = 100; depth < 500; ++depth)
        correlation.add(std::pow(10.0, 0.1 * volume.at(depth, aScan, bScan)),
                        std::pow(10.0, 0.1 * volume.at(depth + depths, aScan + aScans, bScan + bScans)));
  return correlation.value();
}

TEST(Speckle, IsFullyDevelopedAndAsLargeAsTheBeam) {
  constexpr double kStepMm = 0.003;
  Device device(standardSpectrometer(), std::make_shared<UniformPhantom>(0.1f), 11);
  const auto volume = measure(device, ScanPattern(600, 1, 600 * kStepMm, kStepMm));
  double sum = 0.0, squares = 0.0;
  int count = 0, dark = 0;
  const double mean = volume.meanPower(100, 500);
  for (int aScan = 0; aScan < volume.aScans(); ++aScan)
    for (int depth = 100; depth <= 500; ++depth, ++count) {
      const double power = std::pow(10.0, 0.1 * volume.at(depth, aScan)) / mean;
      sum += power;
      squares += power * power;
      dark += power < 0.1;
    }
  // Power of fully developed speckle is exponentially distributed: contrast 1, and 1 - exp(-0.1) of it dark.
  const double contrast = std::sqrt(squares / count - std::pow(sum / count, 2)) / (sum / count);
  EXPECT_NEAR(contrast, 1.0, 0.05);
  EXPECT_NEAR(static_cast<double>(dark) / count, 1.0 - std::exp(-0.1), 0.01);
  // 3 micrometres: the same speckle. 30 micrometres: another. In depth the axial resolution counts.
  EXPECT_GT(correlation(volume, 1, 0, 0), 0.8);
  EXPECT_LT(correlation(volume, 10, 0, 0), 0.1);
  EXPECT_GT(correlation(volume, 0, 0, 1), 0.3);
  EXPECT_LT(correlation(volume, 0, 0, 6), 0.1);
  const auto row = measure(device, ScanPattern(1, 600, kStepMm, 600 * kStepMm));
  EXPECT_GT(correlation(row, 0, 1, 0), 0.8);
  EXPECT_LT(correlation(row, 0, 10, 0), 0.1);

  Device empty(standardSpectrometer(), std::make_shared<UniformPhantom>(0.0f), 11);
  EXPECT_GT(mean, 30.0 * measure(empty, ScanPattern(64, 1, 1.0, 1.0)).meanPower(100, 500)) << "noise";
}

}  // namespace
}  // namespace oct::simulator::test
