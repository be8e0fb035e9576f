#include <atomic>
#include <thread>

#include "hosting/offscreen/offscreen_buffer_object.h"
#include "support/gl_spy.h"
#include "support/pictures.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class OffscreenBufferGLTest : public GLTest {
 protected:
  void frame(int red, int green, int blue) {
    buffer_.prepare();
    glClearColor(static_cast<float>(red) / 255.0F, static_cast<float>(green) / 255.0F,
                 static_cast<float>(blue) / 255.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    buffer_.finish();
  }

  void make_ready(Picture& picture) {
    buffer_.resize(static_cast<std::uint32_t>(picture.width), static_cast<std::uint32_t>(picture.height));
    buffer_.set_output_data(picture.bytes.data());
  }

  OffscreenBufferObject buffer_;
};

TEST_F(OffscreenBufferGLTest, TheFirstFrameFillsWhatWaits) {
  Picture picture(4, 4);
  make_ready(picture);
  frame(1, 2, 3);
  frame(200, 200, 200);
  EXPECT_EQ(picture.bgra(3, 3), (std::array<int, 4>{3, 2, 1, 255}));
  buffer_.cancel();  // comes too late
  EXPECT_TRUE(buffer_.wait());
  buffer_.set_output_data(nullptr);
  frame(0, 0, 0);
  EXPECT_TRUE(buffer_.wait()) << "nothing to fill";
  buffer_.set_output_data(picture.bytes.data());
  buffer_.cancel();
  EXPECT_FALSE(buffer_.wait());
  Picture nothing(2, 2);
  buffer_.resize(0, 0);
  buffer_.set_output_data(nothing.bytes.data());
  frame(9, 9, 9);
  EXPECT_EQ(nothing.bytes, Picture(2, 2).bytes);
  gl::discard_gl_errors();
}

TEST_F(OffscreenBufferGLTest, RebuiltEveryFrameAndReleased) {
  GlSpy spy;
  for (int i = 1; i <= 100; ++i) {
    buffer_.resize(static_cast<std::uint32_t>(i), 7);
    buffer_.prepare();
    GLint depth = 0;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT,
                                          GL_FRAMEBUFFER_ATTACHMENT_DEPTH_SIZE, &depth);
    EXPECT_EQ(depth, 24);
    buffer_.finish();
    EXPECT_EQ(spy.live_objects(), 3U);
  }
  EXPECT_EQ(spy.calls("glGenFramebuffers"), 100);
  const int before = spy.calls("glDeleteRenderbuffers");
  buffer_.release();
  EXPECT_EQ(spy.live_objects(), 0U);
  EXPECT_EQ(spy.calls("glDeleteRenderbuffers") - before, 4) << "each name twice";
  buffer_.release();
}

// A client on its own thread asks for pictures of changing sizes while frames are drawn all the time. The
// colour of a frame tells its width, so that a picture of another frame's size shows.
TEST_F(OffscreenBufferGLTest, SnapshotsFromAnotherThread) {
  std::atomic<bool> running{true};
  int wrong = 0;
  std::thread client([&] {
    for (int i = 0; i < 100; ++i) {
      const int width = 1 + i * 7 % 200;
      Picture picture(width, 5);
      make_ready(picture);
      buffer_.wait();
      for (int p = 0; p < width * 5; ++p)
        wrong += picture.bytes[static_cast<std::size_t>(p) * 4 + 2] != width;
    }
    running = false;
  });
  while (running) {
    buffer_.prepare();
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    glClearColor(static_cast<float>(viewport[2]) / 255.0F, 0.0F, 0.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    buffer_.finish();
    glGetError();  // a frame before the first size is empty
  }
  client.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace oct::test
