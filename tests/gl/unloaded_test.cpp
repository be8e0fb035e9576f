// Using the library before any context has been current in the process.
#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(UnloadedTest, InitWithoutContext) {
  const DisplayRenderingHandle renderer = createDisplayRendering();
  testing::internal::CaptureStdout();
  initDisplayRendering(renderer);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Glew error: 1\nglewInit failed.\n");
  EXPECT_EQ(pending_error(), "Could not load OpenGL. ");
  EXPECT_FALSE(gl::glewInitialized());

  const VolumeRendererHandle volume = createVolumeRenderer();
  testing::internal::CaptureStdout();
  initializeVolumeRenderer(volume);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Glew error: 1\nglewInit failed.\n");
  EXPECT_EQ(pending_error(), "Failed to initialize OpenGL.");
  deleteVolumeRenderer(volume);
  EXPECT_EQ(pending_error(), "(none)");

  {
    // A first context that is too old, as a remote desktop's; then a good one.
    GlSpy spy;
    spy.answer(GL_MAJOR_VERSION, 2);
    EXPECT_EQ(failure_of([] { const TestContext old; }), "OpenGL 3.0 required. Version is currently 2.5");
    EXPECT_FALSE(gl::glewInitialized());
  }
  { const TestContext elsewhere; }
  EXPECT_TRUE(gl::glewInitialized());
  initDisplayRendering(renderer);
  EXPECT_EQ(pending_error(), "No OpenGL context is current on the calling thread. ");
  uninitDisplayRendering(renderer);
  EXPECT_EQ(pending_error(), "(none)");
  clearDisplayRendering(renderer);
}

}  // namespace
}  // namespace oct::test
