#include "hosting/host/opengl_host.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(OpenGLHostGLTest, OneHostWhileAnybodyHoldsIt) {
  std::weak_ptr<OpenGLHost> weak;
  {
    const auto first = OpenGLHost::acquire();
    weak = first;
    EXPECT_EQ(OpenGLHost::acquire(), first);
  }
  EXPECT_TRUE(weak.expired());
}

TEST(OpenGLHostGLTest, PreparedUntilFinished) {
  prepareOpenGL();
  const std::weak_ptr<OpenGLHost> weak = OpenGLHost::acquire();
  EXPECT_FALSE(weak.expired());
  prepareOpenGL();
  EXPECT_EQ(OpenGLHost::acquire(), weak.lock());
  finishOpenGL();
  EXPECT_TRUE(weak.expired());
  finishOpenGL();
  EXPECT_EQ(pendingError(), "(none)");
}

TEST(OpenGLHostGLTest, TasksRunOnItsThreadAndThrowToTheCaller) {
  const auto host = OpenGLHost::acquire();
  std::thread::id first, second, nested;
  host->run([&] {
    first = std::this_thread::get_id();
    host->run([&] { nested = std::this_thread::get_id(); });
  });
  EXPECT_THROW(host->run([] { throw std::out_of_range("task"); }), std::out_of_range);
  host->run([&] { second = std::this_thread::get_id(); });
  EXPECT_NE(first, std::this_thread::get_id());
  EXPECT_EQ(first, second);
  EXPECT_EQ(first, nested);
}

TEST(OpenGLHostGLTest, ContextsOfItsWindowWorkOnManyThreads) {
  const auto host = OpenGLHost::acquire();
  onThreads(4, [&](int) {
    for (int round = 0; round < 5; ++round) {
      gl::OpenGLContext context(host->window());
      context.makeCurrent();
      EXPECT_NE(glGetString(GL_VERSION), nullptr);
    }
  });
}

}  // namespace
}  // namespace oct::test
