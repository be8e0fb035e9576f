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
    scene_.overlays = {{{0x8000FF00U, 0x80FF0000U}, 0.0, 1.0}};
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
  const float sample_ = 1.0F;
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
    gl::discard_gl_errors();
    renderDisplay(renderer_);  // not initialised: skipped
    EXPECT_EQ(pending_error(), "(none)");
    EXPECT_EQ(spy.live_objects(), 0U);
  }
  GlSpy spy;
  initDisplayRendering(renderer_);
  expect_recovery(spy);
}

TEST_F(DisplayFaultGLTest, RenderFails) {
  const std::function<void()> whole = [&] { apply(scene_, renderer_); };
  // A frame of the base image alone: then it has its texture and its map.
  const auto base = [&] {
    setDisplayBlur(renderer_, 0, 0);
    setDisplayPepperFilter(renderer_, 0);
    setDisplayNumberOverlays(renderer_, 0, 0);
    draw();
  };
  const struct {
    const char* function;
    std::string message;
    std::function<void()> before;
  } faults[] = {
      {"glTexImage1D", "An OpenGL error in render: colormap changed", whole},
      {"glTexImage2D", "An OpenGL error in SimpleDataProvider::resize", whole},
      {"glTexImage2D", "An OpenGL error in AbstractOpenGLFilter::resize", [&] { base(), whole(); }},
      {"glTexSubImage2D", "An OpenGL error in SimpleDataProvider::LockedTexture::glTexSubImage2D", whole},
      {"glFramebufferTexture2D", "An OpenGL error in AbstractOpenGLFilter::draw", whole},
      {"glGenTextures", "Invalid texture for rendering....",
       [&] { base(), setDisplayData(renderer_, 1, 1, &sample_); }},
  };
  for (const auto& fault : faults) {
    SCOPED_TRACE(fault.message);
    GlSpy spy;
    initDisplayRendering(renderer_);
    fault.before();
    spy.fail_next(fault.function);
    draw();
    EXPECT_EQ(pending_error_of_place(), fault.message);
    gl::discard_gl_errors();
    expect_recovery(spy);
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
