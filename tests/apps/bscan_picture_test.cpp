// From a file to a picture, with the real library.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "program_test.h"

namespace oct::app::test {
namespace {

// Rounding to 8 bits in the colour map, in its filtered lookup and in the framebuffer.
constexpr int kTolerance = 2;

using Rgb = std::array<int, 3>;

class BscanPicture : public BscanTest {
 protected:
  void expectPicture(const Arguments& further, unsigned width, unsigned height,
                     const std::vector<Rgb>& wanted) {
    SCOPED_TRACE(testing::PrintToString(further));
    ASSERT_EQ(run(further), 0) << errorText_;
    const Picture picture = readPicture(output_);
    ASSERT_EQ(picture.size.width, width);
    ASSERT_EQ(picture.size.height, height);
    ASSERT_EQ(picture.pixels.size(), wanted.size() * 3);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
      EXPECT_NEAR(picture.pixels[i], wanted[i / 3][i % 3], kTolerance)
          << "row " << i / 3 / width << ", column " << i / 3 % width << ", channel " << i % 3;
    }
  }

  void expectGray(const Arguments& further, unsigned width, unsigned height, const std::vector<int>& wanted) {
    std::vector<Rgb> colors;
    for (const int level : wanted) colors.push_back({level, level, level});
    expectPicture(further, width, height, colors);
  }
};

const Arguments kFullRange{"--range", "0", "255"};

Arguments fullRangeAnd(const Arguments& further) {
  return joined(further, kFullRange);
}

// Two rows of depth, three A-scans.
class BscanGradient : public BscanPicture {
 protected:
  BscanGradient() { writeNpy(input_, "2, 3", {0, 40, 80, 120, 160, 200}); }
};

TEST_F(BscanGradient, RunsDepthDownAndAscansRight) {
  expectGray(kFullRange, 3, 2, {0, 40, 80, 120, 160, 200});
  EXPECT_EQ(errorText_, "");
}

TEST_F(BscanGradient, IsPlacedByItsOptions) {
  expectGray(fullRangeAnd({"--flip"}), 3, 2, {120, 160, 200, 0, 40, 80});
  expectGray(fullRangeAnd({"--transpose"}), 2, 3, {0, 120, 40, 160, 80, 200});
  expectGray(fullRangeAnd({"--size", "6x4"}), 6, 4,
             {0,   0,   40,  40,  80,  80,  0,   0,   40,  40,  80,  80,
              120, 120, 160, 160, 200, 200, 120, 120, 160, 160, 200, 200});
  expectGray(fullRangeAnd({"--spacing", "2", "1"}), 3, 4,
             {0, 40, 80, 0, 40, 80, 120, 160, 200, 120, 160, 200});
}

TEST_F(BscanGradient, MapsTheRange) {
  expectGray({"--range", "40", "160"}, 3, 2, {0, 0, 85, 170, 255, 255});
  expectGray({"--range", "160", "40"}, 3, 2, {255, 255, 170, 85, 0, 0});
  expectGray({"--range", "-200", "200"}, 3, 2, {128, 153, 179, 204, 230, 255});
  expectGray(fullRangeAnd({"--reverse"}), 3, 2, {255, 215, 175, 135, 95, 55});
}

TEST_F(BscanGradient, FindsTheRangeByItself) {
  // Percentiles of six samples: 2 and 199.
  const std::vector<int> wanted{0, 49, 101, 153, 205, 255};
  expectGray({}, 3, 2, wanted);
  expectGray({"--range", "auto"}, 3, 2, wanted);
  ASSERT_EQ(runBare({"bscan", "--range", "auto", file("in.npy"), "-o", file("out.png")}), 0) << errorText_;
}

// Named ones and those of a file, through which the background is seen.
TEST_F(BscanGradient, UsesColourMaps) {
  const Rgb first{68, 1, 84}, last{253, 231, 37}, background{16, 32, 48}, blue{0, 0, 255};
  expectPicture({"--range", "80", "81", "--colormap", "viridis"}, 3, 2,
                {first, first, first, last, last, last});
  writeFile(folder_ / "map.csv", "255,255,255,0\n0,0,255,255\n");
  expectPicture({"--range", "80", "81", "--colormap", file("map.csv"), "--background", "102030"}, 3, 2,
                {background, background, background, blue, blue, blue});
}

TEST_F(BscanPicture, ShowsTheMeanOfSmallSamples) {
  std::vector<float> samples;
  for (int i = 0; i < 64; ++i) samples.push_back(i % 2 ? 200.0f : 0.0f);
  writeNpy(input_, "8, 8", samples);
  ASSERT_EQ(run(fullRangeAnd({"--size", "4x8"})), 0) << errorText_;
  const Picture picture = readPicture(output_);
  for (std::size_t row = 0; row < 8; ++row) {
    // The last pixel of a row averages samples at the edge of the image, where a second one may be missing.
    for (std::size_t column = 0; column < 3; ++column) {
      EXPECT_NEAR(picture.pixels[(row * 4 + column) * 3], 100, kTolerance);
    }
  }
}

TEST_F(BscanPicture, DrawsConstantImagesInfinitiesAndDecibels) {
  writeNpy(input_, "2, 2", {7, 7, 7, 7});
  expectGray({}, 2, 2, {0, 0, 0, 0});
  const float infinity = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  writeNpy(input_, "1, 4", {nan, -infinity, infinity, 100});
  expectGray(kFullRange, 4, 1, {0, 0, 255, 100});
  writeNpy(input_, "1, 4", {1, 0.1f, 0.01f, 0});
  expectGray({"--db", "--range", "-40", "0"}, 4, 1, {255, 128, 0, 0});
}

TEST_F(BscanPicture, HintsAtDecibelsForLinearData) {
  std::vector<float> samples(400, 1e-5f);
  for (std::size_t i = 0; i < samples.size(); i += 20) samples[i] = 1;
  writeNpy(input_, "20, 20", samples);
  ASSERT_EQ(run(), 0);
  EXPECT_NE(errorText_.find("--db"), std::string::npos) << errorText_;
  ASSERT_EQ(run({"--db"}), 0);
  EXPECT_EQ(errorText_, "");
}

TEST_F(BscanPicture, PicksFrames) {
  writeNpy(input_, "3, 1, 2", {10, 11, 20, 21, 30, 31});
  expectGray(kFullRange, 2, 1, {20, 21});
  EXPECT_NE(errorText_.find("in.npy: showing frame 1 of 0 to 2"), std::string::npos) << errorText_;
  expectGray(fullRangeAnd({"--frame", "2"}), 2, 1, {30, 31});
  EXPECT_EQ(errorText_, "");
}

// One bright sample in the middle of nine by nine.
class BscanImpulse : public BscanPicture {
 protected:
  BscanImpulse() {
    std::vector<float> samples(81, 0.0f);
    samples[40] = 255;
    writeNpy(input_, "9, 9", samples);
  }

