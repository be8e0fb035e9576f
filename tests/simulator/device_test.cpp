// What the device promises about its spectra.

#include "measurement.h"

#include "optics/camera.h"
#include "phantoms/finger_pad.h"
#include "phantoms/mirror.h"
#include "phantoms/retina.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <stdexcept>

namespace oct::simulator::test {
namespace {

Spectrometer smallSpectrometer() {
  return Spectrometer(512, 1300.0, 3.6);
}

std::unique_ptr<Device> fingerDevice(std::uint64_t seed) {
  return std::make_unique<Device>(smallSpectrometer(), std::make_shared<FingerPad>(seed), seed);
}

RawData firstVolume(Device& device, int workers) {
  RawData raw;
  device.start(ScanPattern(37, 5, 3.0, 3.0), 0);
  device.acquire(raw, 0, workers);
  device.stop();
  return raw;
}

bool sameSpectra(const RawData& a, const RawData& b) {
  if (a.aScans() != b.aScans() || a.bScans() != b.bScans()) return false;
  for (int index = 0; index < a.aScans() * a.bScans(); ++index)
    if (!std::ranges::equal(a.spectrum(index), b.spectrum(index))) return false;
  return true;
}

TEST(Device, SameSeedGivesTheSameVolumeWithAnyNumberOfThreads) {
  const auto one = firstVolume(*fingerDevice(3), 1);
  for (const int workers : {1, 7}) EXPECT_TRUE(sameSpectra(one, firstVolume(*fingerDevice(3), workers)));
}

TEST(Device, ProcessingDoesNotDependOnTheNumberOfThreads) {
  const auto device = fingerDevice(3);
  const auto raw = firstVolume(*device, 0);
  const auto processed = [&](int workers) {
    auto data = std::make_shared<Data>();
    Processing processing(device->calibration());
    processing.setOutput(data);
    processing.execute(raw, workers);
    return data->samples();
  };
  EXPECT_EQ(processed(1), processed(6));
}

TEST(Device, AnotherSeedGivesAnotherPhantom) {
  const FingerPad one(3);
  const FingerPad other(4);
  double largest = 0.0;
  for (int i = 0; i < 100; ++i)
    largest = std::max(largest, std::abs(one.surfaceMm(0.03 * i, 0.0) - other.surfaceMm(0.03 * i, 0.0)));
  EXPECT_GT(largest, 0.01);
}

TEST(Device, SuccessiveVolumesDifferByCameraNoiseOnly) {
  const auto device = fingerDevice(3);
  const auto first = firstVolume(*device, 0);
  const auto second = firstVolume(*device, 0);
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

class CameraRange : public testing::TestWithParam<std::function<std::shared_ptr<Phantom>()>> {};

TEST_P(CameraRange, IsUsedButNotExceeded) {
  Device device(standardSpectrometer(), GetParam()(), 1);
  RawData raw;
  device.start(ScanPattern(200, 2, 4.0, 4.0), 0);
  device.acquire(raw, 0);
  std::uint16_t lowest = 65535;
  std::uint16_t highest = 0;
  for (int index = 0; index < 400; ++index) {
    const auto [least, most] = std::ranges::minmax(raw.spectrum(index));
    lowest = std::min(lowest, least);
    highest = std::max(highest, most);
  }
  EXPECT_GT(lowest, 0);
  EXPECT_GT(highest, Camera::kLargestCount / 2);
  EXPECT_LT(highest, Camera::kLargestCount);
}

INSTANTIATE_TEST_SUITE_P(Phantoms, CameraRange,
                         testing::Values([] { return std::make_shared<FingerPad>(1); },
                                         [] { return std::make_shared<Retina>(1); },
                                         [] { return std::make_shared<Mirror>(1.0, 0.02, 0.1f); }));

TEST(Camera, SaturatesAtTwelveBits) {
  const Camera camera(1);
  const std::vector<float> light(64, 100.0f);
  std::vector<std::uint16_t> counts(64);
  std::vector<std::uint16_t> mean(64);
  Camera::meanReading(light, mean);
  camera.expose(mean, 0, counts);
  EXPECT_EQ(*std::ranges::min_element(counts), 4095);
}

/// Stops the measurement from within, at its tenth A-scan.
class StoppingPhantom : public Phantom {
 public:
  void describe(double, double, double, DepthProfile&) const override {
    if (++seen == 10) device->stop();
  }
  mutable std::atomic<int> seen = 0;
  Device* device = nullptr;
};

TEST(Device, StopEndsAnAcquisitionUnderWay) {
  const auto phantom = std::make_shared<StoppingPhantom>();
  Device device(smallSpectrometer(), phantom, 1);
  phantom->device = &device;
  RawData raw;
  device.start(ScanPattern(100, 100, 1.0, 1.0), 0);
  EXPECT_THROW(device.acquire(raw, 0, 2), std::runtime_error);
  EXPECT_TRUE(raw.empty());
  EXPECT_LT(phantom->seen, 100);
}

TEST(Device, RefusesOddLengthsAndLengthsOutOfRange) {
  for (const int length : {-2, 0, 62, 65, 2047, 4098})
    EXPECT_THROW(Spectrometer(length, 1300.0, 3.6), std::invalid_argument) << length;
  for (const int length : {64, 66, 1022, 4096}) {
    Device device(Spectrometer(length, 1300.0, 3.6), std::make_shared<Mirror>(1.0, 0.02, 0.1f), 1);
    const auto volume = measure(device, ScanPattern(20, 1, 0.2, 1.0));
    EXPECT_NEAR(volume.peak(10) * volume.cellMm(), 1.0, 0.3 * volume.cellMm()) << length;
  }
}

}  // namespace
}  // namespace oct::simulator::test
