#include "data/picture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "octrender/option_values.h"
#include "data/formats/png_writer.h"
#include "test_files.h"

namespace oct::app::test {
namespace {

void expectSize(PictureSize size, unsigned width, unsigned height) {
  EXPECT_EQ(size.width, width);
  EXPECT_EQ(size.height, height);
}

TEST(PictureSizes, AreParsed) {
  expectSize(parsePictureSize("800x600"), 800, 600);
  expectSize(parsePictureSize("1x16384"), 1, 16384);
  for (const std::string text : {"", "x", "800", "800x", "x600", "800X600", "800x600x2", "0x5", "5x0", "-5x5",
                                 "16385x1", "99999999999x1", "8 x 6", "1.5x2"}) {
    SCOPED_TRACE(text);
    expectFailure(ExitCode::BadCommandLine, "--size", [&] { parsePictureSize(text); });
  }
  expectFailure(ExitCode::BadCommandLine, "more than", [] { parsePictureSize("16384x16384"); });
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

TEST(OptionValues, RangesNeedTwoDifferentFiniteEnds) {
  EXPECT_FALSE(parseRange("--range", {}));
  EXPECT_EQ(parseRange("--range", NumberPair{5, -2})->lower, 5);
  EXPECT_EQ(parseRange("--range", NumberPair{5, -2})->upper, -2);
  const double infinity = std::numeric_limits<double>::infinity();
  for (const NumberPair& pair : {NumberPair{1, 1}, {1, 1 + 1e-12}, {0, infinity}, {std::nan(""), 1}}) {
    expectFailure(ExitCode::BadCommandLine, "--range", [&] { parseRange("--range", pair); });
  }
}

TEST(OptionValues, SpacingsArePositive) {
  for (const NumberPair& pair : {NumberPair{0, 1}, {1, -1}, {std::nan(""), 1}}) {
    expectFailure(ExitCode::BadCommandLine, "--spacing", [&] { parseSpacing(pair); });
  }
  EXPECT_EQ(parseSpacing(NumberPair{2, 3}).lateral, 3);
}

TEST(OptionValues, ColoursHaveSixDigits) {
  EXPECT_EQ(parseColor("--background", "0aFf10"), 0x0AFF10u);
  for (const std::string text : {"", "12345", "1234567", "12345g", "-12345", "0x1234", "#12345"}) {
    SCOPED_TRACE(text);
    expectFailure(ExitCode::BadCommandLine, "--background", [&] { parseColor("--background", text); });
  }
}

TEST(PngWriter, ReplacesFilesWhole) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder / "\xC3\xA4.png";
  writeFile(path, "old");
  writePng(path, {{2, 1}, {1, 2, 3, 4, 5, 6}});
  EXPECT_EQ(readPicture(path).pixels, (std::vector<std::uint8_t>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(folder.fileNames().size(), 1u);
}

TEST(PngWriter, LeavesNothingBehindWhenItFails) {
  const TemporaryFolder folder;
  const Picture picture{{1, 1}, {1, 2, 3}};
  expectFailure(ExitCode::OutputFailed, "out.png: ", [&] { writePng(folder / "none/out.png", picture); });
  std::filesystem::create_directory(folder / "folder.png");
  expectFailure(ExitCode::OutputFailed, "folder.png: ", [&] { writePng(folder / "folder.png", picture); });
  EXPECT_EQ(folder.fileNames(), std::vector<std::string>{"folder.png"});
}

}  // namespace
}  // namespace oct::app::test
