// Whole pictures of the display, drawn through the exports, against the CPU reference.
#include <cmath>
#include <filesystem>

#include "support/reference/display_reference.h"
#include "support/npy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

std::vector<std::uint32_t> rainbow(std::size_t count) {
  std::vector<std::uint32_t> colors;
  for (std::size_t i = 0; i < count; ++i) {
    const double part = static_cast<double>(i) / static_cast<double>(count - 1);
    const auto channel = [&](double phase) {
      return static_cast<std::uint32_t>(127.5 + 127.5 * std::sin(6.0 * part + phase));
    };
    colors.push_back(channel(0.0) | channel(2.0) << 8 | channel(4.0) << 16 | 0xFF000000U);
  }
  return colors;
}

struct Case {
  const char* name;
  Scene scene;
  Tolerance tolerance = {};
};

Scene sceneOf(int depth, int aScans, int width, int height) {
  Scene scene;
  scene.image = testImage(depth, aScans);
  scene.width = width;
  scene.height = height;
  scene.colormap = rainbow(256);
  return scene;
}

template <class Change>
Scene with(Scene scene, Change&& change) {
  change(scene);
  return scene;
}

std::vector<Case> cases() {
  const Scene odd = sceneOf(97, 131, 131, 97);
  const Scene even = sceneOf(128, 64, 160, 200);
  std::vector<Case> all{
      {"OneSamplePerPixel", odd},
      {"OneSampleOnePixel", sceneOf(1, 1, 1, 1)},
      {"OddSizesEnlarged", sceneOf(31, 17, 203, 119)},
      {"OddSizesReduced", sceneOf(333, 511, 101, 103)},
      {"ReductionTwo", sceneOf(200, 300, 150, 100)},
      {"ReductionTwoPointNineAveragesTwo", sceneOf(290, 580, 200, 100)},
      {"ReductionFour", sceneOf(2048, 256, 64, 512)},
      {"ReductionAlongOneAxisOnly", sceneOf(1024, 50, 75, 128)},
      {"Flipped", with(odd, [](Scene& s) { s.flip = true; })},
      {"FlippedAndReducedByFour", with(sceneOf(400, 800, 200, 100), [](Scene& s) { s.flip = true; })},
      {"LowerAboveUpper", with(odd, [](Scene& s) { s.lower = 0.9, s.upper = 0.2; })},
      {"NarrowBoundariesSaturateAtBothEnds", with(odd, [](Scene& s) { s.lower = 0.4, s.upper = 0.6; })},
      {"TwoColours", with(odd,
                          [](Scene& s) {
                            s.colormap = {0xFF2040C0U, 0xFFE0FF10U};
                          })},
      {"OneColour", with(odd, [](Scene& s) { s.colormap = {0xFF336699U}; })},
      {"TranslucentColourMap", with(odd,
                                    [](Scene& s) {
                                      s.colormap = {0x00102030U, 0x80F0E0D0U};
                                    })},
      {"FirstBlur", with(even, [](Scene& s) { s.firstBlur = true; })},
      {"SecondBlur", with(even, [](Scene& s) { s.secondBlur = true; })},
      {"BothBlurs", with(odd, [](Scene& s) { s.firstBlur = s.secondBlur = true; })},
      {"Pepper", with(odd, [](Scene& s) { s.pepper = true; })},
      {"PepperBetweenBlursReduced",
       with(sceneOf(301, 205, 100, 150), [](Scene& s) { s.firstBlur = s.pepper = s.secondBlur = true; })},
  };
  Scene overlay = odd;
  overlay.overlayImage = testImage(97, 131, 7);
  overlay.threshold = 0.5;
  overlay.overlays = {{{0x00FF0000U, 0xC000FFFFU}, 0.1, 0.8}};
  all.push_back({"OverlayWithThreshold", overlay});

  overlay = even;
  overlay.flip = overlay.pepper = true;
  overlay.overlayImage = testImage(40, 90, 9);
  overlay.threshold = 0.33;
  overlay.overlays = {{rainbow(16), 0.0, 1.0}};
  all.push_back({"OverlayOfOtherSizeFlippedOverFilteredImage", overlay});

  overlay = sceneOf(60, 80, 80, 60);
  overlay.overlayImage = testImage(60, 80, 5);
  overlay.threshold = 0.2;
  for (int i = 0; i < OCT_DISPLAY_OVERLAYS; ++i) {
    // Each overlay colours a band of its own.
    const std::uint32_t color = 0x60000000U | 0x1F3B57U * static_cast<unsigned>(i + 1);
    overlay.overlays.push_back({{color & 0xFFFFFFU, color}, i / 8.0, (i + 1) / 8.0});
  }
  // Eight times rounded to the levels of the target.
  all.push_back({"EightOverlays", overlay, {.nearly = 2}});
  return all;
}

