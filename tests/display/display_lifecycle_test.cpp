// Renderers made and freed many times leave nothing behind.

#include "support/reference/display_reference.h"
#include "support/gl_spy.h"
#include "support/process_memory.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(DisplayLifecycleGLTest, FiveHundredLivesAreFlat) {
  Scene scene;
  scene.image = testImage(300, 200);
  scene.firstBlur = scene.pepper = scene.secondBlur = true;
  scene.overlayImage = testImage(100, 100, 3);
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
  const std::size_t memory = residentMemory();
  lives(1);
  EXPECT_EQ(spy.calls("glCompileShader"), 0);
  EXPECT_EQ(spy.calls("glLinkProgram"), 0);
  EXPECT_EQ(spy.calls("glGetProgramiv(GL_LINK_STATUS)"), 0);
  EXPECT_EQ(spy.calls("glProgramBinary"), 7);  // display, overlay, five filters
  lives(500);
  EXPECT_EQ(spy.liveObjects(), 3U);  // the target's framebuffer and renderbuffers
  // One leaked image of 300 x 200 floats a life would be 120 MB.
  if (measuresMemory) {
    EXPECT_LT(residentMemory(), memory + 12'000'000);
  }
  EXPECT_EQ(pendingError(), "(none)");
  clearOffscreenTarget(target);
}

}  // namespace
}  // namespace oct::test
