#include <future>
#include <stdexcept>

#include "hosting/surfaces/host_buffer_object.h"
#include "support/gl_spy.h"
#include "support/surfaces.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

using namespace std::chrono_literals;

class HostBufferGLTest : public GLTest {
 protected:
  void draw(std::int32_t id) {
    buffer_.prepare(id);
    draw_pattern(static_cast<std::uint32_t>(id));
    buffer_.finish();
  }

  // Completes the frame and compares it with that id's.
  void expect_mapped(std::uint32_t id, int width, int height) {
    EXPECT_EQ(buffer_.map(), nullptr);  // the read-back has only been asked for
    EXPECT_TRUE(buffer_.complete(true));
    const auto mapped = buffer_.map();
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(mapped->index(), id);
    EXPECT_EQ(mapped->width(), static_cast<std::uint32_t>(width));
    EXPECT_EQ(mapped->height(), static_cast<std::uint32_t>(height));
    EXPECT_TRUE(agree(host_surface_picture(mapped->surface()), pattern_picture(id, width, height), exact));
  }

  HostBufferObject buffer_{2};
};

TEST_F(HostBufferGLTest, AFrameIsMappedFromItsCompletionToTheNext) {
  EXPECT_EQ(buffer_.map(), nullptr);
  EXPECT_TRUE(buffer_.complete(true));
  buffer_.resize(13, 9);
  draw(0x00C0FFEE);
  expect_mapped(0x00C0FFEE, 13, 9);
  EXPECT_EQ(buffer_.buffer_id(), 2);
  buffer_.prepare(2);
  draw_pattern(2);
  // Whatever the client leaves bound.
  glPixelStorei(GL_PACK_ALIGNMENT, 8);
  glPixelStorei(GL_PACK_ROW_LENGTH, 64);
  glPixelStorei(GL_PACK_SKIP_PIXELS, 3);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  buffer_.finish();
  expect_mapped(2, 13, 9);
}

TEST_F(HostBufferGLTest, AViewHoldsTheLock) {
  buffer_.resize(4, 4);
  draw(1);
  buffer_.complete(true);
  auto mapped = buffer_.map();
  auto other = std::async(std::launch::async, [&] { buffer_.lock(); });
  EXPECT_EQ(other.wait_for(20ms), std::future_status::timeout);
  mapped.reset();
  other.get();
}

TEST_F(HostBufferGLTest, AFailedResizeIsRepairedByTheNextAndNothingIsLost) {
  GlSpy spy;
  for (const auto& [function, error, reason] :
       {std::tuple{"glRenderbufferStorage", GL_OUT_OF_MEMORY, "There is not enough memory"},
        {"glBufferData", GL_OUT_OF_MEMORY, "There is not enough memory"},
        {"glCheckFramebufferStatus", GL_FRAMEBUFFER_UNSUPPORTED, "GL_FRAMEBUFFER_UNSUPPORTED\n"}}) {
    buffer_.resize(4, 4);
    spy.fail_next(function, 1, static_cast<GLenum>(error));
    const std::string text = log_of([&] { EXPECT_THROW(buffer_.resize(6, 6), std::runtime_error); });
    EXPECT_TRUE(contains(text, std::string("An error occured when creating render target: ") + reason))
        << text;
    EXPECT_EQ(buffer_.width(), 0U);
    buffer_.resize(6, 6);
    draw(9);
    expect_mapped(9, 6, 6);
    EXPECT_EQ(spy.live_objects(), 4U);  // framebuffer, two renderbuffers, pixel buffer
  }
  buffer_.release();
  EXPECT_EQ(spy.live_objects(), 0U);
}

GLenum wait_answer = 0;

TEST_F(HostBufferGLTest, AGpuThatIsNotDone) {
  buffer_.resize(4, 4);
  const auto original = __glewClientWaitSync;
  for (const GLenum failure : {GLenum{GL_TIMEOUT_EXPIRED}, GLenum{GL_WAIT_FAILED}}) {
    wait_answer = failure;
    draw(1);
    __glewClientWaitSync = [](GLsync, GLbitfield, GLuint64) { return wait_answer; };
    if (failure == GL_TIMEOUT_EXPIRED) {
      EXPECT_FALSE(buffer_.complete(false));
    }
    EXPECT_EQ(failure_of([&] { buffer_.complete(true); }), "Rendering could not finish within one second. ");
    __glewClientWaitSync = original;
    EXPECT_EQ(buffer_.map(), nullptr);
  }
  draw(5);
  expect_mapped(5, 4, 4);
}

// Neither a frame nor its failure vanishes.
TEST_F(HostBufferGLTest, WhereOpenGLGivesNoFenceOrNoMemory) {
  buffer_.resize(5, 4);
  const auto fence = std::exchange(__glewFenceSync, [](GLenum, GLbitfield) -> GLsync { return nullptr; });
  const std::string text = log_of([&] { draw(3); });
  __glewFenceSync = fence;
  EXPECT_TRUE(contains(text, "OpenGL gave no fence")) << text;
  expect_mapped(3, 5, 4);

  const auto map = __glewMapBufferRange;
  __glewMapBufferRange = [](GLenum, GLintptr, GLsizeiptr, GLbitfield) -> void* { return nullptr; };
  draw(4);
  EXPECT_EQ(failure_of([&] { buffer_.complete(true); }), "Could not map the pixels of a frame. ");
  __glewMapBufferRange = map;
  EXPECT_EQ(buffer_.map(), nullptr);

  draw(5);
  expect_mapped(5, 5, 4);
}

}  // namespace
}  // namespace oct::test
