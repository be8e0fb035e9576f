// What hosting writes to the log.
#include <gtest/gtest.h>

#include "gl/gl.h"
#include "hosting/functors.h"
#include "hosting/host_buffer_object.h"
#include "hosting/opengl_control_loop.h"
#include "support/gl_spy.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

TEST(HostingLogTest, ImageReadyWithoutFunctionWarns) {
  const std::string text = logOf([] { ImageReadyCallback{nullptr}(1, 2, 3, nullptr); });
  EXPECT_TRUE(contains(text, "Warning: returning image withoug callback being specified. \n")) << text;
}

class HostingLogGLTest : public GLTest {};

TEST_F(HostingLogGLTest, ReasonOfAFailedTarget) {
  HostBufferObject buffer(0);
  GlSpy spy;
  spy.failNext("glCheckFramebufferStatus", 1, GL_FRAMEBUFFER_UNSUPPORTED);
  const std::string text = logOf([&] { EXPECT_THROW(buffer.resize(6, 6), std::runtime_error); });
  EXPECT_TRUE(contains(text, "An error occured when creating render target: GL_FRAMEBUFFER_UNSUPPORTED\n"))
      << text;
}

TEST(ControlLoopLogGLTest, EndsOfALoop) {
  chooseSharing(SurfaceSharing::hostMemory);
  std::string text = logOf([] { const OpenGLControlLoop loop(nullptr, nullptr, nullptr); });
  const std::size_t finished = text.find("Rendering loop finished. \n");
  const std::size_t joined = text.find("background thread successfully joined. \n");
  EXPECT_NE(finished, std::string::npos) << text;
  EXPECT_NE(joined, std::string::npos) << text;
  EXPECT_LT(finished, joined);

  text = logOf([] {
    const OpenGLControlLoop loop(functor([] { throw std::runtime_error("broken"); }), nullptr, nullptr);
  });
  EXPECT_TRUE(contains(text, "Rendering loop: broken\n")) << text;
  EXPECT_FALSE(contains(text, "Rendering loop finished. ")) << text;
  text = logOf([] { const OpenGLControlLoop loop(functor([] { throw 1; }), nullptr, nullptr); });
  EXPECT_TRUE(contains(text, "Rendering loop, unknown error.\n")) << text;
}

}  // namespace
}  // namespace oct::test
