#include "samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace oct::app {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

double quantileOf(std::vector<float> values, double share) {
  return quantile(values, share);
}

TEST(Quantile, IsLinearBetweenRanks) {
  EXPECT_EQ(quantileOf({7}, 0.0), 7);
  EXPECT_EQ(quantileOf({7}, 0.995), 7);
  EXPECT_DOUBLE_EQ(quantileOf({10, 0}, 0.25), 2.5);
  EXPECT_DOUBLE_EQ(quantileOf({4, 1, 3, 2}, 0.5), 2.5);
  EXPECT_DOUBLE_EQ(quantileOf({4, 1, 3, 2}, 1.0), 4);
  EXPECT_DOUBLE_EQ(quantileOf({4, 1, 3, 2}, 0.0), 1);
}

TEST(AutomaticRange, TakesPercentiles) {
  std::vector<float> samples(1001);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<float>(i);
  std::shuffle(samples.begin(), samples.end(), std::mt19937(1));
  const ValueRange range = automaticRange(samples).value();
  EXPECT_NEAR(range.lower, 10, 1e-9);
  EXPECT_NEAR(range.upper, 995, 1e-9);
}

TEST(AutomaticRange, LeavesOutWhatIsNotFinite) {
  std::vector<float> samples(1001);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<float>(i);
  samples.insert(samples.begin(), 500, kNan);
  samples.insert(samples.begin(), 500, kInfinity);
  samples.insert(samples.end(), 500, -kInfinity);
  const ValueRange range = automaticRange(samples).value();
  EXPECT_NEAR(range.lower, 10, 1e-9);
  EXPECT_NEAR(range.upper, 995, 1e-9);
}

TEST(AutomaticRange, IsNeverEmpty) {
  const ValueRange constant = automaticRange(std::vector<float>(10, 5.0f)).value();
  EXPECT_EQ(constant.lower, 5);
  EXPECT_EQ(constant.upper, 6);
  const ValueRange single = automaticRange(std::vector<float>{-3}).value();
  EXPECT_EQ(single.lower, -3);
  EXPECT_EQ(single.upper, -2);
  // One bright sample in a thousand lies beyond the upper percentile.
  std::vector<float> sparse(1000, 0.0f);
  sparse[123] = 255;
  const ValueRange range = automaticRange(sparse).value();
  EXPECT_EQ(range.lower, 0);
  EXPECT_EQ(range.upper, 255);
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

TEST(ReplaceNonFinite, UsesTheEndsOfTheRange) {
  std::vector<float> samples{kNan, -kInfinity, kInfinity, 100};
  replaceNonFinite(samples, {2, 8});
  EXPECT_EQ(samples, (std::vector<float>{2, 2, 8, 100}));
}

}  // namespace
}  // namespace oct::app
