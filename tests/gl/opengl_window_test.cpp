#include "gl/context/opengl_window.h"

#include <thread>

#include "gl/context/current_context.h"
#include "gl/gl.h"
#include "support/process_memory.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(OpenGLWindowGLTest, ContextComesAndGoes) {
  gl::OpenGLWindow window;
  EXPECT_EQ(gl::currentContext(), nullptr);
  const gl::ContextHandle context = window.createContext();
  window.makeCurrent(context);
  window.makeCurrent(context);
  EXPECT_EQ(gl::currentContext(), context);
  EXPECT_TRUE(gl::isContextCurrent());
  window.makeUncurrent();
  window.makeUncurrent();
  EXPECT_EQ(gl::currentContext(), nullptr);
  EXPECT_FALSE(gl::isContextCurrent());
  window.deleteContext(context);
}

TEST(OpenGLWindowGLTest, ContextOfAnotherThreadIsRefused) {
  gl::OpenGLWindow window;
  const gl::ContextHandle context = window.createContext();
  window.makeCurrent(context);
  std::thread([&] {
    testing::internal::CaptureStderr();
    const std::string message = failureOf([&] { window.makeCurrent(context); });
    EXPECT_EQ(message.find("An error occured. "), 0U);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), message + "\n");
  }).join();
  EXPECT_EQ(gl::currentContext(), context);
  window.makeUncurrent();
  window.deleteContext(context);
}

TEST(OpenGLWindowGLTest, SeveralWindowsAtOnce) {
  auto first = std::make_unique<gl::OpenGLWindow>();
  gl::OpenGLWindow second;
  first.reset();
  const gl::OpenGLWindow third;
  const gl::ContextHandle context = second.createContext();
  second.makeCurrent(context);
  EXPECT_TRUE(gl::isContextCurrent());
  second.makeUncurrent();
  second.deleteContext(context);
}

TEST(OpenGLWindowGLTest, WindowsOnSeveralThreads) {
  onThreads(6, [](int) {
    for (int n = 0; n < 5; ++n) {
      TestContext context;
      glClear(GL_COLOR_BUFFER_BIT);
      EXPECT_TRUE(gl::isContextCurrent());
    }
  });
}

TEST(OpenGLWindowGLTest, ManyLivesAreFlat) {
  for (int i = 0; i < 10; ++i) TestContext context;
  const std::size_t memory = residentMemory();
  for (int i = 0; i < 60; ++i) TestContext context;
  // A leaked context of the software renderer weighs more than a megabyte.
  if (measuresMemory) {
    EXPECT_LT(residentMemory(), memory + 30'000'000);
  }
}

}  // namespace
}  // namespace oct::test
