// The exports of the display: handles, misuse, and the functions that are meant to do nothing.
#include <limits>

#include "support/reference/display_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(DisplayApiTest, EveryFunctionRefusesNull) {
  expectNullRefused("Invalid DisplayRenderingHandle specified. ", initDisplayRendering,
                    uninitDisplayRendering, renderDisplay, setDisplayData, setDisplayBounds, clearDisplayData,
                    setGammaCorrection, setDisplayBlur, setDisplayFlip, setDisplayDynamicReduction,
                    setDisplayPepperFilter, setDisplayMedianFilter, setBackgroundColor, setDisplayColormap,
                    setDisplayColoringBoundaries, setDisplayNumberOverlays, setDisplayOverlayData,
                    setDisplayOverlayColormap, setDisplayOveralyColoringBoundaries,
                    setDisplayOveralyThreshold);
  clearDisplayRendering(nullptr);
  EXPECT_EQ(pendingError(), "(none)");
}

class DisplayApiGLTest : public testing::Test {
 protected:
  DisplayApiGLTest() {
    scene_.image = testImage(40, 50);
    scene_.width = 50;
    scene_.height = 40;
  }
  void TearDown() override { EXPECT_EQ(pendingError(), "(none)"); }
  Picture frame() const { return stage_.frame(50, 40); }

  Scene scene_;
  const DisplayStage stage_;
  const DisplayRenderingHandle renderer_ = stage_.renderer;
};

TEST_F(DisplayApiGLTest, MisuseIsRefusedAndLeavesThePicture) {
  scene_.overlayImage = testImage(40, 50, 4);
  scene_.overlays = {{{0x80FF0000U, 0x8000FF00U}, 0.0, 1.0}};
  apply(scene_, renderer_);
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
      {[&] { setDisplayOverlayColormap(renderer_, 8, &color, 1); },
       "The overlay index must be from 0 to 7. "},
      {[&] { setDisplayOverlayColormap(renderer_, -1, &color, 1); },
       "The overlay index must be from 0 to 7. "},
      {[&] { setDisplayOverlayColormap(renderer_, 0, nullptr, 1); }, "Colour map data must not be null. "},
      {[&] { setDisplayOveralyColoringBoundaries(renderer_, 8, 0, 1); },
       "The overlay index must be from 0 to 7. "},
      {[&] { setDisplayMedianFilter(renderer_, 3); }, "Invalid enum value specified for MedianFilter. "},
      {[&] { setDisplayMedianFilter(renderer_, -1); }, "Invalid enum value specified for MedianFilter. "},
  };
  for (const auto& [call, message] : misuses) {
    call();
    EXPECT_EQ(pendingError(), message);
  }
  EXPECT_TRUE(agree(frame(), referencePicture(scene_)));
}

TEST_F(DisplayApiGLTest, AcceptedWithoutEffect) {
  setDisplayMedianFilter(renderer_, 0);
  setDisplayMedianFilter(renderer_, 2);
  setDisplayData(renderer_, 0, 0, nullptr);
  setDisplayBounds(renderer_, 100, -100);
  setDisplayNumberOverlays(renderer_, 0, 1000);
  setDisplayNumberOverlays(renderer_, 0, -1);
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(DisplayApiGLTest, IgnoredSettingsLeaveThePicture) {
  apply(scene_, renderer_);
  setGammaCorrection(renderer_, 5.0F);
  setDisplayDynamicReduction(renderer_, 0);
  setDisplayMedianFilter(renderer_, 2);
  setDisplayBounds(renderer_, 10, 20);
  clearDisplayData(renderer_);
  EXPECT_TRUE(agree(frame(), referencePicture(scene_)));
}

TEST_F(DisplayApiGLTest, NoImage) {
  frame();
  EXPECT_EQ(pendingError(), "Cannot generate a texture of the required size. ");
  setDisplayData(renderer_, 0, 5, nullptr);
  frame();
  EXPECT_EQ(pendingError(), "Cannot generate a texture of the required size. ");
  EXPECT_TRUE(agree(stage_.draw(scene_), referencePicture(scene_)));
}

TEST_F(DisplayApiGLTest, OverlayWithoutImage) {
  apply(scene_, renderer_);
  setDisplayNumberOverlays(renderer_, 0, 1);
  frame();
  EXPECT_EQ(pendingError(), "Cannot generate a texture of the required size. ");
}

TEST_F(DisplayApiGLTest, ImageLargerThanTheDriverAllows) {
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  const std::vector<float> samples(static_cast<std::size_t>(limit) + 1);
  setDisplayData(renderer_, 1, limit + 1, samples.data());
  testing::internal::CaptureStderr();
  frame();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Warning max texture size is likely exceeded. \n"
            "An error occured: Cannot generate a texture of the required size. \n");
  EXPECT_EQ(pendingError(), "Cannot generate a texture of the required size. ");
}

TEST_F(DisplayApiGLTest, ColourMapLargerThanTheDriverAllows) {
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  apply(scene_, renderer_);
  const std::vector<std::uint32_t> colors(static_cast<std::size_t>(limit) + 1);
  setDisplayColormap(renderer_, colors.data(), limit + 1);
  frame();
  EXPECT_EQ(
      pendingError(),
      "An OpenGL error in render: colormap changed occured: A numeric argument is out of range. The "
      "offending "
      "command is ignored and has no other side effect than to set the error flag. (GL_INVALID_VALUE)\n");
  EXPECT_TRUE(agree(stage_.draw(scene_), referencePicture(scene_)));
}

// The background is not seen behind a picture that fills the viewport, unless its colours are translucent;
// here the viewport is empty.
TEST_F(DisplayApiGLTest, BackgroundColour) {
  apply(scene_, renderer_);
  setBackgroundColor(renderer_, 0x00FF8000);
  Picture picture(4, 4);
  beginOffscreenFrame(stage_.target, 4, 4);
  glViewport(0, 0, 0, 0);
  renderDisplay(renderer_);
  finishOffscreenFrame(stage_.target, picture.bytes.data());
  picture.forEach([&](int x, int y) {
    EXPECT_EQ(picture.bgra(x, y), (std::array<int, 4>{0, 128, 255, 255}));
  });
}

// A renderer may move to another context: what it held in the first is not mistaken for objects of the
// second.
TEST_F(DisplayApiGLTest, InitAgainInAnotherContext) {
  stage_.draw(scene_);
  {
    const OffscreenTargetHandle other = createOffscreenTarget();
    initDisplayRendering(renderer_);
    Picture picture(50, 40);
    beginOffscreenFrame(other, 50, 40);
    renderDisplay(renderer_);
    finishOffscreenFrame(other, picture.bytes.data());
    EXPECT_TRUE(agree(picture, referencePicture(scene_)));
    uninitDisplayRendering(renderer_);
    clearOffscreenTarget(other);
  }
  beginOffscreenFrame(stage_.target, 1, 1);  // makes the first context current again
  initDisplayRendering(renderer_);
  EXPECT_TRUE(agree(frame(), referencePicture(scene_)));
}

}  // namespace
}  // namespace oct::test
