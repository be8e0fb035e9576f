// The texture that mirrors an image.
#include "display/simple_data_provider.h"

#include <future>

#include "support/reference/display_reference.h"
#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class SimpleDataProviderGLTest : public GLTest {
 protected:
  static std::vector<float> texels(GLuint texture, std::size_t count) {
    std::vector<float> result(count);
    glBindTexture(GL_TEXTURE_2D, texture);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RED, GL_FLOAT, result.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return result;
  }

  SimpleDataProvider provider_;
};

TEST_F(SimpleDataProviderGLTest, ResizesOnceAndUploadsAtEveryLock) {
  const Image image = testImage(33, 21);
  provider_.setData(33, 21, image.samples.data());
  GlSpy spy;
  for (int i = 0; i < 2; ++i) {
    const auto locked = provider_.lock();
    EXPECT_EQ(locked->height(), 33U);
    EXPECT_EQ(locked->width(), 21U);
    EXPECT_EQ(texels(locked->texture(), image.samples.size()), image.samples);
  }
  EXPECT_EQ(spy.calls("glTexImage2D"), 1);
  EXPECT_EQ(spy.calls("glTexSubImage2D"), 2);
}

TEST_F(SimpleDataProviderGLTest, TransposedDimensionsResize) {
  const Image image = testImage(33, 21);
  provider_.setData(33, 21, image.samples.data());
  provider_.lock();
  provider_.setData(21, 33, image.samples.data());
  GlSpy spy;
  const auto locked = provider_.lock();
  EXPECT_EQ(spy.calls("glTexImage2D"), 1);
  GLint axis = 0;
  glBindTexture(GL_TEXTURE_2D, locked->texture());
  glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &axis);
  EXPECT_EQ(axis, 21) << "depth is the texture's first axis";
  EXPECT_EQ(texels(locked->texture(), image.samples.size()), image.samples);
}

TEST_F(SimpleDataProviderGLTest, ReleaseDeletesTheTexture) {
  GlSpy spy;
  const Image image = testImage(8, 8);
  provider_.setData(8, 8, image.samples.data());
  provider_.lock();
  EXPECT_EQ(spy.liveObjects(), 1U);
  provider_.release();
  EXPECT_EQ(spy.liveObjects(), 0U);
  provider_.lock();
  EXPECT_EQ(spy.liveObjects(), 1U);
}

TEST_F(SimpleDataProviderGLTest, WritersWaitWhileTheTextureIsLocked) {
  const Image image = testImage(8, 8);
  provider_.setData(8, 8, image.samples.data());
  auto locked = provider_.lock();
  auto writer = std::async(std::launch::async, [&] { provider_.setData(8, 8, image.samples.data()); });
  EXPECT_EQ(writer.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  locked.reset();
  writer.get();
}

TEST_F(SimpleDataProviderGLTest, FailedLockLetsWritersIn) {
  EXPECT_THROW(provider_.lock(), std::invalid_argument);
  const Image image = testImage(4, 4);
  provider_.setData(4, 4, image.samples.data());
  EXPECT_EQ(provider_.lock()->height(), 4U);
}

}  // namespace
}  // namespace oct::test
