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
    EXPECT_EQ(picture.bgra(2 + i, 1), (std::array<int, 4>{0, 255, i * 255, 255}));
  }
  EXPECT_EQ(spy.calls("glRenderbufferStorage"), 4) << "the second frames are of the first ones' size";
  EXPECT_EQ(spy.live_objects(), 6U);
  beginOffscreenFrame(targets[0], 4, 4);
  glDrawBuffer(GL_NONE);
  finishOffscreenFrame(targets[0], nullptr);
  Picture picture(4, 4);
  beginOffscreenFrame(targets[0], 4, 4);
  glClear(GL_COLOR_BUFFER_BIT);
  finishOffscreenFrame(targets[0], picture.bytes.data());
  EXPECT_EQ(picture.bgra(3, 3), (std::array<int, 4>{0, 255, 0, 255}))
      << "drawn to, whatever was chosen before";
  EXPECT_EQ(spy.calls("glRenderbufferStorage"), 6) << "another size";
  EXPECT_EQ(spy.live_objects(), 6U);
  const int deletions = spy.calls("glDeleteRenderbuffers");
  clearOffscreenTarget(targets[0]);
  EXPECT_EQ(spy.calls("glDeleteRenderbuffers") - deletions, 4) << "each name twice";
  clearOffscreenTarget(targets[1]);
  EXPECT_EQ(spy.live_objects(), 0U);
  clearOffscreenTarget(nullptr);
  EXPECT_EQ(pending_error(), "(none)");
  EXPECT_FALSE(gl::is_context_current());
  expect_null_refused("Invalid OffscreenTargetHandle specified. ", beginOffscreenFrame, finishOffscreenFrame);
}

// Whatever a target is asked for, the client has its own context back afterwards, and no frame is begun any more;
// only a new target leaves its own one current.
TEST(OffscreenTargetGLTest, TheContextOfTheClientComesBack) {
  auto client = std::make_unique<ClientContext>();
  const auto frame = [](OffscreenTargetHandle target, unsigned size) {
    beginOffscreenFrame(target, size, size);
    EXPECT_TRUE(gl::is_context_current());
  };
  GlSpy spy;
  const auto refused = [&](unsigned width, unsigned height, const char* failing = "", GLenum failure = 0) {
    return [=, &spy](OffscreenTargetHandle target) {
      beginOffscreenFrame(target, 4, 4);
      spy.fail_next(failing, 1, failure);
      beginOffscreenFrame(target, width, height);
      clear_gl_errors();
    };
  };
  const std::string where = "An OpenGL error in beginOffscreenFrame occured: ";
  const std::string incomplete = "The offscreen framebuffer is not complete: ";
  struct Case {
    const char* name;
    std::function<void(OffscreenTargetHandle)> call;
    std::string error = "(none)";  // begins so
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
       incomplete + "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT"},
      {"no size after a good begin", refused(0, 0), incomplete + "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT"},
      {"too wide", refused(100000, 4), where},
      {"too high", refused(4, 0xFFFFFFFFU), where},
      {"no memory", refused(8, 8, "glRenderbufferStorage", GL_OUT_OF_MEMORY),
       where + "There is not enough memory"},
      {"unsupported", refused(8, 8, "glCheckFramebufferStatus", GL_FRAMEBUFFER_UNSUPPORTED),
       incomplete + "GL_FRAMEBUFFER_UNSUPPORTED"},
      {"another thread",
       [&](auto target) {
         frame(target, 4);
         std::thread(beginOffscreenFrame, target, 4, 4).join();
         finishOffscreenFrame(target, nullptr);
       },
       "An error occured. "},
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
    EXPECT_EQ(pending_error().find(error), 0U);
    finishOffscreenFrame(target, nullptr);
    EXPECT_EQ(pending_error(), "No offscreen frame has been begun. ");
    clearOffscreenTarget(target);
    EXPECT_EQ(gl::current_context(), client->handle());
  }
  for (const bool begun : {false, true}) {
    const OffscreenTargetHandle target = createOffscreenTarget();
    if (begun) frame(target, 4);
    clearOffscreenTarget(target);
    EXPECT_EQ(gl::current_context(), client->handle()) << "cleared with its own context current";
  }
  const OffscreenTargetHandle elsewhere = createOffscreenTarget();
  frame(elsewhere, 4);
  std::thread(clearOffscreenTarget, elsewhere).join();
  EXPECT_EQ(pending_error().find("An error occured. "), 0U);
  const OffscreenTargetHandle survivor = createOffscreenTarget();
  client->makeCurrent();
  spy.answer(GL_MAJOR_VERSION, 2);
  EXPECT_EQ(createOffscreenTarget(), nullptr);
  EXPECT_NE(pending_error(), "(none)");
  EXPECT_EQ(gl::current_context(), client->handle());
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
