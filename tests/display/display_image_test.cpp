// Whole pictures of the display, drawn through the exports, against the CPU reference.
#include <algorithm>

#include "gl/gl_names.h"
#include "support/opengl/foreign_state.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

Scene scene_of(int depth, int a_scans, int width, int height) {
  Scene scene;
  scene.image = test_image(depth, a_scans);
  scene.width = width;
  scene.height = height;
  scene.colormap = opaque_colors(256);
  return scene;
}

struct Case {
  const char* name;
  Scene scene;
  void (*change)(Scene& scene) = [](Scene&) {};
  Tolerance tolerance = {};
};

std::vector<Case> cases() {
  const Scene odd = scene_of(97, 131, 131, 97);
  const Scene even = scene_of(128, 64, 160, 200);
  return {
      {"OneSamplePerPixel", odd},
      {"OneSampleOnePixel", scene_of(1, 1, 1, 1)},
      {"OddSizesEnlarged", scene_of(31, 17, 203, 119)},
      {"OddSizesReduced", scene_of(333, 511, 101, 103)},
      {"ReductionTwo", scene_of(200, 300, 150, 100)},
      {"ReductionTwoPointNineAveragesTwo", scene_of(290, 580, 200, 100)},
      {"ReductionFour", scene_of(2048, 256, 64, 512)},
      {"ReductionAlongOneAxisOnly", scene_of(1024, 50, 75, 128)},
      {"Flipped", odd, [](Scene& s) { s.flip = true; }},
      {"FlippedAndReducedByFour", scene_of(400, 800, 200, 100), [](Scene& s) { s.flip = true; }},
      {"LowerAboveUpper", odd, [](Scene& s) { s.lower = 0.9, s.upper = 0.2; }},
      {"NarrowBoundariesSaturateAtBothEnds", odd, [](Scene& s) { s.lower = 0.4, s.upper = 0.6; }},
      {"TwoColours", odd,
       [](Scene& s) {
         s.colormap = {0xFF2040C0U, 0xFFE0FF10U};
       }},
      {"OneColour", odd, [](Scene& s) { s.colormap.assign(1, 0xFF336699U); }},
      {"TranslucentColourMap", odd,
       [](Scene& s) {
         s.colormap = {0x00102030U, 0x80F0E0D0U};
       }},
      {"FirstBlur", even, [](Scene& s) { s.first_blur = true; }},
      {"SecondBlur", even, [](Scene& s) { s.second_blur = true; }},
      {"BothBlurs", odd, [](Scene& s) { s.first_blur = s.second_blur = true; }},
      {"Pepper", odd, [](Scene& s) { s.pepper = true; }},
      {"PepperBetweenBlursReduced", scene_of(301, 205, 100, 150),
       [](Scene& s) { s.first_blur = s.pepper = s.second_blur = true; }},
      {"OverlayWithThreshold", odd,
       [](Scene& s) {
         s.overlay_image = test_image(97, 131, 7), s.threshold = 0.5;
         s.overlays = {{{0x00FF0000U, 0xC000FFFFU}, 0.1, 0.8}};
       }},
      {"OverlayOfOtherSizeFlippedOverFilteredImage", even,
       [](Scene& s) {
         s.flip = s.pepper = true;
         s.overlay_image = test_image(40, 90, 9), s.threshold = 0.33;
         s.overlays = {{opaque_colors(16), 0.0, 1.0}};
       }},
      {"EightOverlays",
       scene_of(60, 80, 80, 60),
       [](Scene& s) {
         s.overlay_image = test_image(60, 80, 5), s.threshold = 0.2;
         for (int i = 0; i < OCT_DISPLAY_OVERLAYS; ++i) {
           // Each overlay colours a band of its own.
           const std::uint32_t color = 0x60000000U | 0x1F3B57U * static_cast<unsigned>(i + 1);
           s.overlays.push_back({{color & 0xFFFFFFU, color}, i / 8.0, (i + 1) / 8.0});
         }
       },
       {.nearly = 2}},  // eight times rounded to the levels of the target
  };
}

// One renderer through many settings: nothing of an earlier frame may show in a later one.
TEST(DisplayImageGLTest, EqualsReference) {
  const DisplayStage stage;
  for (auto& [name, scene, change, tolerance] : cases()) {
    change(scene);
    EXPECT_TRUE(agree(stage.draw(scene), reference_picture(scene), tolerance)) << name;
    EXPECT_EQ(pending_error(), "(none)");
  }
}

