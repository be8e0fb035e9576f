// Texts as the system's fonts draw them: sizes, and that the glyphs are where they belong.
#include "volume/text/text_rasteriser.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace oct::test {
namespace {

struct Ink {
  int left = 1 << 20, right = -1, bottom = 1 << 20, top = -1;
  double amount = 0.0;  // covered pixels
  double lean = 0.0;    // how far the middle of the upper half lies to the right of that of the lower
};

Ink ink_of(const TextPicture& picture) {
  Ink ink;
  double sums[2] = {};
  double weights[2] = {};
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const int level = picture.pixels[static_cast<std::size_t>(y * picture.width + x) * 4];
      sums[2 * y >= picture.height] += level * x;
      weights[2 * y >= picture.height] += level;
      if (level < 64) continue;
      ink.left = std::min(ink.left, x);
      ink.right = std::max(ink.right, x);
      ink.bottom = std::min(ink.bottom, y);
      ink.top = std::max(ink.top, y);
    }
  }
  ink.amount = (weights[0] + weights[1]) / 255.0;
  ink.lean = sums[1] / weights[1] - sums[0] / weights[0];
  return ink;
}

TEST(TextRasteriserTest, LinesAreAsHighAsTheFont) {
  for (const int height : {10, 18, 33}) {
    const TextPicture picture = TextRasteriser(height, false).rasterise("depth (mm)");
    EXPECT_NEAR(picture.height, height, 1);
    EXPECT_EQ(picture.pixels.size(), static_cast<std::size_t>(picture.width * picture.height * 4));
  }
}

TEST(TextRasteriserTest, WidthGrowsWithTheText) {
  TextRasteriser rasteriser(20, false);
  const auto width = [&](const char* text) { return rasteriser.rasterise(text).width; };
  const int one = width("1");
  EXPECT_GT(one, 6);
  EXPECT_LT(one, 20);
  EXPECT_EQ(width("7"), one) << "figures are as wide as each other, so that labels do not jump";
  EXPECT_NEAR(width("1111"), 4 * one, 3);
  EXPECT_GT(width("mm"), 2 * one);
  EXPECT_GT(width("x & y"), width("x  y") + 5) << "an ampersand is a character";
}

TEST(TextRasteriserTest, GlyphsAreWhereTheyBelong) {
  TextRasteriser rasteriser(40, false);
  const auto ink = [&](const char* text) { return ink_of(rasteriser.rasterise(text)); };
  EXPECT_LT(ink("_").top, 20) << "the bottom row comes first";
  EXPECT_GT(ink("'").bottom, 20);
  const Ink seven = ink("7");
  EXPECT_GT(seven.bottom, ink(",").bottom) << "a comma hangs below the base line on which figures stand";
  EXPECT_GT(seven.top - seven.bottom, 20);

  const TextPicture picture = rasteriser.rasterise("1 mm");
  const Ink whole = ink_of(picture);
  EXPECT_EQ(whole.left, ink("1").left);
  EXPECT_LE(picture.width - 1 - whole.right, 8) << "the text ends where its last letter does";
  EXPECT_GT(whole.amount, ink("1").amount * 2.5);
  for (std::size_t i = 0; i < picture.pixels.size(); i += 4) {
    ASSERT_EQ(picture.pixels[i], picture.pixels[i + 1]);
    ASSERT_EQ(picture.pixels[i], picture.pixels[i + 2]);
  }
}

TEST(TextRasteriserTest, EmphasisIsBolderAndLeans) {
  TextRasteriser plain(30, false);
  TextRasteriser emphasised(30, true);
  EXPECT_GT(ink_of(emphasised.rasterise("lateral")).amount, 1.15 * ink_of(plain.rasterise("lateral")).amount);
  EXPECT_NEAR(ink_of(plain.rasterise("l")).lean, 0.0, 0.5);
  EXPECT_GT(ink_of(emphasised.rasterise("l")).lean, 1.0);
}

}  // namespace
}  // namespace oct::test
