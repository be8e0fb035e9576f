#include "hosting/offscreen/offscreen_buffer_object.h"
#include "support/gl_spy.h"
#include "support/pictures.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

class OffscreenBufferGLTest : public GLTest {};

TEST_F(OffscreenBufferGLTest, MadeAnewForEveryFrameReadBackAndReleased) {
  OffscreenBufferObject buffer;
  GlSpy spy;
  for (int width = 1; width <= 100; ++width) {
    buffer.prepare(static_cast<std::uint32_t>(width), 7);
    GLint depth = 0;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT,
                                          GL_FRAMEBUFFER_ATTACHMENT_DEPTH_SIZE, &depth);
    EXPECT_EQ(depth, 24);
    draw_pattern(0x00C0FFEE);
    Picture picture(width, 7);
    // Whatever the client leaves bound.
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    glPixelStorei(GL_PACK_ROW_LENGTH, 128);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    buffer.finish(width % 2 ? picture.bytes.data() : nullptr);
    EXPECT_TRUE(agree(picture, width % 2 ? pattern_picture(0x00C0FFEE, width, 7) : Picture(width, 7), exact));
    EXPECT_EQ(spy.live_objects(), width % 2 ? 0U : 3U) << "nothing stays of what has been read";
  }
  EXPECT_EQ(spy.calls("glGenFramebuffers"), 100);
  const int before = spy.calls("glDeleteRenderbuffers");
  buffer.release();
  EXPECT_EQ(spy.live_objects(), 0U);
  EXPECT_EQ(spy.calls("glDeleteRenderbuffers") - before, 4) << "each name twice";
  buffer.release();
}

}  // namespace
}  // namespace oct::test
