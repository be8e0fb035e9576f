// The exports of the offscreen target.
#include <thread>

#include "gl/context/current_context.h"
#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/opengl/foreign_state.h"
#include "support/pictures.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(OffscreenTargetGLTest, TwoTargetsInTurn) {
  const OffscreenTargetHandle targets[] = {createOffscreenTarget(), createOffscreenTarget()};
  for (int i : {0, 1, 0, 1}) {
    Picture picture(3 + i, 2);
    beginOffscreenFrame(targets[i], static_cast<unsigned>(picture.width), 2);
    glClearColor(static_cast<float>(i), 1.0F, 0.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glPixelStorei(GL_PACK_ROW_LENGTH, 9);
    finishOffscreenFrame(targets[i], picture.bytes.data());
    GLint row_length = 0;
    glGetIntegerv(GL_PACK_ROW_LENGTH, &row_length);
    EXPECT_EQ(row_length, 9) << "the client's setting is neither used nor lost";
    EXPECT_EQ(picture.bgra(2 + i, 1), (std::array<int, 4>{0, 255, i * 255, 255}));
  }
  for (const auto target : targets) clearOffscreenTarget(target);
  clearOffscreenTarget(nullptr);
  EXPECT_EQ(pending_error(), "(none)");
  EXPECT_FALSE(gl::is_context_current());
  expect_null_refused("Invalid OffscreenTargetHandle specified. ", beginOffscreenFrame, finishOffscreenFrame);
}

TEST(OffscreenTargetGLTest, ARefusedFrameIsNotBegun) {
  const OffscreenTargetHandle target = createOffscreenTarget();
  const std::string where = "An OpenGL error in beginOffscreenFrame occured: ";
  const std::string incomplete = "The offscreen framebuffer is not complete: ";
  GlSpy spy;
  const struct {
    unsigned width, height;
    const char* function;  // that fails
    GLenum error;
    std::string message;  // begins so
  } rows[] = {
      {100000, 4, nullptr, 0, where},
      {4, 0xFFFFFFFFU, nullptr, 0, where},
      {0, 0, nullptr, 0, incomplete + "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT"},
      {8, 8, "glRenderbufferStorage", GL_OUT_OF_MEMORY, where + "There is not enough memory"},
      {8, 8, "glCheckFramebufferStatus", GL_FRAMEBUFFER_UNSUPPORTED,
       incomplete + "GL_FRAMEBUFFER_UNSUPPORTED"},
  };
  for (const auto& row : rows) {
    beginOffscreenFrame(target, 4, 4);
    EXPECT_EQ(pending_error(), "(none)");
    if (row.function) spy.fail_next(row.function, 1, row.error);
    beginOffscreenFrame(target, row.width, row.height);
    EXPECT_EQ(pending_error().find(row.message), 0U) << row.message;
    clear_gl_errors();
    Picture picture(8, 8);
    finishOffscreenFrame(target, picture.bytes.data());
    EXPECT_EQ(pending_error(), "No offscreen frame has been begun. ");
  }
  std::thread([&] {
    beginOffscreenFrame(target, 4, 4);
    EXPECT_EQ(pending_error().find("An error occured. "), 0U);
  }).join();
  clearOffscreenTarget(target);
}

// The image turns from call to call about its middle, whose colour stays.
TEST(OffscreenTargetGLTest, NothingThatTheClientSetShowsInTheTestImageOrIsChangedByIt) {
  const OffscreenTargetHandle target = createOffscreenTarget();
  Picture middle(1, 1);
  middle.bytes = {85, 85, 85, 255};
  expect_same_whatever_the_client_sets(target, middle, glRenderTestImage);
  clearOffscreenTarget(target);
  EXPECT_EQ(pending_error(), "(none)");
}

}  // namespace
}  // namespace oct::test
