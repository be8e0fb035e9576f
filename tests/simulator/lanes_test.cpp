// Four signals side by side give what each gives alone.

#include "measurement.h"
#include "phantoms/mirror.h"
#include "signals/fourier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace oct::simulator::test {
namespace {

/// Lengths of every factor that the transform treats in its own way: 4, 2, 3, 5 and others.
class LaneTransform : public testing::TestWithParam<int> {};

TEST_P(LaneTransform, IsThePlainSumInEveryLane) {
  const int size = GetParam();
  std::mt19937 random(7);
  std::uniform_real_distribution<float> part(-1.0f, 1.0f);
  std::vector<float> real(4 * size), imaginary(4 * size);
  for (auto& value : real) value = part(random);
  for (auto& value : imaginary) value = part(random);
  std::vector<Lanes> realLanes(size), imaginaryLanes(size);
  joinLanes(real.data(), size, realLanes.data());
  joinLanes(imaginary.data(), size, imaginaryLanes.data());
  std::vector<std::complex<Lanes>> input(size), output(size);
  for (int i = 0; i < size; ++i) input[i] = {realLanes[i], imaginaryLanes[i]};
  LaneFourier fourier(size);
  fourier.forward(input.data(), output.data());

  std::vector<std::complex<float>> found(size);
  for (int lane = 0; lane < Lanes::kCount; ++lane) {
    takeLane(output.data(), lane, size, found.data());
    double largest = 0.0;
    for (int m = 0; m < size; ++m) {
      std::complex<double> sum;
      for (int n = 0; n < size; ++n)
        sum += std::complex<double>(real[lane * size + n], imaginary[lane * size + n]) *
               std::polar(1.0, -2.0 * std::numbers::pi * (static_cast<long>(n) * m % size) / size);
      largest = std::max(largest, std::abs(sum - std::complex<double>(found[m])));
    }
    EXPECT_LT(largest, 3e-7 * size) << "lane " << lane;
  }
  // And back again.
  fourier.backward(output.data(), input.data());
  for (int lane = 0; lane < Lanes::kCount; ++lane) {
    takeLane(input.data(), lane, size, found.data());
    for (int n = 0; n < size; ++n)
      ASSERT_LT(std::abs(found[n] / static_cast<float>(size) -
                         std::complex<float>(real[lane * size + n], imaginary[lane * size + n])),
                1e-5f)
          << "lane " << lane << ", sample " << n;
  }
}

INSTANTIATE_TEST_SUITE_P(Lengths, LaneTransform, testing::Values(64, 66, 90, 154, 250, 512));

/// The last group is not full, and an A-scan may stand in any lane.
TEST(LaneProcessing, DoesNotDependOnTheLane) {
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
TEST(LaneProcessing, MeanOfVeryManyBrightAScansIsExact) {
  constexpr int kMany = 70000;
  RawData raw;
  raw.resize(64, kMany, 1, 1.0, 1.0);
  for (int index = 0; index < kMany; ++index) std::ranges::fill(raw.spectrum(index), std::uint16_t{65535});
  Device device(Spectrometer(64, 1300.0, 3.6), std::make_shared<UniformPhantom>(0.0f), 5);
  EXPECT_LT(std::ranges::max(process(device.calibration(), raw).samples()), -59.96f);
}

}  // namespace
}  // namespace oct::simulator::test
