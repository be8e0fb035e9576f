// Renderers made and freed many times leave nothing behind.

#include "support/gl_spy.h"
#include "support/process_memory.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(DisplayLifecycleGLTest, ManyLivesAreFlat) {
  Scene scene;
  scene.image = test_image(300, 200);
  scene.first_blur = scene.pepper = scene.second_blur = true;
  scene.overlay_image = test_image(300, 200, 3);
  scene.overlays.resize(OCT_DISPLAY_OVERLAYS);
  const OffscreenTargetHandle target = createOffscreenTarget();
  const auto lives = [&](int count) {
    for (int i = 0; i < count; ++i) {
      const DisplayRenderingHandle renderer = createDisplayRendering();
      initDisplayRendering(renderer);
      apply(scene, renderer);
      beginOffscreenFrame(target, 64, 64);
      renderDisplay(renderer);
      finishOffscreenFrame(target, nullptr);
      uninitDisplayRendering(renderer);
      clearDisplayRendering(renderer);
    }
  };
  lives(50);  // caches of the driver and of the allocator fill
  GlSpy spy;
  const std::size_t memory = resident_memory();
  lives(1);
  EXPECT_EQ(spy.calls("glCompileShader"), 0);
  EXPECT_EQ(spy.calls("glLinkProgram"), 0);
  EXPECT_EQ(spy.calls("glGetProgramiv(GL_LINK_STATUS)"), 0);
  EXPECT_EQ(spy.calls("glProgramBinary"), 7);  // display, overlay, five filters
  lives(150);
  EXPECT_EQ(spy.live_objects(), 3U);  // the target's framebuffer and renderbuffers
  // One leaked image of 300 x 200 floats a life would be 36 MB.
  if (measures_memory) {
    EXPECT_LT(resident_memory(), memory + 12'000'000);
  }
  EXPECT_EQ(pending_error(), "(none)");
  clearOffscreenTarget(target);
}

}  // namespace
}  // namespace oct::test