// One renderer through many settings: nothing of an earlier frame may show in a later one.
TEST(DisplayImageGLTest, EqualsReference) {
  const DisplayStage stage;
  for (const Case& each : cases()) {
    EXPECT_TRUE(agree(stage.draw(each.scene), referencePicture(each.scene), each.tolerance)) << each.name;
    EXPECT_EQ(pendingError(), "(none)");
  }
}

// A measurement of skin, reduced and enlarged at once; noise of that kind has no two equal neighbours.
TEST(DisplayImageGLTest, SkinEqualsReference) {
  const std::filesystem::path file = std::filesystem::path(OCT_SHARED_DATA) / "bscan_skin_thumb.npy";
  if (!std::filesystem::exists(file)) GTEST_SKIP() << "no recorded data beside the project: " << file;
  const std::vector<float> rows = readNpy<float>(file, "<f4");
  constexpr std::size_t depth = 512;
  constexpr std::size_t aScans = 1272;
  ASSERT_EQ(rows.size(), depth * aScans);
  Scene scene = sceneOf(512, 1272, 640, 700);
  for (std::size_t z = 0; z < depth; ++z) {
    for (std::size_t x = 0; x < aScans; ++x) scene.image.samples[x * depth + z] = rows[z * aScans + x];
  }
  scene.lower = 20.0;
  scene.upper = 180.0;
  const DisplayStage stage;
  for (const bool filtered : {false, true}) {
    scene.pepper = scene.secondBlur = filtered;
    EXPECT_TRUE(agree(stage.draw(scene), referencePicture(scene)));
  }
}

// What a client's context may have been left in must not show in the picture.
TEST(DisplayImageGLTest, ForeignOpenGLState) {
  Scene scene = sceneOf(90, 70, 70, 90);
  scene.firstBlur = scene.pepper = true;
  scene.overlayImage = testImage(90, 70, 3);
  scene.overlays = {{{0x40FFFFFFU, 0xA00000FFU}, 0.0, 1.0}};
  const DisplayStage stage;
  apply(scene, stage.renderer);
  Picture picture(scene.width, scene.height);
  beginOffscreenFrame(stage.target, 70, 90);
  glEnable(GL_DEPTH_TEST);
  glEnable(GL_BLEND);
  glBlendFunc(GL_ZERO, GL_ONE);
  glBlendEquation(GL_FUNC_REVERSE_SUBTRACT);
  glEnable(GL_CULL_FACE);
  glCullFace(GL_FRONT_AND_BACK);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 1000);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, 3);
  glActiveTexture(GL_TEXTURE5);
  GLuint buffer = 0;
  glGenBuffers(1, &buffer);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer);
  renderDisplay(stage.renderer);
  finishOffscreenFrame(stage.target, picture.bytes.data());
  glDeleteBuffers(1, &buffer);
  EXPECT_TRUE(agree(picture, referencePicture(scene)));
  EXPECT_EQ(pendingError(), "(none)");
}

// The picture fills the viewport and nothing else; the rest of the target has the background colour.
TEST(DisplayImageGLTest, ViewportInsideTheTarget) {
  const Scene scene = sceneOf(64, 96, 48, 32);
  const DisplayStage stage;
  apply(scene, stage.renderer);
  setBackgroundColor(stage.renderer, 0x00FF8000);
  Picture whole(80, 60);
  beginOffscreenFrame(stage.target, 80, 60);
  glViewport(20, 10, scene.width, scene.height);
  renderDisplay(stage.renderer);
  finishOffscreenFrame(stage.target, whole.bytes.data());

  Picture inside(scene.width, scene.height);
  for (int y = 0; y < scene.height; ++y) {
    std::copy_n(whole.pixel(20, 10 + y), scene.width * 4, inside.pixel(0, y));
  }
  EXPECT_TRUE(agree(inside, referencePicture(scene)));
  for (const auto& [x, y] : {std::pair{0, 0}, {19, 20}, {68, 20}, {40, 9}, {40, 42}, {79, 59}}) {
    EXPECT_EQ(whole.bgra(x, y), (std::array<int, 4>{0, 128, 255, 255}));
  }
}

}  // namespace
}  // namespace oct::test
