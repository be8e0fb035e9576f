// Statistics of values and what follows them, presets.
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "octview/model/layer_colors.h"
#include "octview/model/presets.h"

namespace oct::app::test {
namespace {

std::uint64_t sum_of(const std::vector<std::uint64_t>& counts) {
  std::uint64_t sum = 0;
  for (const std::uint64_t count : counts) sum += count;
  return sum;
}

// Percentiles are those of octrender, whatever the values, and each sample is counted once.
TEST(Statistics, AgreeWithAutomaticRanges) {
  std::mt19937 random(7);
  std::vector<float> skewed(200'000);
  for (float& value : skewed) value = std::exp(0.001F * static_cast<float>(random() % 10'000));
  skewed[5] = std::numeric_limits<float>::quiet_NaN();
  skewed[6] = -std::numeric_limits<float>::infinity();
  std::vector<float> bytes(1000);
  for (float& value : bytes) value = static_cast<float>(random() % 7 * 40);
  for (const std::vector<float>& samples :
       {skewed, bytes, std::vector<float>{3, 3, 3}, std::vector<float>{5}}) {
    const Statistics statistics = statistics_of(samples, 0).value();
    for (const Shares shares : {Shares{0, 1}, {0.01, 0.995}, {0.6, 0.998}, {0.3, 0.3001}}) {
      const ValueRange wanted = automatic_range(samples, shares).value();
      EXPECT_DOUBLE_EQ(statistics.range(shares).lower, wanted.lower);
      EXPECT_DOUBLE_EQ(statistics.range(shares).upper, wanted.upper);
    }
    EXPECT_EQ(statistics.count,
              std::ranges::count_if(samples, [](float value) { return std::isfinite(value); }));
    EXPECT_EQ(sum_of(statistics.histogram) + statistics.below + statistics.above, statistics.count);
  }
  const Statistics few = statistics_of(bytes, 0).value();
  ASSERT_EQ(few.histogram.size(), 241U);  // a bin per integer
  EXPECT_EQ(few.histogram[80], static_cast<std::uint64_t>(std::ranges::count(bytes, 80.0F)));
  EXPECT_NEAR(few.share_below(few.percentile(0.9)), 0.9, 0.15);
  EXPECT_FALSE(statistics_of(std::vector<float>{NAN, NAN}, 0));
}

// One far sample does not squeeze the others into one bin; what stands for NaN is not counted.
TEST(Statistics, LeaveOutWhatIsNotData) {
  std::vector<float> samples(100'000);
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<float>(i % 1000) / 1000;
  samples[17] = 1e6F;
  std::ranges::fill(std::span(samples).subspan(500, 400), -90.0F);
  const Statistics statistics = statistics_of(samples, 400).value();
  EXPECT_EQ(statistics.count, samples.size() - 400);
  EXPECT_EQ(statistics.above, 1U);
  EXPECT_LT(statistics.domain.upper, 1.2);
  EXPECT_NEAR(statistics.percentile(0), 0, 1e-9);
  const auto stop = [](std::size_t, std::size_t) { throw std::runtime_error("stopped"); };
  EXPECT_THROW(statistics_of(samples, 0, stop), std::runtime_error);
}

TEST(Presets, ChangeWhatTheyCarryAndNothingElse) {
  ViewState before;
  before.volume.angles = {12, 34};
  before.volume.zoom = 33;
  before.volume.clip = ClipSetting{0.3, true, false};
  before.base.range = {4, 9};
  before.overlay.colormap = "magma";
  for (const Preset& preset : presets()) {
    SCOPED_TRACE(preset.name);
    ViewState state = before;
    apply_preset(preset, state);
    EXPECT_TRUE(shows_preset(preset, state));
    EXPECT_TRUE(find_colormap(preset.colormap).has_value());
    EXPECT_TRUE(is_opacity_curve(preset.opacity.points));
    EXPECT_EQ(
        std::ranges::count_if(presets(), [&](const Preset& other) { return shows_preset(other, state); }), 1);
    EXPECT_EQ(state.base.range, before.base.range);  // until it is put where the rule says
    state.base.shares.reset();
    EXPECT_FALSE(shows_preset(preset, state));
    state.base = before.base;
    VolumeView& view = state.volume;
    view.look = before.volume.look;
    view.lighting = before.volume.lighting;
    if (preset.from_above) {
      view.angles = before.volume.angles;
      view.perspective = before.volume.perspective;
      view.zoom = before.volume.zoom;
    }
    EXPECT_EQ(view, before.volume);
    EXPECT_EQ(state.overlay, before.overlay);
  }
}

}  // namespace
}  // namespace oct::app::test
