// The exports of the display: handles, misuse, and the functions that are meant to do nothing.
#include <functional>
#include <limits>

#include "support/display_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class DisplayApiTest : public testing::Test {
 protected:
  DisplayApiTest() : renderer_(createDisplayRendering()) {}
  ~DisplayApiTest() override { clearDisplayRendering(renderer_); }
  const DisplayRenderingHandle renderer_;
};

TEST_F(DisplayApiTest, EveryFunctionRefusesNull) {
  const float sample = 0.0F;
  const std::uint32_t color = 0;
  const std::pair<const char*, std::function<void()>> functions[] = {
      {"initDisplayRendering", [] { initDisplayRendering(nullptr); }},
      {"uninitDisplayRendering", [] { uninitDisplayRendering(nullptr); }},
      {"renderDisplay", [] { renderDisplay(nullptr); }},
      {"setDisplayData", [&] { setDisplayData(nullptr, 1, 1, &sample); }},
      {"setDisplayBounds", [] { setDisplayBounds(nullptr, 0, 1); }},
      {"clearDisplayData", [] { clearDisplayData(nullptr); }},
      {"setGammaCorrection", [] { setGammaCorrection(nullptr, 1.0F); }},
      {"setDisplayBlur", [] { setDisplayBlur(nullptr, 1, 1); }},
      {"setDisplayFlip", [] { setDisplayFlip(nullptr, 1); }},
      {"setDisplayDynamicReduction", [] { setDisplayDynamicReduction(nullptr, 1); }},
      {"setDisplayPepperFilter", [] { setDisplayPepperFilter(nullptr, 1); }},
      {"setDisplayMedianFilter", [] { setDisplayMedianFilter(nullptr, 1); }},
      {"setBackgroundColor", [] { setBackgroundColor(nullptr, 1); }},
      {"setDisplayColormap", [&] { setDisplayColormap(nullptr, &color, 1); }},
      {"setDisplayColoringBoundaries", [] { setDisplayColoringBoundaries(nullptr, 0, 1); }},
      {"setDisplayNumberOverlays", [] { setDisplayNumberOverlays(nullptr, 0, 1); }},
      {"setDisplayOverlayData", [&] { setDisplayOverlayData(nullptr, 1, 1, &sample); }},
      {"setDisplayOverlayColormap", [&] { setDisplayOverlayColormap(nullptr, 0, &color, 1); }},
      {"setDisplayOveralyColoringBoundaries", [] { setDisplayOveralyColoringBoundaries(nullptr, 0, 0, 1); }},
      {"setDisplayOveralyThreshold", [] { setDisplayOveralyThreshold(nullptr, 0); }},
  };
  for (const auto& [name, call] : functions) {
    testing::internal::CaptureStderr();
    call();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "An error occured: Invalid DisplayRenderingHandle specified. \n")
        << name;
    EXPECT_EQ(pendingError(), "Invalid DisplayRenderingHandle specified. ") << name;
  }
  clearDisplayRendering(nullptr);
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(DisplayApiTest, MisuseIsRefused) {
  const float sample = 0.0F;
  const std::uint32_t color = 0;
  constexpr int large = std::numeric_limits<int>::max();
  const std::pair<std::function<void()>, const char*> misuses[] = {
      {[&] { setDisplayData(renderer_, -1, 1, &sample); }, "Image sizes must not be negative. "},
      {[&] { setDisplayData(renderer_, 1, -1, &sample); }, "Image sizes must not be negative. "},
      {[&] { setDisplayData(renderer_, 4, 4, nullptr); }, "Image data must not be null. "},
      {[&] { setDisplayData(renderer_, large, large, &sample); }, "The image is too large. "},
      {[&] { setDisplayOverlayData(renderer_, 2, -3, &sample); }, "Image sizes must not be negative. "},
      {[&] { setDisplayOverlayData(renderer_, 2, 3, nullptr); }, "Image data must not be null. "},
      {[&] { setDisplayColormap(renderer_, &color, -1); }, "The number of colours must not be negative. "},
      {[&] { setDisplayColormap(renderer_, nullptr, 2); }, "Colour map data must not be null. "},
      {[&] { setDisplayOverlayColormap(renderer_, 8, &color, 1); }, "The overlay index must be from 0 to 7. "},
      {[&] { setDisplayOverlayColormap(renderer_, -1, &color, 1); }, "The overlay index must be from 0 to 7. "},
      {[&] { setDisplayOverlayColormap(renderer_, 0, nullptr, 1); }, "Colour map data must not be null. "},
      {[&] { setDisplayOveralyColoringBoundaries(renderer_, 8, 0, 1); }, "The overlay index must be from 0 to 7. "},
      {[&] { setDisplayMedianFilter(renderer_, 3); }, "Invalid enum value specified for MedianFilter. "},
      {[&] { setDisplayMedianFilter(renderer_, -1); }, "Invalid enum value specified for MedianFilter. "},
  };
  for (const auto& [call, message] : misuses) {
    call();
    EXPECT_EQ(pendingError(), message);
  }
}

