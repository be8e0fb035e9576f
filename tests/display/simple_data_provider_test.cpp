// The texture that mirrors an image.
#include "display/simple_data_provider.h"

#include <future>

#include "support/gl_spy.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class SimpleDataProviderGLTest : public GLTest {
 protected:
  SimpleDataProvider provider_;
};

TEST_F(SimpleDataProviderGLTest, ResizesOncePerSizeAndUploadsAtEveryLock) {
  const Image image = test_image(33, 21);
  GlSpy spy;
  int resizes = 0;
  int uploads = 0;
  for (const auto& [depth, a_scans] : {std::pair{33, 21}, {21, 33}}) {  // of the same number of samples
    provider_.set_data({depth, a_scans}, image.samples.data());
    ++resizes;
    for (int i = 0; i < 2; ++i) {
      const auto locked = provider_.lock();
      EXPECT_EQ(locked->extent(), (ImageExtent{depth, a_scans}));
      EXPECT_EQ(spy.calls("glTexImage2D"), resizes);
      EXPECT_EQ(spy.calls("glTexSubImage2D"), ++uploads);
      glBindTexture(GL_TEXTURE_2D, locked->texture());
      GLint axis = 0;
      glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &axis);
      EXPECT_EQ(axis, depth) << "depth is the texture's first axis";
      std::vector<float> texels(image.samples.size());
      glGetTexImage(GL_TEXTURE_2D, 0, GL_RED, GL_FLOAT, texels.data());
      EXPECT_EQ(texels, image.samples);
    }
  }
  EXPECT_EQ(spy.live_objects(), 1U);
  provider_.release();
  EXPECT_EQ(spy.live_objects(), 0U);
  provider_.lock();
  EXPECT_EQ(spy.live_objects(), 1U);
}

TEST_F(SimpleDataProviderGLTest, WritersWaitWhileTheTextureIsLocked) {
  EXPECT_THROW(provider_.lock(), std::invalid_argument);  // and lets writers in
  const Image image = test_image(8, 8);
  const auto write = [&] { provider_.set_data({8, 8}, image.samples.data()); };
  write();
  auto locked = provider_.lock();
  auto writer = std::async(std::launch::async, write);
  EXPECT_EQ(writer.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
  locked.reset();
  writer.get();
}

}  // namespace
}  // namespace oct::test