// Filters take four samples at once: their rims, with one to four samples in the last texel.
TEST(DisplayImageGLTest, FiltersOfSmallImages) {
  const DisplayStage stage;
  for (int depth = 1; depth <= 9; ++depth) {
    for (const int a_scans : {1, 2, 7}) {
      Scene scene = scene_of(depth, a_scans, a_scans, depth);
      for (const int filters : {1, 2, 3, 7}) {
        scene.first_blur = (filters & 1) != 0;
        scene.pepper = (filters & 2) != 0;
        scene.second_blur = (filters & 4) != 0;
        EXPECT_TRUE(agree(stage.draw(scene), reference_picture(scene))) << depth << " x " << a_scans;
      }
    }
  }
  EXPECT_EQ(pending_error(), "(none)");
}

Scene scene_of_everything() {
  Scene scene = scene_of(64, 96, 48, 32);
  scene.first_blur = scene.pepper = true;
  scene.overlay_image = test_image(90, 70, 3);
  scene.overlays = {{{0x40FFFFFFU, 0xA00000FFU}, 0.0, 1.0}};
  return scene;
}

TEST(DisplayImageGLTest, NothingThatTheClientSetShowsOrChanges) {
  const Scene scene = scene_of_everything();
  for (const int frames : {1, 3}) {  // drawn, and shown again
    const DisplayStage stage;
    const Picture good = stage.draw(scene);
    EXPECT_TRUE(agree(good, reference_picture(scene)));
    expect_same_whatever_the_client_sets(stage.target, good, [&] {
      uninitDisplayRendering(stage.renderer);
      initDisplayRendering(stage.renderer);  // so that everything is uploaded again
      for (int i = 0; i < frames; ++i) renderDisplay(stage.renderer);
    });
  }
  EXPECT_EQ(pending_error(), "(none)");
}

// The picture fills the viewport and nothing else; the rest of the target has the background
// colour, or what the client's scissor spares.
TEST(DisplayImageGLTest, ViewportAndScissorOfTheClient) {
  const Scene scene = scene_of_everything();
  const DisplayStage stage;
  apply(scene, stage.renderer);
  setBackgroundColor(stage.renderer, 0x00FF8000);
  const std::array<int, 4> background{0, 128, 255, 255};
  for (const bool scissor : {false, false, false, true, true}) {  // the kept picture as well
    Picture whole(80, 60);
    beginOffscreenFrame(stage.target, 80, 60);
    glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glViewport(20, 10, scene.width, scene.height);
    glScissor(20, 10, scene.width, scene.height);
    if (scissor) glEnable(GL_SCISSOR_TEST);
    renderDisplay(stage.renderer);
    glDisable(GL_SCISSOR_TEST);
    finishOffscreenFrame(stage.target, whole.bytes.data());
    Picture shown(scene.width, scene.height);
    shown.for_each([&](int x, int y) { std::copy_n(whole.pixel(20 + x, 10 + y), 4, shown.pixel(x, y)); });
    EXPECT_TRUE(agree(shown, reference_picture(scene)));
    for (const auto& [x, y] : {std::pair{0, 0}, {19, 20}, {68, 20}, {40, 9}, {40, 42}, {79, 59}}) {
      EXPECT_EQ(whole.bgra(x, y), scissor ? (std::array<int, 4>{0, 0, 0, 0}) : background);
    }
  }
  Picture empty(4, 4);
  beginOffscreenFrame(stage.target, 4, 4);
  glViewport(0, 0, 0, 0);
  renderDisplay(stage.renderer);
  finishOffscreenFrame(stage.target, empty.bytes.data());
  empty.for_each([&](int x, int y) { EXPECT_EQ(empty.bgra(x, y), background); });
  EXPECT_EQ(pending_error(), "(none)");
}

// A kept picture has eight bits a channel: where the target has more, each frame is drawn.
TEST(DisplayImageGLTest, ATargetOfFloatsKeepsItsPrecision) {
  const DisplayStage stage;
  apply(scene_of_everything(), stage.renderer);
  beginOffscreenFrame(stage.target, 48, 32);
  const gl::Renderbuffer color = gl::Renderbuffer::create();
  glBindRenderbuffer(GL_RENDERBUFFER, color.get());
  glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA32F, 48, 32);
  glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color.get());
  GLint target = 0;
  glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &target);
  std::vector<float> frames[3];
  for (auto& pixels : frames) {
    pixels.resize(48 * 32);
    renderDisplay(stage.renderer);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(target));
    glReadPixels(0, 0, 48, 32, GL_RED, GL_FLOAT, pixels.data());
    EXPECT_EQ(pixels, frames[0]);
  }
  finishOffscreenFrame(stage.target, nullptr);
  EXPECT_EQ(pending_error(), "(none)");
}

}  // namespace
}  // namespace oct::test
