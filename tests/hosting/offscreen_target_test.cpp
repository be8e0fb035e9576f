// The exports of the offscreen target.
#include <array>
#include <thread>
#include <utility>

#include "gl/context/current_context.h"
#include "oct_rendering/oct_rendering.h"
#include "support/gl_spy.h"
#include "support/opengl/foreign_state.h"
#include "support/pictures.h"
#include "support/test_context.h"
#include "support/test_loop.h"

namespace oct::test {
namespace {

TEST(OffscreenTargetGLTest, TwoTargetsInTurn) {
  const OffscreenTargetHandle targets[] = {createOffscreenTarget(), createOffscreenTarget()};
  const GlSpy spy;
  std::array<GLint, 2> row_lengths{};
  for (int i : {0, 1, 0, 1}) {
    GLint& expected = row_lengths[static_cast<std::size_t>(i)];
    Picture picture(3 + i, 2);
    beginOffscreenFrame(targets[i], static_cast<unsigned>(picture.width), 2);
    glClearColor(static_cast<float>(i), 1.0F, 0.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    GLint row_length = 0;
    glGetIntegerv(GL_PACK_ROW_LENGTH, &row_length);
    EXPECT_EQ(row_length, std::exchange(expected, 9)) << "the client's setting is neither used nor lost";
    GLint depth = 0;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT,
                                          GL_FRAMEBUFFER_ATTACHMENT_DEPTH_SIZE, &depth);
    EXPECT_EQ(depth, 24);
    glPixelStorei(GL_PACK_ROW_LENGTH, expected);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    finishOffscreenFrame(targets[i], picture.bytes.data());
    EXPECT_EQ(spy.live_objects(), 0U) << "nothing stays of what has been read";
    EXPECT_EQ(picture.bgra(2 + i, 1), (std::array<int, 4>{0, 255, i * 255, 255}));
  }
  beginOffscreenFrame(targets[0], 4, 4);
  finishOffscreenFrame(targets[0], nullptr);
  const int deletions = spy.calls("glDeleteRenderbuffers");
  clearOffscreenTarget(targets[0]);
  EXPECT_EQ(spy.calls("glDeleteRenderbuffers") - deletions, 4) << "each name twice";
  EXPECT_EQ(spy.live_objects(), 0U);
  clearOffscreenTarget(targets[1]);
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

// Whatever a target is asked for, the client has its own context back afterwards; only a new target leaves its own
// one current.
TEST(OffscreenTargetGLTest, TheContextOfTheClientComesBack) {
  auto client = std::make_unique<ClientContext>();
  const auto frame = [](OffscreenTargetHandle target, unsigned size) {
    beginOffscreenFrame(target, size, size);
    EXPECT_TRUE(gl::is_context_current());
  };
  struct Case {
    const char* name;
    std::function<void(OffscreenTargetHandle)> call;
    std::string error = "(none)";
  };
  const Case cases[] = {
      {"nothing", [](auto) {}},
      {"frame",
       [&](auto target) {
         frame(target, 4);
         EXPECT_NE(gl::current_context(), client->handle());
         finishOffscreenFrame(target, nullptr);
       }},
      {"no size", [&](auto target) { frame(target, 0); },
       "The offscreen framebuffer is not complete: GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT"},
      {"no size after a good begin", [&](auto target) { frame(target, 4), frame(target, 0); },
       "The offscreen framebuffer is not complete: GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT"},
      {"begun twice",
       [&](auto target) {
         frame(target, 4), frame(target, 5);
         finishOffscreenFrame(target, nullptr);
       }},
      {"not begun", [](auto target) { finishOffscreenFrame(target, nullptr); },
       "No offscreen frame has been begun. "},
      {"finish fails",
       [&](auto target) {
         frame(target, 4);
         glEnable(0x1234);
         finishOffscreenFrame(target, nullptr);
       },
       "An OpenGL error in finishOffscreenFrame occured: An unacceptable value is specified for an "
       "enumerated "
       "argument. The offending command is ignored and has no other side effect than to set the error flag. "
       "(GL_INVALID_ENUM)\n"},
  };
  for (const auto& [name, call, error] : cases) {
    SCOPED_TRACE(name);
    client->makeCurrent();
    const OffscreenTargetHandle target = createOffscreenTarget();
    EXPECT_NE(gl::current_context(), client->handle());
    client->makeCurrent();
    call(target);
    EXPECT_EQ(gl::current_context(), client->handle());
    EXPECT_EQ(pending_error(), error);
    clearOffscreenTarget(target);
    EXPECT_EQ(gl::current_context(), client->handle());
  }
  for (const bool begun : {false, true}) {
    const OffscreenTargetHandle target = createOffscreenTarget();
    if (begun) frame(target, 4);
    clearOffscreenTarget(target);
    EXPECT_EQ(gl::current_context(), client->handle()) << "cleared with its own context current";
  }
  {
    GlSpy spy;
    spy.answer(GL_MAJOR_VERSION, 2);
    EXPECT_EQ(createOffscreenTarget(), nullptr);
    EXPECT_NE(pending_error(), "(none)");
    EXPECT_EQ(gl::current_context(), client->handle());
  }
  const OffscreenTargetHandle survivor = createOffscreenTarget();
  client.reset();
  clearOffscreenTarget(survivor);
  EXPECT_FALSE(gl::is_context_current()) << "there is nothing to go back to";
  EXPECT_EQ(pending_error(), "(none)");
}

class OffscreenTargetInLoopGLTest : public LoopGLTest {};

TEST_P(OffscreenTargetInLoopGLTest, TheRenderFunctionGoesOnInTheLoop) {
  Picture inner(3, 3);
  const auto loop = make_recording_loop(6, 6);
  loop->set_rendering_callback(RenderingCallback([&](std::uint32_t id) {
    const OffscreenTargetHandle target = createOffscreenTarget();
    beginOffscreenFrame(target, 3, 3);
    draw_pattern(77);
    finishOffscreenFrame(target, inner.bytes.data());
    clearOffscreenTarget(target);
    EXPECT_EQ(pending_error(), "(none)");
    draw_pattern(id);
  }));
  Picture outer(8, 8);
  loop->snapshot(8, 8, outer.bytes.data());
  EXPECT_TRUE(agree(inner, pattern_picture(77, 3, 3), exact));
  EXPECT_TRUE(agree(outer, pattern_picture(0, 8, 8), exact));
  loop->request(5);
  EXPECT_EQ(returned_.at_least(1).front() % 5, 0U);
  EXPECT_TRUE(errors_.all().empty());
}

OCT_EVERY_SHARING(OffscreenTargetInLoopGLTest);

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
