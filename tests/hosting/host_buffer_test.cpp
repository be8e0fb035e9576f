#include "hosting/surfaces/host_buffer_object.h"

#include <future>
#include <stdexcept>

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
    drawPattern(static_cast<std::uint32_t>(id));
    buffer_.finish();
  }

  // Completes the frame and compares it with that id's.
  void expectMapped(std::uint32_t id, int width, int height) {
    buffer_.complete(true);
    EXPECT_TRUE(
        agree(hostSurfacePicture(buffer_.map()->surface()), patternPicture(id, width, height), exact));
  }

  HostBufferObject buffer_{2};
};

TEST_F(HostBufferGLTest, StartsWithoutFrame) {
  EXPECT_EQ(buffer_.map(), nullptr);
  EXPECT_TRUE(buffer_.complete(true));
}

TEST_F(HostBufferGLTest, AFrameIsMappedOnceItIsComplete) {
  buffer_.resize(13, 9);
  draw(0x00C0FFEE);
  EXPECT_EQ(buffer_.map(), nullptr);  // the read-back has only been asked for
  EXPECT_TRUE(buffer_.complete(true));
  const auto mapped = buffer_.map();
  ASSERT_NE(mapped, nullptr);
  EXPECT_EQ(mapped->index(), 0x00C0FFEEU);
  EXPECT_EQ(mapped->width(), 13U);
  EXPECT_EQ(mapped->height(), 9U);
  EXPECT_TRUE(agree(hostSurfacePicture(mapped->surface()), patternPicture(0x00C0FFEE, 13, 9), exact));
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

TEST_F(HostBufferGLTest, ANewFrameUnmapsTheOldOne) {
  buffer_.resize(4, 4);
  draw(1);
  buffer_.complete(true);
  draw(2);
  EXPECT_EQ(buffer_.map(), nullptr);
  expectMapped(2, 4, 4);
}

TEST_F(HostBufferGLTest, ReadsWhateverTheClientLeftBound) {
  buffer_.resize(5, 7);
  buffer_.prepare(3);
  drawPattern(3);
  glPixelStorei(GL_PACK_ALIGNMENT, 8);
  glPixelStorei(GL_PACK_ROW_LENGTH, 64);
  glPixelStorei(GL_PACK_SKIP_PIXELS, 3);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  buffer_.finish();
  expectMapped(3, 5, 7);
}

TEST_F(HostBufferGLTest, AFailedResizeIsRepairedByTheNext) {
  buffer_.resize(4, 4);
  GlSpy spy;
  for (const char* function : {"glRenderbufferStorage", "glBufferData"}) {
    spy.failNext(function);
    EXPECT_THROW(buffer_.resize(6, 6), std::runtime_error) << function;
    EXPECT_EQ(buffer_.width(), 0U);
  }
  spy.failNext("glCheckFramebufferStatus", 1, GL_FRAMEBUFFER_UNSUPPORTED);
  EXPECT_THROW(buffer_.resize(6, 6), std::runtime_error);
  clearGLErrors();
  buffer_.resize(6, 6);
  draw(9);
  expectMapped(9, 6, 6);
}

GLenum waitAnswer = 0;
GLenum GLAPIENTRY pretendToWait(GLsync, GLbitfield, GLuint64) {
  return waitAnswer;
}

TEST_F(HostBufferGLTest, AGpuThatIsNotDone) {
  buffer_.resize(4, 4);
  const auto original = __glewClientWaitSync;
  for (const GLenum failure : {GLenum{GL_TIMEOUT_EXPIRED}, GLenum{GL_WAIT_FAILED}}) {
    waitAnswer = failure;
    draw(1);
    __glewClientWaitSync = pretendToWait;
    if (failure == GL_TIMEOUT_EXPIRED) {
      EXPECT_FALSE(buffer_.complete(false));
    }
    EXPECT_EQ(failureOf([&] { buffer_.complete(true); }), "Rendering could not finish within one second. ");
    __glewClientWaitSync = original;
    EXPECT_EQ(buffer_.map(), nullptr);
  }
  draw(5);
  buffer_.complete(true);
  EXPECT_NE(buffer_.map(), nullptr);
}

TEST_F(HostBufferGLTest, LeavesNoObjectBehind) {
  const GlSpy spy;
  {
    HostBufferObject buffer(0);
    for (std::uint32_t size = 1; size < 6; ++size) {
      buffer.resize(size, size);
      buffer.prepare(1);
      buffer.finish();
      if (size % 2 == 0) buffer.complete(true);
    }
    EXPECT_EQ(spy.liveObjects(), 4U);  // framebuffer, two renderbuffers, pixel buffer
  }
  EXPECT_EQ(spy.liveObjects(), 0U);
}

TEST_F(HostBufferGLTest, TheReasonOfAFailedTargetIsLogged) {
  GlSpy spy;
  spy.failNext("glCheckFramebufferStatus", 1, GL_FRAMEBUFFER_UNSUPPORTED);
  const std::string text = logOf([&] { EXPECT_THROW(buffer_.resize(6, 6), std::runtime_error); });
  EXPECT_TRUE(contains(text, "An error occured when creating render target: GL_FRAMEBUFFER_UNSUPPORTED\n"))
      << text;
}

}  // namespace
}  // namespace oct::test
