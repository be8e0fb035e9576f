#include "gl/context/opengl_window.h"

#include <thread>

#include "gl/context/current_context.h"
#include "gl/gl.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(OpenGLWindowGLTest, ContextComesAndGoes) {
  auto other = std::make_unique<gl::OpenGLWindow>();
  std::unique_ptr<gl::OpenGLWindow> window;
  EXPECT_EQ(log_of([&] { window = std::make_unique<gl::OpenGLWindow>(); }), "Creating hidden Window\n");
  other.reset();  // windows do not need each other
  const gl::OpenGLWindow third;
  EXPECT_EQ(gl::current_context(), nullptr);
  const gl::ContextHandle context = window->createContext();
  for (int i = 0; i < 2; ++i) window->makeCurrent(context);
  EXPECT_EQ(gl::current_context(), context);
  EXPECT_TRUE(gl::is_context_current());
  std::thread([&] {
    testing::internal::CaptureStderr();
    const std::string prefix = "An error occured. ";
    const std::string message = failure_of([&] { window->makeCurrent(context); });
    EXPECT_EQ(message.find(prefix), 0U);
    EXPECT_GT(message.size(), prefix.size()) << "the system's reason";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), message + "\n");
  }).join();
  EXPECT_EQ(gl::current_context(), context);
  for (int i = 0; i < 2; ++i) window->makeUncurrent();
  EXPECT_EQ(gl::current_context(), nullptr);
  EXPECT_FALSE(gl::is_context_current());
  window->deleteContext(context);
}

}  // namespace
}  // namespace oct::test
