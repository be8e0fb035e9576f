#include "signals/resampler.h"

#include <cmath>
#include <complex>
#include <stdexcept>

#include <gtest/gtest.h>

namespace oct::simulator {
namespace {

TEST(Resampler, ReadsAWaveBetweenItsSamples) {
  const double rate = 2.0 * 3.14159265358979 * 0.3;  // six tenths of the highest frequency
  std::vector<float> wave(100);
  for (int i = 0; i < 100; ++i) wave[i] = static_cast<float>(std::cos(rate * i));
  std::vector<double> positions;
  for (double position = 10.0; position < 90.0; position += 0.37) positions.push_back(position);
  std::vector<float> read(positions.size());
  Resampler(100, positions).apply(wave.data(), read.data());
  for (std::size_t i = 0; i < positions.size(); ++i)
    EXPECT_NEAR(read[i], std::cos(rate * positions[i]), 0.02) << positions[i];
}

TEST(Resampler, KeepsLevels) {
  const std::vector<std::complex<float>> level(20, {2.0F, -1.0F});
  std::vector<std::complex<float>> read(3);
  Resampler(20, {5.0, 8.3, 9.9}).apply(level.data(), read.data());
  for (const auto& value : read) EXPECT_LT(std::abs(value - level[0]), 1e-5F);
}

TEST(Resampler, RefusesPositionsOutsideTheSignal) {
  for (const double position : {-0.1, 19.1, std::nan("")})
    EXPECT_THROW(Resampler(20, {position}), std::invalid_argument) << position;
  EXPECT_THROW(Resampler(4, {1.0}), std::invalid_argument);
}

TEST(InvertPositions, FindsThePlacesOfWholeValues) {
  EXPECT_EQ(invert_positions({0.0, 0.5, 2.5, 3.0}), (std::vector{0.0, 1.25, 1.75, 3.0}));
  EXPECT_THROW(invert_positions({0.0, 0.0, 2.0, 3.0}), std::invalid_argument);
}

}  // namespace
}  // namespace oct::simulator
