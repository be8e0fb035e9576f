// The exports of the offscreen target.
#include <thread>

#include "gl/context/current_context.h"
#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/pictures.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(OffscreenTargetGLTest, NullIsRefused) {
  expectNullRefused("Invalid OffscreenTargetHandle specified. ", beginOffscreenFrame, finishOffscreenFrame);
  clearOffscreenTarget(nullptr);
  EXPECT_EQ(pendingError(), "(none)");
}

TEST(OffscreenTargetGLTest, TwoTargetsInTurn) {
  const OffscreenTargetHandle targets[] = {createOffscreenTarget(), createOffscreenTarget()};
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 2; ++i) {
      Picture picture(3 + i, 2);
      beginOffscreenFrame(targets[i], static_cast<unsigned>(picture.width), 2);
      glClearColor(static_cast<float>(i), 1.0F, 0.0F, 1.0F);
      glClear(GL_COLOR_BUFFER_BIT);
      finishOffscreenFrame(targets[i], picture.bytes.data());
      EXPECT_EQ(picture.bytes[2], i * 255);
      EXPECT_EQ(picture.bytes[1], 255);
    }
  }
  clearOffscreenTarget(targets[0]);
  clearOffscreenTarget(targets[1]);
  EXPECT_EQ(pendingError(), "(none)");
  EXPECT_FALSE(gl::isContextCurrent());
}

TEST(OffscreenTargetGLTest, SizesBeyondTheDriver) {
  const OffscreenTargetHandle target = createOffscreenTarget();
  for (const auto& [width, height] : {std::pair<unsigned, unsigned>{100000, 4}, {4, 0xFFFFFFFFU}}) {
    beginOffscreenFrame(target, width, height);
    EXPECT_EQ(pendingError().find("An OpenGL error in beginOffscreenFrame occured: "), 0U);
    clearGLErrors();
  }
  beginOffscreenFrame(target, 0, 0);
  EXPECT_EQ(pendingError(),
            "The offscreen framebuffer is not complete: GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT");
  beginOffscreenFrame(target, 4, 4);
  EXPECT_EQ(pendingError(), "(none)");
  clearOffscreenTarget(target);
}

TEST(OffscreenTargetGLTest, AnotherThreadIsRefused) {
  const OffscreenTargetHandle target = createOffscreenTarget();
  std::thread([&] {
    beginOffscreenFrame(target, 4, 4);
    EXPECT_EQ(pendingError().find("An error occured. "), 0U);
  }).join();
  clearOffscreenTarget(target);
}

}  // namespace
}  // namespace oct::test
