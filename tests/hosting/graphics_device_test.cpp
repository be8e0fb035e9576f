// What a loop tells when the graphics device behind it is gone.

#include <tuple>

#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

std::atomic<GLenum> status{GL_NO_ERROR};

GLenum GLAPIENTRY reset_status() {
  return status.exchange(GL_NO_ERROR);  // told once, as drivers do
}

// What the context has to ask with.
auto query() {
  return std::tie(__GLEW_VERSION_4_5, __GLEW_KHR_robustness, __GLEW_ARB_robustness,
                  __glewGetGraphicsResetStatus, __glewGetGraphicsResetStatusARB);
}
using Query = std::tuple<GLboolean, GLboolean, GLboolean, PFNGLGETGRAPHICSRESETSTATUSPROC,
                         PFNGLGETGRAPHICSRESETSTATUSARBPROC>;

constexpr const char* removed = "The graphics device was removed. ";

class GraphicsResetGLTest : public LoopGLTest {};

// The next loop is as good as new. A frame that fails of the reset does not hide it.
TEST_P(GraphicsResetGLTest, EndsTheLoopAndNotTheNext) {
  const struct {
    bool core, khr, arb, frame_fails, in_snapshot;
    GLenum status;
    const char* reason;
  } resets[] = {
      {true, false, false, false, false, GL_GUILTY_CONTEXT_RESET_ARB, "by something this context drew"},
      {false, true, false, true, false, GL_INNOCENT_CONTEXT_RESET_ARB, "not by this context"},
      {false, false, true, false, true, GL_UNKNOWN_CONTEXT_RESET_ARB, "for an unknown reason"},
      {false, false, false, false, false, GL_UNKNOWN_CONTEXT_RESET_ARB, nullptr},  // nobody can tell
  };
  const TestContext loads_opengl;
  const Query before = query();
  for (const auto& reset : resets) {
    SCOPED_TRACE(reset.reason ? reset.reason : "no query");
    query() = Query(reset.core, reset.khr, reset.arb, reset.core || reset.khr ? reset_status : nullptr,
                    reset.arb ? reset_status : nullptr);
    const std::string text = log_of([&] {
      const auto loop = make_recording_loop(8, 6);
      loop->request(1);
      returned_.at_least(1);
      loop->set_rendering_callback(RenderingCallback([&](std::uint32_t) {
        status = reset.status;
        if (reset.frame_fails) throw std::runtime_error("the frame failed");
      }));
      if (reset.in_snapshot) {
        Picture picture(3, 3);
        EXPECT_EQ(failure_of([&] { loop->snapshot(3, 3, picture.bytes.data()); }), removed);
      }
      loop->request(2);
      if (reset.reason) {
        EXPECT_EQ(errors_.at_least(1), std::vector<std::string>{removed});
      } else {
        returned_.at_least(2);
      }
    });
    EXPECT_EQ(contains(text, "OpenGL was reset "), reset.reason != nullptr);
    if (reset.reason) {
      EXPECT_TRUE(contains(text, reset.reason)) << text;
    }
    EXPECT_TRUE(contains(text, ", renderer: ")) << text;
    errors_.clear();
    returned_.clear();
    const auto next = make_recording_loop(8, 6);
    next->request(3);
    EXPECT_EQ(returned_.at_least(1), std::vector<std::uint32_t>{3});
    returned_.clear();
    status = GL_NO_ERROR;
  }
  query() = before;
  EXPECT_EQ(errors_.all(), std::vector<std::string>{});
}

OCT_EVERY_SHARING(GraphicsResetGLTest);

}  // namespace
}  // namespace oct::test
