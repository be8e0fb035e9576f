#include "data/samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace oct::app {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(Quantile, IsLinearBetweenRanks) {
  const auto quantileOf = [](std::vector<float> values, double share) { return quantile(values, share); };
  EXPECT_EQ(quantileOf({7}, 0.0), 7);
  EXPECT_EQ(quantileOf({7}, 0.995), 7);
  EXPECT_DOUBLE_EQ(quantileOf({10, 0}, 0.25), 2.5);
  EXPECT_DOUBLE_EQ(quantileOf({4, 1, 3, 2}, 0.5), 2.5);
  EXPECT_DOUBLE_EQ(quantileOf({4, 1, 3, 2}, 1.0), 4);
  EXPECT_DOUBLE_EQ(quantileOf({4, 1, 3, 2}, 0.0), 1);
}

void expectRange(const std::vector<float>& samples, double lower, double upper) {
  const ValueRange range = automaticRange(samples).value();
  EXPECT_EQ(range.lower, lower);
  EXPECT_EQ(range.upper, upper);
}

TEST(AutomaticRange, TakesPercentilesOfFiniteSamples) {
  std::vector<float> samples(1001);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<float>(i);
  std::shuffle(samples.begin(), samples.end(), std::mt19937(1));
  expectRange(samples, 10, 995);
  samples.insert(samples.begin(), 500, kNan);
  samples.insert(samples.begin(), 500, kInfinity);
  samples.insert(samples.end(), 500, -kInfinity);
  expectRange(samples, 10, 995);
}

TEST(AutomaticRange, IsNeverEmpty) {
  expectRange(std::vector<float>(10, 5.0f), 5, 6);
  expectRange({-3}, -3, -2);
  // One bright sample in a thousand lies beyond the upper percentile.
  std::vector<float> sparse(1000, 0.0f);
  sparse[123] = 255;
  expectRange(sparse, 0, 255);
}

TEST(AutomaticRange, NeedsOneFiniteSample) {
  EXPECT_FALSE(automaticRange(std::vector<float>{kNan, kInfinity}));
  EXPECT_FALSE(automaticRange(std::vector<float>{}));
}

TEST(LooksLinear, TellsLinearFromLogarithmicSamples) {
  std::vector<float> decibels(1000), linear(1000);
  for (std::size_t i = 0; i < decibels.size(); ++i) {
    decibels[i] = 60 * static_cast<float>(i) / 1000;
    linear[i] = std::pow(10.0f, (decibels[i] - 60) / 10);
  }
  EXPECT_TRUE(looksLinear(linear, automaticRange(linear).value()));
  EXPECT_FALSE(looksLinear(decibels, automaticRange(decibels).value()));
  EXPECT_FALSE(looksLinear(std::vector<float>{0, 0, 0, 0, 255}, {0, 255}));  // a mask
  EXPECT_FALSE(looksLinear(std::vector<float>{-90, -80, -20}, {-90, -20}));
}

TEST(Decibels, HaveNoValueForWhatIsNotPositive) {
  std::vector<float> samples{1, 10, 0.001f, 0, -1, kNan, kInfinity};
  toDecibels(samples);
  EXPECT_FLOAT_EQ(samples[0], 0);
  EXPECT_FLOAT_EQ(samples[1], 20);
  EXPECT_FLOAT_EQ(samples[2], -60);
  EXPECT_EQ(samples[3], -kInfinity);
  EXPECT_EQ(samples[4], -kInfinity);
  EXPECT_EQ(samples[5], -kInfinity);
  EXPECT_EQ(samples[6], kInfinity);
}

}  // namespace
}  // namespace oct::app
