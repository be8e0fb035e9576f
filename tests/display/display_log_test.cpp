// What the display writes to the library log.
#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(DisplayLogTest, RenderingBeforeInitIsLoggedAndSkipped) {
  const DisplayRenderingHandle renderer = createDisplayRendering();
  EXPECT_EQ(logOf([&] { renderDisplay(renderer); }),
            "Renderer has not yet been initialized. Aborting rendering\n");
  EXPECT_EQ(pendingError(), "(none)");
  clearDisplayRendering(renderer);
}

// Gamma is set and not used, so compilers drop it; every other uniform is there.
TEST(DisplayLogGLTest, OnlyGammaIsMissing) {
  const OffscreenTargetHandle target = createOffscreenTarget();
  const DisplayRenderingHandle renderer = createDisplayRendering();
  EXPECT_EQ(logOf([&] { initDisplayRendering(renderer); }), "Uniform gamma was not found. \n");
  uninitDisplayRendering(renderer);
  clearDisplayRendering(renderer);
  clearOffscreenTarget(target);
}

}  // namespace
}  // namespace oct::test
