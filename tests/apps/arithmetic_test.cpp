// What is computed of samples, colours and pictures, and of the times of live volumes.
#include <array>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

#include <gtest/gtest.h>

#include "apps/test_files.h"
#include "data/colormap.h"
#include "data/opacity.h"
#include "data/picture.h"
#include "data/samples.h"

namespace oct::app::test {
namespace {

constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

void expect_range(const std::vector<float>& samples, double lower, double upper) {
  for (const auto& find : {automatic_range, quick_range}) {
    const ValueRange range = find(samples, image_shares).value();
    EXPECT_DOUBLE_EQ(range.lower, lower);
    EXPECT_DOUBLE_EQ(range.upper, upper);
  }
}

TEST(AutomaticRange, TakesPercentilesOfFiniteSamples) {
  std::vector<float> samples(1001);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<float>(i * 5 % 1001);
  for (const float not_finite : {not_a_number, infinity, -infinity})
    samples.insert(samples.begin() + 500, 500, not_finite);
  expect_range(samples, 10, 995);
  expect_range({200, 40, 0, 160, 120, 80}, 2, 199);  // linear between ranks
  EXPECT_FALSE(automatic_range(std::vector<float>{not_a_number, infinity}, image_shares));
  EXPECT_FALSE(automatic_range(std::vector<float>{}, image_shares));
  // Every second of so many is enough.
  std::vector<float> many(1'500'001, 1);
  for (std::size_t i = 1; i < many.size(); i += 2) many[i] = 9;
  EXPECT_EQ(quick_range(many, image_shares)->upper, 2);
  expect_range({-3, -3, -3}, -3, -2);  // never empty
  // One bright sample in a thousand lies beyond the upper percentile.
  std::vector<float> sparse(1000, 0.0F);
  sparse[123] = 255;
  expect_range(sparse, 0, 255);
}

TEST(LooksLinear, NeitherAMaskNorWhatIsLogarithmic) {
  EXPECT_TRUE(looks_linear(std::vector<float>{0.001F, 0.01F, 0.1F, 0.1F, 255}, {0, 255}));
  EXPECT_FALSE(looks_linear(std::vector<float>{0, 0, 0, 0, 255}, {0, 255}));  // a mask
  EXPECT_FALSE(looks_linear(std::vector<float>{0, 10, 20, 30, 40, 60}, {0, 60}));
  EXPECT_FALSE(looks_linear(std::vector<float>{-90, -80, -20}, {-90, -20}));
}

// These maps are made to get brighter evenly; a slip in a table would show as a step.
TEST(NamedColormaps, GetBrighterEvenlyBetweenTheirKnownEnds) {
  const std::tuple<std::string, Rgba, Rgba> maps[] = {{"gray", {0, 0, 0, 255}, {255, 255, 255, 255}},
                                                      {"viridis", {68, 1, 84, 255}, {253, 231, 37, 255}},
                                                      {"inferno", {0, 0, 4, 255}, {252, 255, 164, 255}},
                                                      {"magma", {0, 0, 4, 255}, {252, 253, 191, 255}},
                                                      {"cividis", {0, 34, 78, 255}, {254, 232, 56, 255}}};
  for (const auto& [name, first, last] : maps) {
    SCOPED_TRACE(name);
    const Colormap colors = find_colormap(name).value();
    ASSERT_EQ(colors.size(), 256U);
    EXPECT_EQ(colors.front(), first);
    EXPECT_EQ(colors.back(), last);
    const auto luma = [](Rgba color) { return 0.2126 * color[0] + 0.7152 * color[1] + 0.0722 * color[2]; };
    for (std::size_t i = 1; i < colors.size(); ++i)
      EXPECT_NEAR(luma(colors[i]) - luma(colors[i - 1]), 1.25, 1.75) << i;
  }
}

TEST(ColormapArithmetic, SetsAlphaAndFlattensOntoTheBackground) {
  Colormap ramp(3, {1, 2, 3, 255});
  set_opacity(ramp, {.highest = 0.5, .shift = 0, .points = {}});
  EXPECT_EQ(ramp, (Colormap{{1, 2, 3, 0}, {1, 2, 3, 32}, {1, 2, 3, 128}}));
  // Moved to the right, its curve begins later; points are linear in between, and hold outside.
  set_opacity(ramp, {.highest = 1, .shift = 0.5, .points = {}});
  EXPECT_EQ(ramp, (Colormap{{1, 2, 3, 0}, {1, 2, 3, 0}, {1, 2, 3, 64}}));
  const OpacityRule curve{
      .highest = 0.5, .shift = 0.1, .points = {{0.2, 0}, {0.6, 1}, {0.6, 0.2}, {0.8, 0.4}}};
  for (const auto& [place, opacity] :
       {std::pair{0.0, 0.0}, {0.3, 0.0}, {0.5, 0.25}, {0.7, 0.1}, {0.8, 0.15}, {1.0, 0.2}})
    EXPECT_NEAR(opacity_at(curve, place), opacity, 1e-12) << place;
  Colormap flat{{200, 100, 0, 0}, {200, 100, 0, 255}, {200, 100, 0, 51}};
  flatten_onto(flat, 0x0A141E);
  EXPECT_EQ(flat, (Colormap{{10, 20, 30, 255}, {200, 100, 0, 255}, {48, 36, 24, 255}}));
}

TEST(PictureSizes, FollowTheSpacing) {
  const auto expect_size = [](PictureSize size, unsigned width, unsigned height) {
    EXPECT_EQ(std::pair(size.width, size.height), std::pair(width, height));
  };
  expect_size(natural_picture_size(512, 1272, {1, 1}), 1272, 512);
  expect_size(natural_picture_size(496, 768, {3.872, 14.24}), 2824, 496);
  expect_size(natural_picture_size(512, 1272, {5.75, 3.1}), 1272, 950);
  expect_size(natural_picture_size(100, 100, {2e-6, 1e-6}), 100, 200);
  // Within limits.
  expect_size(natural_picture_size(1000, 8192, {1, 1}), 4096, 500);
  expect_size(natural_picture_size(100, 100, {1, 1e6}), 4096, 1);
  expect_size(natural_picture_size(100, 100, {1e300, 1e-300}), 1, 4096);
}

}  // namespace
}  // namespace oct::app::test