TEST_F(DisplayApiTest, AcceptedWithoutEffect) {
  setDisplayMedianFilter(renderer_, 0);
  setDisplayMedianFilter(renderer_, 2);
  setDisplayData(renderer_, 0, 0, nullptr);
  setDisplayBounds(renderer_, 100, -100);
  setDisplayNumberOverlays(renderer_, 0, 1000);
  setDisplayNumberOverlays(renderer_, 0, -1);
  EXPECT_EQ(pendingError(), "(none)");
}

class DisplayApiGLTest : public testing::Test {
 protected:
  DisplayApiGLTest() : target_(createOffscreenTarget()), renderer_(createDisplayRendering()) {
    initDisplayRendering(renderer_);
  }
  ~DisplayApiGLTest() override {
    uninitDisplayRendering(renderer_);
    clearDisplayRendering(renderer_);
    clearOffscreenTarget(target_);
    EXPECT_EQ(pendingError(), "(none)");
  }

  Picture draw(const Scene& scene) {
    Picture picture(scene.width, scene.height);
    beginOffscreenFrame(target_, static_cast<unsigned>(scene.width), static_cast<unsigned>(scene.height));
    renderDisplay(renderer_);
    finishOffscreenFrame(target_, picture.bytes.data());
    return picture;
  }

  Scene scene() const {
    Scene result;
    result.image = testImage(40, 50);
    result.width = 50;
    result.height = 40;
    return result;
  }

  const OffscreenTargetHandle target_;
  const DisplayRenderingHandle renderer_;
};

TEST_F(DisplayApiGLTest, IgnoredSettingsLeaveThePicture) {
  const Scene expected = scene();
  apply(expected, renderer_);
  setGammaCorrection(renderer_, 5.0F);
  setDisplayDynamicReduction(renderer_, 0);
  setDisplayMedianFilter(renderer_, 2);
  setDisplayBounds(renderer_, 10, 20);
  clearDisplayData(renderer_);
  EXPECT_TRUE(agree(draw(expected), referencePicture(expected)));
}

TEST_F(DisplayApiGLTest, RefusedSettingsLeaveThePicture) {
  Scene expected = scene();
  expected.overlayImage = testImage(40, 50, 4);
  expected.overlays = {{{0x80FF0000U, 0x8000FF00U}, 0.0, 1.0}};
  apply(expected, renderer_);
  const float other[4] = {};
  const std::uint32_t color = 0;
  setDisplayData(renderer_, -2, 2, other);
  setDisplayData(renderer_, 2, 2, nullptr);
  setDisplayOverlayData(renderer_, 2, 2, nullptr);
  setDisplayColormap(renderer_, &color, -1);
  setDisplayColormap(renderer_, nullptr, 1);
  setDisplayOverlayColormap(renderer_, 0, nullptr, 1);
  EXPECT_NE(pendingError(), "(none)");
  EXPECT_TRUE(agree(draw(expected), referencePicture(expected)));
}

