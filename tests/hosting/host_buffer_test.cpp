#include "hosting/surfaces/host_buffer_object.h"
#include "support/gl_spy.h"
#include "support/surfaces.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

class HostBufferGLTest : public GLTest {
 protected:
  // Asks for a frame of that id.
  void draw(std::uint32_t id) {
    buffer_.resize(13, 9);
    buffer_.prepare(static_cast<std::int32_t>(id));
    draw_pattern(id);
    // Whatever the client leaves bound.
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    glPixelStorei(GL_PACK_ROW_LENGTH, 64);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 3);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    buffer_.finish();
    EXPECT_EQ(buffer_.map(), nullptr) << "the read-back has only been asked for";
  }

  HostBufferObject buffer_{2};
};

// Neither a frame nor its failure vanishes.
TEST_F(HostBufferGLTest, WhatFailsIsToldAndTheNextFrameIsWhole) {
  const struct {
    const char* function;
    std::string failure, log;
  } rows[] = {
      {"glBufferData", "Could not generate render target. ",
       "An error occured when creating render target: There is not enough memory"},
      {"glClientWaitSync", "Rendering could not finish within one second. ", ""},
      {"glMapBufferRange", "Could not map the pixels of a frame. ", ""},
      {"glFenceSync", "(none)", "OpenGL gave no fence"},
  };
  GlSpy spy;
  EXPECT_TRUE(buffer_.complete(true)) << "there is nothing to wait for";
  for (std::uint32_t id = 0x00C0FFEE; const auto& row : rows) {
    SCOPED_TRACE(row.function);
    spy.fail_next(row.function);
    const std::string text = log_of([&] {
      const auto frame = [&] { draw(++id), buffer_.complete(true); };
      EXPECT_EQ(failure_of(frame), row.failure);
      if (row.failure != "(none)") {
        EXPECT_EQ(buffer_.map(), nullptr);
        frame();
      }
    });
    EXPECT_TRUE(contains(text, row.log)) << text;
    const auto mapped = buffer_.map();
    ASSERT_NE(mapped, nullptr);
    EXPECT_EQ(mapped->index(), id);
    EXPECT_TRUE(agree(host_surface_picture(mapped->surface()), pattern_picture(id, 13, 9), exact));
  }
  draw(1);
  const auto wait = std::exchange(__glewClientWaitSync,
                                  [](GLsync, GLbitfield, GLuint64) -> GLenum { return GL_TIMEOUT_EXPIRED; });
  EXPECT_FALSE(buffer_.complete(false));
  EXPECT_EQ(failure_of([&] { buffer_.complete(true); }), rows[1].failure);
  __glewClientWaitSync = wait;
}

}  // namespace
}  // namespace oct::test
