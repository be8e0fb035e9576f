// Speckle must have the statistics of interference, and the size of the beam.

#include "measurement.h"

#include <gtest/gtest.h>

#include <cmath>

namespace oct::simulator::test {
namespace {

constexpr double kStepMm = 0.003;

/// Steps from A-scan to A-scan, or from B-scan to B-scan.
Volume uniform(int aScans, int bScans) {
  Device device(standardSpectrometer(), std::make_shared<UniformPhantom>(0.1f), 11);
  return measure(device, ScanPattern(aScans, bScans, aScans * kStepMm, bScans * kStepMm));
}

/// Correlation of power between samples a number of A-scans, B-scans and depths apart.
double correlation(const Volume& volume, int aScans, int bScans, int depths) {
  double a = 0.0, b = 0.0, aa = 0.0, bb = 0.0, ab = 0.0;
  int count = 0;
  for (int bScan = 0; bScan + bScans < volume.bScans(); ++bScan)
    for (int aScan = 0; aScan + aScans < volume.aScans(); ++aScan)
      for (int depth = 100; depth < 500; ++depth, ++count) {
        const double first = std::pow(10.0, 0.1 * volume.at(depth, aScan, bScan));
        const double second = std::pow(10.0, 0.1 * volume.at(depth + depths, aScan + aScans, bScan + bScans));
        a += first;
        b += second;
        aa += first * first;
        bb += second * second;
        ab += first * second;
      }
  const double covariance = ab / count - a / count * b / count;
  const double varianceA = aa / count - std::pow(a / count, 2);
  const double varianceB = bb / count - std::pow(b / count, 2);
  return covariance / std::sqrt(varianceA * varianceB);
}

/// One test, for the measurement takes most of the time.
TEST(Speckle, IsFullyDevelopedAndAsLargeAsTheBeam) {
  const auto volume = uniform(600, 1);
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

  Device empty(standardSpectrometer(), std::make_shared<UniformPhantom>(0.0f), 11);
  const double noise = measure(empty, ScanPattern(64, 1, 1.0, 1.0)).meanPower(100, 500);
  EXPECT_GT(mean, 30.0 * noise);
}

TEST(Speckle, IsAsWideAsTheBeamFromBScanToBScan) {
  const auto row = uniform(1, 600);
  EXPECT_GT(correlation(row, 0, 1, 0), 0.8);
  EXPECT_LT(correlation(row, 0, 10, 0), 0.1);
}

}  // namespace
}  // namespace oct::simulator::test