TEST_F(DisplayApiGLTest, NoImage) {
  draw(scene());
  EXPECT_EQ(pendingError(), "Cannot generate a texture of the required size. ");
  setDisplayData(renderer_, 0, 5, nullptr);
  draw(scene());
  EXPECT_EQ(pendingError(), "Cannot generate a texture of the required size. ");
  apply(scene(), renderer_);
  EXPECT_TRUE(agree(draw(scene()), referencePicture(scene())));
}

TEST_F(DisplayApiGLTest, OverlayWithoutImage) {
  apply(scene(), renderer_);
  setDisplayNumberOverlays(renderer_, 0, 1);
  draw(scene());
  EXPECT_EQ(pendingError(), "Cannot generate a texture of the required size. ");
}

TEST_F(DisplayApiGLTest, ImageLargerThanTheDriverAllows) {
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  const std::vector<float> samples(static_cast<std::size_t>(limit) + 1);
  setDisplayData(renderer_, 1, limit + 1, samples.data());
  testing::internal::CaptureStderr();
  draw(scene());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Warning max texture size is likely exceeded. \n"
            "An error occured: Cannot generate a texture of the required size. \n");
  EXPECT_EQ(pendingError(), "Cannot generate a texture of the required size. ");
}

TEST_F(DisplayApiGLTest, ColourMapLargerThanTheDriverAllows) {
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  apply(scene(), renderer_);
  const std::vector<std::uint32_t> colors(static_cast<std::size_t>(limit) + 1);
  setDisplayColormap(renderer_, colors.data(), limit + 1);
  draw(scene());
  EXPECT_EQ(pendingError(),
            "An OpenGL error in render: colormap changed occured: A numeric argument is out of range. The offending "
            "command is ignored and has no other side effect than to set the error flag. (GL_INVALID_VALUE)\n");
  apply(scene(), renderer_);
  EXPECT_TRUE(agree(draw(scene()), referencePicture(scene())));
}

// The background is not seen behind a picture that fills the viewport, unless its colours are translucent; here the
// viewport is empty.
TEST_F(DisplayApiGLTest, BackgroundColour) {
  apply(scene(), renderer_);
  setBackgroundColor(renderer_, 0x00FF8000);
  Picture picture(4, 4);
  beginOffscreenFrame(target_, 4, 4);
  glViewport(0, 0, 0, 0);
  renderDisplay(renderer_);
  finishOffscreenFrame(target_, picture.bytes.data());
  for (int i = 0; i < 16; ++i) {
    const std::uint8_t* const pixel = picture.pixel(i % 4, i / 4);
    EXPECT_EQ((std::array<int, 4>{pixel[0], pixel[1], pixel[2], pixel[3]}), (std::array<int, 4>{0, 128, 255, 255}));
  }
}

// A renderer may move to another context: what it held in the first is not mistaken for objects of the second.
TEST_F(DisplayApiGLTest, InitAgainInAnotherContext) {
  apply(scene(), renderer_);
  draw(scene());
  {
    const OffscreenTargetHandle other = createOffscreenTarget();
    initDisplayRendering(renderer_);
    Picture picture(50, 40);
    beginOffscreenFrame(other, 50, 40);
    renderDisplay(renderer_);
    finishOffscreenFrame(other, picture.bytes.data());
    EXPECT_TRUE(agree(picture, referencePicture(scene())));
    uninitDisplayRendering(renderer_);
    clearOffscreenTarget(other);
  }
  beginOffscreenFrame(target_, 1, 1);  // makes the first context current again
  initDisplayRendering(renderer_);
  EXPECT_TRUE(agree(draw(scene()), referencePicture(scene())));
}

}  // namespace
}  // namespace oct::test
