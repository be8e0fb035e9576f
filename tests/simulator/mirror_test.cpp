// The device measures itself on a mirror: place, sharpness and level of the peak.

#include "measurement.h"

#include "phantoms/mirror.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace oct::simulator::test {
namespace {

constexpr double kSlope = 0.02;

const ScanPattern& mirrorPattern() {
  static const ScanPattern pattern(64, 1, 1.0, 1.0);
  return pattern;
}

RawData mirrorSpectra(double depthMm, float amplitude = 0.1f) {
  Device device(standardSpectrometer(), std::make_shared<Mirror>(depthMm, kSlope, amplitude), 5);
  RawData raw;
  device.start(mirrorPattern(), 0);
  device.acquire(raw, 0);
  return raw;
}

Calibration standardCalibration() {
  return Device(standardSpectrometer(), std::make_shared<UniformPhantom>(0.0f), 5).calibration();
}

/// Width at half power, in samples, of the transform of a Hann window over the source's Gaussian, worked out
/// by a plain sum.
double idealWidth() {
  const int size = 2048;
  const auto power = [&](double place) {
    double sum = 0.0;
    for (int i = 0; i < size; ++i) {
      const double u = (i + 0.5) / size - 0.5;
      const double gauss = std::exp(-4.0 * std::numbers::ln2 * u * u / (0.75 * 0.75));
      const double hann = std::pow(std::cos(std::numbers::pi * u), 2);
      sum += gauss * hann * std::cos(2.0 * std::numbers::pi * u * place);
    }
    return sum * sum;
  };
  double place = 0.0;
  while (power(place) > 0.5 * power(0.0)) place += 0.001;
  return 2.0 * place;
}

float peakLevel(const Volume& volume) {
  return volume.at(static_cast<int>(std::lround(volume.peak(32))), 32);
}

class MirrorDepth : public testing::TestWithParam<double> {};

TEST_P(MirrorDepth, PeakLiesAtTheMirrorAndIsAsSharpAsTheSpectrumAllows) {
  const auto volume = process(standardCalibration(), mirrorSpectra(GetParam()));
  const double expectedWidth = idealWidth();
  for (int aScan = 0; aScan < 64; ++aScan) {
    const double depthMm = GetParam() + kSlope * mirrorPattern().xMm(aScan);
    EXPECT_NEAR(volume.peak(aScan) * volume.cellMm(), depthMm, 0.1 * volume.cellMm()) << "A-scan " << aScan;
    EXPECT_NEAR(volume.peakWidth(aScan), expectedWidth, 0.08 * expectedWidth) << "A-scan " << aScan;
  }
}

INSTANTIATE_TEST_SUITE_P(Depths, MirrorDepth, testing::Values(0.15, 0.6, 1.0, 1.8, 2.3));

TEST(Mirror, IsSharpAndBrightOnlyWithDispersionAndWavenumbersCorrected) {
  const auto raw = mirrorSpectra(1.0);
  const auto calibration = standardCalibration();
  const auto volume = process(calibration, raw);
  const double width = volume.peakWidth(20);
  EXPECT_GT(width * volume.cellMm(), 0.005);  // as of a broadband device
  EXPECT_LT(width * volume.cellMm(), 0.008);
  const double noise = volume.meanPower(600, 1000);
  EXPECT_LT(volume.meanPower(0, 10), 3.0 * noise) << "the background";
  EXPECT_GT(std::pow(10.0, 0.1 * peakLevel(volume)), 1e5 * noise);

  auto dispersed = calibration;
  dispersed.compensationPhase.assign(2048, 0.0);
  EXPECT_GT(process(dispersed, raw).peakWidth(20), 2.0 * width);

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

TEST(Mirror, FewAScansUseTheCalibratedBackground) {
  Device device(standardSpectrometer(), std::make_shared<Mirror>(1.0, kSlope, 0.1f), 5);
  const auto volume = measure(device, ScanPattern(1, 1, 1.0, 1.0));
  EXPECT_NEAR(volume.peak(0) * volume.cellMm(), 1.0, 0.1 * volume.cellMm());
  EXPECT_LT(volume.meanPower(2, 10), 1e-3 * std::pow(10.0, 0.1 * volume.at(284, 0)));
}

TEST(Mirror, TenTimesTheAmplitudeIsTwentyDecibels) {
  const auto calibration = standardCalibration();
  const auto weak = process(calibration, mirrorSpectra(1.0, 0.02f));
  const auto strong = process(calibration, mirrorSpectra(1.0, 0.2f));
  EXPECT_NEAR(strong.at(284, 32) - weak.at(284, 32), 20.0, 0.5);
}

TEST(Mirror, DeeperMirrorsAreWeaker) {
  const auto calibration = standardCalibration();
  const float near = peakLevel(process(calibration, mirrorSpectra(0.3)));
  const float far = peakLevel(process(calibration, mirrorSpectra(2.3)));
  EXPECT_LT(far, near - 0.5);
  EXPECT_GT(far, near - 6.0);
}

}  // namespace
}  // namespace oct::simulator::test
