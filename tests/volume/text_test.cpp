// Texts as the system's fonts draw them, and labels on the screen: every pixel is the rasteriser's, wherever the anchor
// lies and whatever the zoom.
#include <algorithm>
#include <cmath>

#include <glm/gtc/matrix_transform.hpp>
#include <gtest/gtest.h>

#include "gl/draw_state.h"
#include "hosting/offscreen/offscreen_target.h"
#include "support/gl_spy.h"
#include "support/reference/reference_camera.h"
#include "support/test_context.h"
#include "volume/text/font_renderer.h"
#include "volume/text/text_cache.h"
#include "volume/text/text_rasteriser.h"

namespace oct::test {
namespace {

constexpr int width = 200;
constexpr int height = 120;
constexpr glm::vec3 color{1.0F, 0.5F, 0.25F};
constexpr glm::vec3 background{0.1F, 0.2F, 0.6F};

const LabelView flat_view{glm::mat4(1.0F), glm::mat4(1.0F), glm::vec2(width, height)};

class FontRendererGLTest : public testing::Test {
 protected:
  Picture draw(FontRenderer& font, const std::vector<Label>& labels, const LabelView& view) {
    Picture picture(width, height);
    target_.begin_frame(width, height);
    glClearColor(background.r, background.g, background.b, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    font.show(labels);
    const gl::Blending blending;
    font.draw(color, view);
    target_.finish_frame(picture.bytes.data());
    return picture;
  }

  OffscreenTarget target_;
};

LabelView perspective_view(float zoom) {
  return {
      glm::perspective(glm::radians(5.0F + zoom), static_cast<float>(width) / static_cast<float>(height),
                       3.0F, 8.0F),
      glm::rotate(glm::translate(glm::mat4(1.0F), glm::vec3(0, 0, -5)), 0.4F, glm::vec3(0.6F, 0.8F, 0.0F)),
      glm::vec2(width, height)};
}

// Each text's pixels from the lower left corner on, which is the anchor's projection plus the offset.
Picture expected(int size, const std::vector<Label>& labels, const LabelView& view) {
  TextRasteriser upright(size, false);
  TextRasteriser emphasised(size, true);
  Picture picture(width, height);
  picture.for_each([&](int x, int y) { set_pixel(picture, x, y, glm::dvec3(background)); });
  for (const Label& label : labels) {
    const TextPicture text = (label.text.emphasis ? emphasised : upright).rasterise(label.text.text);
    const glm::vec4 clip = view.projection * view.modelview * glm::vec4(label.anchor, 1.0F);
    const glm::vec2 corner = (glm::vec2(clip) / clip.w + 1.0F) * 0.5F * view.viewport + label.offset;
    picture.for_each([&](int x, int y) {
      const int column = static_cast<int>(std::floor(static_cast<float>(x) + 0.5F - corner.x));
      const int row = static_cast<int>(std::floor(static_cast<float>(y) + 0.5F - corner.y));
      if (column < 0 || column >= text.width || row < 0 || row >= text.height) return;
      const int mask = text.pixels[static_cast<std::size_t>(row * text.width + column) * 4];
      set_pixel(picture, x, y, glm::dvec3(background) + glm::dvec3(color - background) * (mask / 255.0));
    });
  }
  return picture;
}

TEST_F(FontRendererGLTest, LabelsAreDrawnPixelByPixel) {
  const auto expect_drawn = [this](int size, const Label& label, const LabelView& view) {
    FontRenderer font(size);
    EXPECT_TRUE(agree(draw(font, {label}, view), expected(size, {label}, view))) << label.text.text;
  };
  for (const float zoom : {20.0F, 40.0F, 75.0F}) {
    for (const glm::vec2 offset : {glm::vec2(0.0F), glm::vec2(-31.0F, 7.0F)})
      expect_drawn(18, {{"0.25 mm"}, {0.31F, -0.12F, 0.43F}, offset}, perspective_view(zoom));
  }
  // Cut by the viewport.
  for (const glm::vec3 anchor : {glm::vec3(-1.0F, -1.0F, 0.0F), glm::vec3(0.707F, 0.871F, 0.0F)})
    expect_drawn(31, {{"depth (mm)", true}, anchor, {-7.25F, -5.0F}}, flat_view);

  // The depth of the anchor counts.
  glClearDepth(0.5);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_LEQUAL);
  expect_drawn(20, {{"9"}, {0.004F, 0.0F, -0.5F}, {}}, flat_view);
  FontRenderer font(20);
  const Picture nothing = expected(20, {}, flat_view);
  EXPECT_TRUE(agree(draw(font, {{{"9"}, {0.004F, 0.0F, 0.5F}, {}}}, flat_view), nothing));
  EXPECT_EQ(font.size({"9"}).y, TextRasteriser(20, false).rasterise("9").height);
  EXPECT_EQ(font.size({""}), glm::ivec2(0));
  EXPECT_TRUE(agree(draw(font, {{{""}, {}, {}}}, flat_view), nothing));
  glDisable(GL_DEPTH_TEST);
  glClearDepth(1.0);
}

// More texts than one row of the atlas holds, and other ones in the next frame.
TEST_F(FontRendererGLTest, ManyLabelsAreOneDrawAndUploadedOnce) {
  FontRenderer font(12);
  GlSpy spy;
  const struct {
    int first, offset, textures, buffers;
  } frames[] = {{0, 0, 1, 1}, {0, 0, 0, 0}, {0, 1, 0, 1}, {15, 1, 1, 1}, {0, 0, 1, 1}};
  for (const auto& [first, offset, textures, buffers] : frames) {
    std::vector<Label> labels;
    for (int i = 0; i < 30; ++i) {
      const std::string text = std::to_string((first + i) * 1234567);
      labels.push_back(
          {{text, i % 2 == 1}, {-1.0F, -1.0F, 0.0F}, glm::vec2(i % 3 * 66 + offset, i / 3 * 12)});
    }
    spy.forget_calls();
    EXPECT_TRUE(agree(draw(font, labels, flat_view), expected(12, labels, flat_view)));
    EXPECT_EQ(spy.calls("glDrawArrays"), 1);
    EXPECT_EQ(spy.calls("glTexImage2D"), textures);
    EXPECT_EQ(spy.calls("glBufferData"), buffers);
  }
}

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

// A range that is animated shows other numbers in every frame.
TEST(TextCacheTest, TextsThatNobodyAsksForAnyMoreAreForgotten) {
  TextCache cache(14, false);
  const TextPicture* const lasting = &cache.picture("0");
  for (int i = 1; i < 300; ++i) {
    cache.picture(std::to_string(i));
    EXPECT_EQ(&cache.picture("0"), lasting) << "rasterised once while it is in use";
    EXPECT_EQ(cache.count(), std::min<std::size_t>(static_cast<std::size_t>(i) + 1, TextCache::most_texts));
  }
}

TEST(TextRasteriserTest, LinesAreAsHighAsTheFontAndAsWideAsTheText) {
  for (const int size : {10, 18, 33}) {
    const TextPicture picture = TextRasteriser(size, false).rasterise("depth (mm)");
    EXPECT_NEAR(picture.height, size, 1);
    EXPECT_EQ(picture.pixels.size(), static_cast<std::size_t>(picture.width * picture.height * 4));
  }
  TextRasteriser rasteriser(20, false);
  const auto width_of = [&](const char* text) { return rasteriser.rasterise(text).width; };
  const int one = width_of("1");
  EXPECT_NEAR(one, 13, 6);
  EXPECT_EQ(width_of("7"), one) << "figures are as wide as each other, so that labels do not jump";
  EXPECT_NEAR(width_of("1111"), 4 * one, 3);
  EXPECT_GT(width_of("mm"), 2 * one);
  EXPECT_GT(width_of("x & y"), width_of("x  y") + 5) << "an ampersand is a character";
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