  int level(unsigned row, unsigned column) const {
    return readPicture(output_).pixels[(row * 9 + column) * 3];
  }
};

TEST_F(BscanImpulse, IsSmoothedOnceByEitherBlurAndTwiceByBoth) {
  for (const std::string blur : {"first", "second"}) {
    SCOPED_TRACE(blur);
    ASSERT_EQ(run(fullRangeAnd({"--blur", blur})), 0);
    EXPECT_NEAR(level(4, 4), 0.4 * 0.4 * 255, kTolerance);
    EXPECT_NEAR(level(4, 5), 0.4 * 0.2 * 255, kTolerance);
    EXPECT_NEAR(level(3, 4), 0.4 * 0.2 * 255, kTolerance);
    EXPECT_NEAR(level(4, 2), 0.4 * 0.1 * 255, kTolerance);
    EXPECT_EQ(level(4, 1), 0);
  }
  ASSERT_EQ(run(fullRangeAnd({"--blur", "both"})), 0);
  EXPECT_NEAR(level(4, 4), 0.26 * 0.26 * 255, kTolerance);
}

// The order of the filters shows: a blur before the pepper filter leaves it less to raise.
TEST_F(BscanImpulse, IsSmoothedBeforeOrAfterThePepperFilter) {
  // After the pepper filter the middle is 255 and its eight neighbours 255 / 9.
  ASSERT_EQ(run(fullRangeAnd({"--pepper", "--blur", "second"})), 0);
  const double neighbour = 1.0 / 9;
  const double weights = 0.8 * 0.8;  // of the three by three samples in the middle
  EXPECT_NEAR(level(4, 4), (0.16 + (weights - 0.16) * neighbour) * 255, kTolerance);
  // Before it the middle is 0.16, more than the mean of its surroundings, and stays.
  ASSERT_EQ(run(fullRangeAnd({"--pepper", "--blur", "first"})), 0);
  EXPECT_NEAR(level(4, 4), 0.16 * 255, kTolerance);
}

TEST_F(BscanPicture, RaisesDarkSamplesWithThePepperFilter) {
  std::vector<float> samples(81, 180.0f);
  samples[40] = 0;
  writeNpy(input_, "9, 9", samples);
  std::vector<int> wanted(81, 180);
  wanted[40] = 160;
  expectGray(fullRangeAnd({"--pepper"}), 9, 9, wanted);
}

// Base 10, 20, 90, 100; overlay: low, high, low, high.
class BscanOverlay : public BscanPicture {
 protected:
  BscanOverlay() {
    writeNpy(input_, "1, 4", {10, 20, 90, 100});
    writeNpy(folder_ / "overlay.npy", "1, 4", {0, 5, 0, 5});
    writeFile(folder_ / "map.csv", "255,0,0\n0,255,0\n");
  }

