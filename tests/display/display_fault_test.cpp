// OpenGL calls that fail: each gives its error, loses no object, and the next good call works.
#include "display/display_renderer.h"
#include "support/gl_spy.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

// Without what OpenGL has to say.
std::string pending_error_of_place() {
  const std::string error = pending_error();
  return error.substr(0, error.find(" occured: "));
}

class DisplayFaultGLTest : public testing::Test {
 protected:
  DisplayFaultGLTest() {
    uninitDisplayRendering(renderer_);  // from here on every program's binary is kept
    scene_.image = test_image(64, 48);
    scene_.width = 48;
    scene_.height = 64;
    scene_.first_blur = scene_.pepper = true;
    scene_.overlay_image = test_image(64, 48, 2);
    scene_.overlays = {{{0x8000FF00U, 0x80FF0000U}, 0.0, 0.6}, {{0x40FFFF00U, 0x400000FFU}, 0.4, 1.0}};
    apply(scene_, renderer_);
  }

  Picture draw() const { return stage_.frame(scene_.width, scene_.height); }
  void expect_scene() const {
    EXPECT_TRUE(agree(stage_.draw(scene_), reference_picture(scene_)));
    EXPECT_EQ(pending_error(), "(none)");
  }

  // The scene can be drawn again, and the renderer leaves nothing behind.
  void expect_recovery(const GlSpy& spy) const {
    expect_scene();
    uninitDisplayRendering(renderer_);
    beginOffscreenFrame(stage_.target, 1, 1);
    EXPECT_EQ(spy.live_objects(), 3U) << "more than the target's framebuffer and its two renderbuffers";
  }

  Scene scene_;
  const DisplayStage stage_;
  const DisplayRenderingHandle renderer_ = stage_.renderer;
};

TEST_F(DisplayFaultGLTest, InitFails) {
  const std::pair<const char*, std::string> faults[] = {
      {"glCompileShader", "Vertex shader compilation failed"},
      {"glCreateShader", "Vertex shader compilation failed"},
      {"glLinkProgram", ""},
      {"glCreateProgram", "An OpenGL error in BinaryShader::load_to_program"},
      {"glProgramBinary", "An OpenGL error in BinaryShader::load_to_program"},
      {"glGenBuffers", "Could not create OpenGL buffer. "},
      {"glBufferData", "An OpenGL error in AbstractOpenGLFilter::init"},
  };
  for (const auto& [function, message] : faults) {
    SCOPED_TRACE(function);
    GlSpy spy;
    // A driver that holds no executable for a binary makes the library compile again.
    if (!message.starts_with("An OpenGL error")) spy.answer(GL_PROGRAM_BINARY_LENGTH, 0);
    spy.fail_next(function);
    initDisplayRendering(renderer_);
    EXPECT_EQ(pending_error_of_place(), message);
    EXPECT_GE(spy.calls(function), 1);
    clear_gl_errors();
    renderDisplay(renderer_);  // not initialised: skipped
    EXPECT_EQ(pending_error(), "(none)");
    EXPECT_EQ(spy.live_objects(), 0U);
  }
  GlSpy spy;
  initDisplayRendering(renderer_);
  expect_recovery(spy);
}

// Each call of a frame that has everything to upload fails once. The error names the place, and the next frame is
// right without another call of the client's.
TEST_F(DisplayFaultGLTest, AFrameThatFailsIsTheOnlyOne) {
  initDisplayRendering(renderer_);
  const Picture good = stage_.draw(scene_);
  EXPECT_TRUE(agree(good, reference_picture(scene_)));
  const struct {
    const char* function;
    std::string message;  // of the first call
    int calls;
  } faults[] = {
      {"glTexImage1D", "An OpenGL error in render: colormap changed", 1 + OCT_DISPLAY_OVERLAYS},
      {"glTexImage2D", "An OpenGL error in SimpleDataProvider::resize", 5},
      {"glTexSubImage2D", "An OpenGL error in SimpleDataProvider::LockedTexture::glTexSubImage2D", 2},
      {"glFramebufferTexture2D", "An OpenGL error in AbstractOpenGLFilter::draw", 3},
      {"glGenTextures", "Invalid texture for rendering....", 5 + 1 + OCT_DISPLAY_OVERLAYS},
      {"glGenFramebuffers", "An OpenGL error in AbstractOpenGLFilter::draw", 3},
  };
  for (const auto& [function, message, calls] : faults) {
    for (int after = 0; after < calls; ++after) {
      SCOPED_TRACE(function + std::string(", call ") + std::to_string(after));
      uninitDisplayRendering(renderer_);
      beginOffscreenFrame(stage_.target, 48, 64);
      {
        GlSpy spy;
        initDisplayRendering(renderer_);
        spy.fail_next(function, 1, GL_OUT_OF_MEMORY, after);
        renderDisplay(renderer_);
        EXPECT_GT(spy.calls(function), after);
        const std::string error = pending_error_of_place();
        EXPECT_NE(error, "(none)");
        if (after == 0) {
          EXPECT_EQ(error, message);
        }
        clear_gl_errors();
        finishOffscreenFrame(stage_.target, nullptr);
        EXPECT_TRUE(agree(draw(), good, exact));
        EXPECT_EQ(pending_error(), "(none)");
        uninitDisplayRendering(renderer_);
        beginOffscreenFrame(stage_.target, 1, 1);
        EXPECT_EQ(spy.live_objects(), 3U) << "more than the target's framebuffer and its two renderbuffers";
      }
    }
  }
  // One that the client has left behind is reported first.
  initDisplayRendering(renderer_);
  glEnable(GL_TEXTURE_BUFFER + 12345);
  renderDisplay(renderer_);
  EXPECT_EQ(pending_error_of_place(), "An OpenGL error in render: init");
  uninitDisplayRendering(renderer_);
}

TEST_F(DisplayFaultGLTest, HalfPrecisionWhenFloatDoesNotFit) {
  GlSpy spy;
  initDisplayRendering(renderer_);
  scene_.first_blur = scene_.pepper = false;
  scene_.overlays.clear();
  spy.fail_next("R32F proxy");
  // Half floats keep 11 bits of the sample, less than a level around the boundaries 0 and 1.
  expect_scene();
  EXPECT_EQ(spy.calls("R16F texture"), 1);
  expect_recovery(spy);
}

}  // namespace
}  // namespace oct::test
