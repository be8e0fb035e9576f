// The filter passes one by one.
#include "display/filters.h"

#include <cmath>

#include "display/simple_data_provider.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class FilterGLTest : public GLTest {
 protected:
  // Runs the chain over an image of depth by aScans samples and reads the result back.
  std::vector<float> run(int depth, int aScans, const std::vector<float>& samples) {
    SimpleDataProvider provider;
    provider.setData(depth, aScans, samples.data());
    const auto locked = provider.lock();
    const TextureView output = chain_.run({locked->texture(), depth, aScans});
    lastOutputIsInput_ = output.texture == locked->texture();
    std::vector<float> result(samples.size());
    glBindTexture(GL_TEXTURE_2D, output.texture);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RED, GL_FLOAT, result.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return result;
  }

  FilterChain chain_;
  bool lastOutputIsInput_ = false;
};

TEST_F(FilterGLTest, NothingEnabledHandsTheInputOn) {
  chain_.init();
  run(4, 4, std::vector<float>(16, 1.0F));
  EXPECT_TRUE(lastOutputIsInput_);
}

TEST_F(FilterGLTest, PepperLiftsDarkAndKeepsBright) {
  chain_.init();
  chain_.setPepper(true);
  std::vector<float> samples(49, 10.0F);
  samples[3 * 7 + 3] = 1.0F;
  const auto lifted = run(7, 7, samples);
  EXPECT_NEAR(lifted[3 * 7 + 3], 9.0F, 1e-5F);  // (8 * 10 + 1) / 9
  EXPECT_FLOAT_EQ(lifted[3 * 7 + 4], 10.0F);
  samples[3 * 7 + 3] = 100.0F;
  const auto kept = run(7, 7, samples);
  EXPECT_FLOAT_EQ(kept[3 * 7 + 3], 100.0F);
  EXPECT_NEAR(kept[3 * 7 + 4], 20.0F, 1e-5F);  // beside it the mean is above the sample
}

TEST_F(FilterGLTest, GaussianSpreadsAPointByItsWeights) {
  chain_.init();
  chain_.setBlur(true, false);
  std::vector<float> samples(11 * 11, 0.0F);
  samples[5 * 11 + 5] = 100.0F;
  const auto result = run(11, 11, samples);
  const float weights[] = {0.1F, 0.2F, 0.4F, 0.2F, 0.1F};
  for (int x = 0; x < 11; ++x) {
    for (int z = 0; z < 11; ++z) {
      const bool inside = std::abs(x - 5) <= 2 && std::abs(z - 5) <= 2;
      const float expected = inside ? 100.0F * weights[x - 3] * weights[z - 3] : 0.0F;
      EXPECT_NEAR(result[static_cast<std::size_t>(x * 11 + z)], expected, 1e-4F) << x << ", " << z;
    }
  }
}

TEST_F(FilterGLTest, LeavesTargetAndViewportAsTheyWere) {
  chain_.init();
  chain_.setPepper(true);
  const gl::Framebuffer framebuffer = gl::Framebuffer::create();
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer.get());
  glViewport(3, 5, 7, 11);
  glEnable(GL_SCISSOR_TEST);
  glScissor(0, 0, 1, 1);
  std::vector<float> samples(64, 5.0F);
  samples[9] = 0.0F;
  EXPECT_GT(run(8, 8, samples)[9], 4.0F) << "the client's scissor cut the pass";
  GLint bound = 0;
  GLint viewport[4] = {};
  glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &bound);
  glGetIntegerv(GL_VIEWPORT, viewport);
  EXPECT_EQ(static_cast<GLuint>(bound), framebuffer.get());
  EXPECT_EQ(viewport[0] * 1000 + viewport[1] * 100 + viewport[2] * 10 + viewport[3], 3000 + 500 + 70 + 11);
  EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
}

TEST_F(FilterGLTest, RunBeforeInit) {
  chain_.setPepper(true);
  EXPECT_EQ(failureOf([&] { run(4, 4, std::vector<float>(16)); }), "Program has not been compiled yet.");
}

}  // namespace
}  // namespace oct::test
