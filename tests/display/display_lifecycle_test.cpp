// Renderers made and freed many times leave nothing behind.

#include "support/reference/display_reference.h"
#include "support/gl_spy.h"
#include "support/process_memory.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class DisplayLifecycleGLTest : public testing::Test {
 protected:
  DisplayLifecycleGLTest() : target_(createOffscreenTarget()) {
    scene_.image = testImage(300, 200);
    scene_.firstBlur = scene_.pepper = scene_.secondBlur = true;
    scene_.overlayImage = testImage(100, 100, 3);
    scene_.overlays.resize(OCT_DISPLAY_OVERLAYS);
  }
  ~DisplayLifecycleGLTest() override { clearOffscreenTarget(target_); }

  void frameOf(DisplayRenderingHandle renderer) const {
    beginOffscreenFrame(target_, 64, 64);
    renderDisplay(renderer);
    finishOffscreenFrame(target_, nullptr);
  }

  DisplayRenderingHandle drawnOnce() const {
    const DisplayRenderingHandle renderer = createDisplayRendering();
    initDisplayRendering(renderer);
    apply(scene_, renderer);
    frameOf(renderer);
    return renderer;
  }

  void liveOnce() const {
    const DisplayRenderingHandle renderer = drawnOnce();
    uninitDisplayRendering(renderer);
    clearDisplayRendering(renderer);
  }

  const OffscreenTargetHandle target_;
  Scene scene_;
};

TEST_F(DisplayLifecycleGLTest, FiveHundredLivesAreFlat) {
  for (int i = 0; i < 50; ++i) liveOnce();  // caches of the driver and of the allocator fill
  GlSpy spy;
  const std::size_t memory = residentMemory();
  for (int i = 0; i < 500; ++i) liveOnce();
  EXPECT_EQ(spy.liveObjects(), 3U);  // the target's framebuffer and renderbuffers
  // One leaked image of 300 x 200 floats a life would be 120 MB.
  if (measuresMemory) {
    EXPECT_LT(residentMemory(), memory + 12'000'000);
  }
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(DisplayLifecycleGLTest, SecondRendererCompilesNothing) {
  liveOnce();
  GlSpy spy;
  liveOnce();
  EXPECT_EQ(spy.calls("glCompileShader"), 0);
  EXPECT_EQ(spy.calls("glLinkProgram"), 0);
  EXPECT_EQ(spy.calls("glGetProgramiv(GL_LINK_STATUS)"), 0);
  EXPECT_EQ(spy.calls("glProgramBinary"), 7);  // display, overlay, five filters
}

TEST_F(DisplayLifecycleGLTest, ColourMapIsUploadedOncePerChange) {
  const DisplayRenderingHandle renderer = drawnOnce();
  GlSpy spy;
  frameOf(renderer);
  EXPECT_EQ(spy.calls("glTexImage1D"), 0);
  setDisplayColormap(renderer, scene_.colormap.data(), static_cast<int>(scene_.colormap.size()));
  frameOf(renderer);
  frameOf(renderer);
  EXPECT_EQ(spy.calls("glTexImage1D"), 1);
  uninitDisplayRendering(renderer);
  clearDisplayRendering(renderer);
}

TEST_F(DisplayLifecycleGLTest, ForgottenUninitDeletesNothingInAnotherContext) {
  const DisplayRenderingHandle renderer = drawnOnce();
  const OffscreenTargetHandle other = createOffscreenTarget();
  GlSpy spy;
  clearDisplayRendering(renderer);
  EXPECT_EQ(spy.calls("glDeleteProgram"), 0);
  EXPECT_EQ(spy.calls("glDeleteTextures"), 0);
  clearOffscreenTarget(other);
}

}  // namespace
}  // namespace oct::test
