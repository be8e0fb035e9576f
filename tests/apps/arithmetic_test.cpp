// What is computed of samples, colours and pictures.
#include <cmath>
#include <limits>

#include "data/colormap.h"
#include "data/picture.h"
#include "data/samples.h"
#include "test_files.h"

namespace oct::app::test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(Quantile, IsLinearBetweenRanks) {
  const auto quantileOf = [](std::vector<float> values, double share) { return quantile(values, share); };
  EXPECT_EQ(quantileOf({7}, 0.995), 7);
  EXPECT_DOUBLE_EQ(quantileOf({10, 0}, 0.25), 2.5);
  EXPECT_DOUBLE_EQ(quantileOf({4, 1, 3, 2}, 0.5), 2.5);
  EXPECT_DOUBLE_EQ(quantileOf({4, 1, 3, 2}, 1.0), 4);
  EXPECT_DOUBLE_EQ(quantileOf({4, 1, 3, 2}, 0.0), 1);
}

void expectRange(const std::vector<float>& samples, double lower, double upper) {
  for (const auto& find : {automaticRange, quickRange}) {
    const ValueRange range = find(samples, kImageShares).value();
    EXPECT_EQ(range.lower, lower);
    EXPECT_EQ(range.upper, upper);
  }
}

TEST(AutomaticRange, TakesPercentilesOfFiniteSamples) {
  std::vector<float> samples(1001);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<float>(i * 5 % 1001);
  for (const float notFinite : {kNan, kInfinity, -kInfinity})
    samples.insert(samples.begin() + 500, 500, notFinite);
  expectRange(samples, 10, 995);
  EXPECT_FALSE(automaticRange(std::vector<float>{kNan, kInfinity}, kImageShares));
  EXPECT_FALSE(automaticRange(std::vector<float>{}, kImageShares));
  // Every second of so many is enough.
  std::vector<float> many(5'000'001, 1);
  for (std::size_t i = 1; i < many.size(); i += 2) many[i] = 9;
  EXPECT_EQ(quickRange(many, kImageShares)->upper, 2);
}

TEST(AutomaticRange, IsNeverEmpty) {
  expectRange({-3, -3, -3}, -3, -2);
  // One bright sample in a thousand lies beyond the upper percentile.
  std::vector<float> sparse(1000, 0.0f);
  sparse[123] = 255;
  expectRange(sparse, 0, 255);
}

TEST(LooksLinear, TellsLinearFromLogarithmicSamples) {
  std::vector<float> decibels(1000), linear(1000);
  for (std::size_t i = 0; i < decibels.size(); ++i) {
    decibels[i] = 60 * static_cast<float>(i) / 1000;
    linear[i] = std::pow(10.0f, (decibels[i] - 60) / 10);
  }
  EXPECT_TRUE(looksLinear(linear, automaticRange(linear, kImageShares).value()));
  EXPECT_FALSE(looksLinear(decibels, automaticRange(decibels, kImageShares).value()));
  EXPECT_FALSE(looksLinear(std::vector<float>{0, 0, 0, 0, 255}, {0, 255}));  // a mask
  EXPECT_FALSE(looksLinear(std::vector<float>{-90, -80, -20}, {-90, -20}));
}

TEST(Decibels, HaveNoValueForWhatIsNotPositive) {
  std::vector<float> samples{1, 10, 0.001f, 0, -1, kNan, kInfinity};
  toDecibels(samples);
  samples[2] = std::round(samples[2]);
  EXPECT_EQ(samples, (std::vector<float>{0, 20, -60, -kInfinity, -kInfinity, -kInfinity, kInfinity}));
}

// These maps are made to get brighter evenly; a slip in a table would show as a step.
TEST(NamedColormaps, GetBrighterEvenlyBetweenTheirKnownEnds) {
  const auto check = [](const std::string& name, Rgba first, Rgba last) {
    SCOPED_TRACE(name);
    const Colormap colors = findColormap(name).value();
    ASSERT_EQ(colors.size(), 256u);
    EXPECT_EQ(colors.front(), first);
    EXPECT_EQ(colors.back(), last);
    const auto luma = [](Rgba color) { return 0.2126 * color[0] + 0.7152 * color[1] + 0.0722 * color[2]; };
    for (std::size_t i = 1; i < colors.size(); ++i) {
      EXPECT_GT(luma(colors[i]), luma(colors[i - 1]) - 0.5);
      EXPECT_LT(luma(colors[i]), luma(colors[i - 1]) + 3);
    }
  };
  check("gray", {0, 0, 0, 255}, {255, 255, 255, 255});
  check("viridis", {68, 1, 84, 255}, {253, 231, 37, 255});
  check("inferno", {0, 0, 4, 255}, {252, 255, 164, 255});
  check("magma", {0, 0, 4, 255}, {252, 253, 191, 255});
  check("cividis", {0, 34, 78, 255}, {254, 232, 56, 255});
}

TEST(ColormapArithmetic, SetsAlphaAndFlattensOntoTheBackground) {
  Colormap ramp(3, {1, 2, 3, 255});
  addOpacityRamp(ramp, 0.5);
  EXPECT_EQ(ramp, (Colormap{{1, 2, 3, 0}, {1, 2, 3, 32}, {1, 2, 3, 128}}));
  Colormap scaled{{1, 2, 3, 255}, {4, 5, 6, 100}};
  scaleAlpha(scaled, 0.5);
  EXPECT_EQ(scaled, (Colormap{{1, 2, 3, 128}, {4, 5, 6, 50}}));
  Colormap flat{{200, 100, 0, 0}, {200, 100, 0, 255}, {200, 100, 0, 51}};
  flattenOnto(flat, 0x0A141E);
  EXPECT_EQ(flat, (Colormap{{10, 20, 30, 255}, {200, 100, 0, 255}, {48, 36, 24, 255}}));
}

void expectSize(PictureSize size, unsigned width, unsigned height) {
  EXPECT_EQ(size.width, width);
  EXPECT_EQ(size.height, height);
}

TEST(PictureSizes, FollowTheSpacing) {
  expectSize(naturalPictureSize(512, 1272, {1, 1}), 1272, 512);
  expectSize(naturalPictureSize(496, 768, {3.872, 14.24}), 2824, 496);
  expectSize(naturalPictureSize(512, 1272, {5.75, 3.1}), 1272, 950);
  expectSize(naturalPictureSize(100, 100, {2e-6, 1e-6}), 100, 200);
  // Within limits.
  expectSize(naturalPictureSize(1000, 8192, {1, 1}), 4096, 500);
  expectSize(naturalPictureSize(100, 100, {1, 1e6}), 4096, 1);
  expectSize(naturalPictureSize(100, 100, {1e300, 1e-300}), 1, 4096);
}

TEST(PicturePixels, AreTurnedOverAndReordered) {
  const std::vector<std::uint8_t> frame{1, 2, 3, 255, 4,  5,  6,  255,  // bottom row
                                        7, 8, 9, 255, 10, 11, 12, 0};   // top row
  EXPECT_EQ(toPicture({2, 2}, frame).pixels,
            (std::vector<std::uint8_t>{9, 8, 7, 12, 11, 10, 3, 2, 1, 6, 5, 4}));
}

}  // namespace
}  // namespace oct::app::test
