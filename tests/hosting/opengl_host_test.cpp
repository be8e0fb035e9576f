#include "hosting/host/opengl_host.h"

#include <set>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "oct_rendering/oct_rendering.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(OpenGLHostGLTest, OneHostWhileAnybodyHoldsItOrUntilFinished) {
  std::weak_ptr<OpenGLHost> weak;
  {
    const auto first = OpenGLHost::acquire();
    weak = first;
    EXPECT_EQ(OpenGLHost::acquire(), first);
  }
  EXPECT_TRUE(weak.expired());
  prepareOpenGL();
  weak = OpenGLHost::acquire();
  EXPECT_FALSE(weak.expired());
  prepareOpenGL();
  EXPECT_EQ(OpenGLHost::acquire(), weak.lock());
  finishOpenGL();
  EXPECT_TRUE(weak.expired());
  finishOpenGL();
  EXPECT_EQ(pending_error(), "(none)");
}

TEST(OpenGLHostGLTest, TasksRunOnItsThreadAndContextsOnAny) {
  const auto host = OpenGLHost::acquire();
  std::set<std::thread::id> threads;
  const auto note = [&] { threads.insert(std::this_thread::get_id()); };
  host->run([&] {
    note();
    host->run(note);
  });
  EXPECT_THROW(host->run([] { throw std::out_of_range("task"); }), std::out_of_range);
  host->run(note);
  EXPECT_EQ(threads.size(), 1U);
  EXPECT_FALSE(threads.contains(std::this_thread::get_id()));
  on_threads(4, [&](int) {
    for (int round = 0; round < 5; ++round) {
      gl::OpenGLContext context(host->window());
      context.makeCurrent();
      EXPECT_NE(glGetString(GL_VERSION), nullptr);
    }
  });
}

}  // namespace
}  // namespace oct::test
