// What a loop tells when the graphics device behind it is gone.

#include <utility>

#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

std::atomic<GLenum> status{GL_NO_ERROR};

GLenum GLAPIENTRY reset_status() {
  return status.exchange(GL_NO_ERROR);  // told once, as drivers do
}

// What the context has to ask with, until the end of the test.
class ResetQuery {
 public:
  ResetQuery(bool core, bool khr, bool arb) {
    const TestContext loads_opengl;
    swap();
    __GLEW_VERSION_4_5 = core;
    __GLEW_KHR_robustness = khr;
    __GLEW_ARB_robustness = arb;
    __glewGetGraphicsResetStatus = core || khr ? reset_status : nullptr;
    __glewGetGraphicsResetStatusARB = arb ? reset_status : nullptr;
  }
  ~ResetQuery() {
    swap();
    status = GL_NO_ERROR;
  }
  ResetQuery(const ResetQuery&) = delete;
  ResetQuery& operator=(const ResetQuery&) = delete;

 private:
  void swap() {
    std::swap(core_, __GLEW_VERSION_4_5);
    std::swap(khr_, __GLEW_KHR_robustness);
    std::swap(arb_, __GLEW_ARB_robustness);
    std::swap(query_, __glewGetGraphicsResetStatus);
    std::swap(arb_query_, __glewGetGraphicsResetStatusARB);
  }

  GLboolean core_{}, khr_{}, arb_{};
  PFNGLGETGRAPHICSRESETSTATUSPROC query_{};
  PFNGLGETGRAPHICSRESETSTATUSARBPROC arb_query_{};
};

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
  for (const auto& reset : resets) {
    SCOPED_TRACE(reset.reason ? reset.reason : "no query");
    const ResetQuery query(reset.core, reset.khr, reset.arb);
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
  }
  EXPECT_EQ(errors_.all(), std::vector<std::string>{});
}

OCT_EVERY_SHARING(GraphicsResetGLTest);

}  // namespace
}  // namespace oct::test
