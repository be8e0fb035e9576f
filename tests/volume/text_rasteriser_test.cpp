// Texts as the system's fonts draw them: sizes, and that the glyphs are where they belong.
#include "volume/text/text_rasteriser.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace oct::test {
namespace {

struct Ink {
  int left = 1 << 20, right = -1, bottom = 1 << 20, top = -1;
  double amount = 0.0;  // covered pixels
};

Ink inkOf(const TextPicture& picture) {
  Ink ink;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const int level = picture.pixels[static_cast<std::size_t>(y * picture.width + x) * 4];
      ink.amount += level / 255.0;
      if (level < 64) continue;
      ink.left = std::min(ink.left, x);
      ink.right = std::max(ink.right, x);
      ink.bottom = std::min(ink.bottom, y);
      ink.top = std::max(ink.top, y);
    }
  }
  return ink;
}

TEST(TextRasteriserTest, LinesAreAsHighAsTheFont) {
  for (const int height : {10, 18, 33}) {
    TextRasteriser rasteriser(height, false);
    for (const char* const text : {"0", "0.25 mm", "depth (mm)"}) {
      const TextPicture picture = rasteriser.rasterise(text);
      EXPECT_NEAR(picture.height, height, 1) << text;
      EXPECT_EQ(picture.pixels.size(), static_cast<std::size_t>(picture.width * picture.height * 4));
    }
  }
}

TEST(TextRasteriserTest, WidthGrowsWithTheText) {
  TextRasteriser rasteriser(20, false);
  const int one = rasteriser.rasterise("1").width;
  EXPECT_GT(one, 6);
  EXPECT_LT(one, 20);
  EXPECT_EQ(rasteriser.rasterise("7").width, one)
      << "figures are as wide as each other, so that labels do not jump";
  EXPECT_NEAR(rasteriser.rasterise("1111").width, 4 * one, 3);
  EXPECT_GT(rasteriser.rasterise("mm").width, 2 * one);
}

TEST(TextRasteriserTest, BottomRowComesFirst) {
  TextRasteriser rasteriser(40, false);
  const Ink underscore = inkOf(rasteriser.rasterise("_"));
  const Ink quote = inkOf(rasteriser.rasterise("'"));
  EXPECT_LT(underscore.top, 20);
  EXPECT_GT(quote.bottom, 20);
  const Ink seven = inkOf(rasteriser.rasterise("7"));
  const Ink comma = inkOf(rasteriser.rasterise(","));
  EXPECT_GT(seven.bottom, comma.bottom) << "a comma hangs below the base line on which figures stand";
  EXPECT_GT(seven.top - seven.bottom, 20);
}

TEST(TextRasteriserTest, GlyphsAreOrderedAndUncut) {
  TextRasteriser rasteriser(30, false);
  const TextPicture picture = rasteriser.rasterise("1 mm");
  const TextPicture figure = rasteriser.rasterise("1");
  const Ink ink = inkOf(picture);
  EXPECT_EQ(ink.left, inkOf(figure).left);
  EXPECT_LE(picture.width - 1 - ink.right, 6) << "the text ends where its last letter does";
  EXPECT_GT(ink.amount, inkOf(figure).amount * 2.5);
  for (std::size_t i = 0; i < picture.pixels.size(); i += 4) {
    ASSERT_EQ(picture.pixels[i], picture.pixels[i + 1]);
    ASSERT_EQ(picture.pixels[i], picture.pixels[i + 2]);
  }
}

TEST(TextRasteriserTest, EmphasisIsBolder) {
  TextRasteriser plain(30, false);
  TextRasteriser emphasised(30, true);
  EXPECT_GT(inkOf(emphasised.rasterise("lateral")).amount, 1.15 * inkOf(plain.rasterise("lateral")).amount);

  // The stroke of an I leans: its upper part lies to the right of its lower part.
  const auto centre = [](const TextPicture& picture, int from, int to) {
    double sum = 0.0;
    double weight = 0.0;
    for (int y = from; y < to; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        const double level = picture.pixels[static_cast<std::size_t>(y * picture.width + x) * 4];
        sum += level * x;
        weight += level;
      }
    }
    return sum / weight;
  };
  const auto lean = [&](TextRasteriser& rasteriser) {
    const TextPicture picture = rasteriser.rasterise("l");
    return centre(picture, picture.height / 2, picture.height) - centre(picture, 0, picture.height / 2);
  };
  EXPECT_NEAR(lean(plain), 0.0, 0.5);
  EXPECT_GT(lean(emphasised), 1.0);
}

TEST(TextRasteriserTest, AmpersandIsACharacter) {
  TextRasteriser rasteriser(20, false);
  EXPECT_GT(rasteriser.rasterise("x & y").width, rasteriser.rasterise("x  y").width + 5);
}

}  // namespace
}  // namespace oct::test