  Arguments overlayAnd(const Arguments& further) {
    return joined(fullRangeAnd({"--overlay", file("overlay.npy"), "--overlay-range", "0", "5",
                                "--overlay-colormap", file("map.csv")}),
                  further);
  }
};

TEST_F(BscanOverlay, IsBlendedByItsOpacityOverBrightSamples) {
  expectPicture(overlayAnd({"--overlay-opacity", "1", "--overlay-threshold", "50"}), 4, 1,
                {{10, 10, 10}, {20, 20, 20}, {255, 0, 0}, {0, 255, 0}});
  expectPicture(overlayAnd({"--overlay-opacity", "0.2"}), 4, 1,
                {{59, 8, 8}, {16, 67, 16}, {123, 72, 72}, {80, 131, 80}});
  expectGray(overlayAnd({"--overlay-opacity", "0"}), 4, 1, {10, 20, 90, 100});
  // Without threshold also over negative samples.
  writeNpy(input_, "1, 4", {-90, -80, -70, -60});
  ASSERT_EQ(run({"--overlay", file("overlay.npy"), "--overlay-colormap", file("map.csv"), "--overlay-opacity",
                 "1"}),
            0);
  const std::vector<std::uint8_t> drawn = pixels();
  EXPECT_EQ(std::vector<std::uint8_t>(drawn.begin(), drawn.begin() + 3),
            (std::vector<std::uint8_t>{255, 0, 0}));
}

TEST_F(BscanOverlay, TakesTheFrameOfTheBase) {
  writeNpy(input_, "3, 1, 1", {0, 0, 0});
  writeNpy(folder_ / "overlay.npy", "3, 1, 1", {0, 0, 5});
  expectPicture(overlayAnd({"--overlay-opacity", "1", "--frame", "2"}), 1, 1, {{0, 255, 0}});
  expectPicture(overlayAnd({"--overlay-opacity", "1"}), 1, 1, {{255, 0, 0}});
  writeNpy(folder_ / "overlay.npy", "5, 1, 1", {0, 5, 0, 0, 0});  // its own middle frame would be another
  expectPicture(overlayAnd({"--overlay-opacity", "1"}), 1, 1, {{0, 255, 0}});
  writeNpy(folder_ / "overlay.npy", "1, 1", {5});  // over every frame
  expectPicture(overlayAnd({"--overlay-opacity", "1", "--frame", "2"}), 1, 1, {{0, 255, 0}});
}

TEST_F(BscanPicture, ReportsOutputThatCannotBeWritten) {
  writeNpy(input_, "1, 1", {255});
  EXPECT_EQ(runBare({"bscan", file("in.npy"), "-o", file("none/out.png")}), 4);
  EXPECT_EQ(errorText_.rfind("octrender: " + toUtf8(folder_ / "none/out.png") + ": ", 0), 0u) << errorText_;
}

TEST_F(BscanPicture, ReportsTheLibrarysErrors) {
  // Larger than the textures of any driver that the project knows.
  writeFile(input_, npyBytes(npyDictionary("|u1", false, "65536, 2"), std::string(131072, 'x')));
  EXPECT_EQ(run(), 1);
  EXPECT_NE(errorText_.find("octrender: rendering failed: Cannot generate a texture of the required size."),
            std::string::npos)
      << errorText_;
  EXPECT_FALSE(std::filesystem::exists(output_));
}

}  // namespace
}  // namespace oct::app::test
