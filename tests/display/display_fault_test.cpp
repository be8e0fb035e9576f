// OpenGL calls that fail: each gives its error, loses no object, and the next good call works.
#include "display/display_renderer.h"
#include "support/reference/display_reference.h"
#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

const std::string outOfMemory =
    "There is not enough memory left to execute the command. The state of the GL is undefined, except for "
    "the state "
    "of the error flags, after this error is recorded. (GL_OUT_OF_MEMORY)\n";

class DisplayFaultGLTest : public testing::Test {
 protected:
  DisplayFaultGLTest() {
    uninitDisplayRendering(renderer_);  // from here on every program's binary is kept
    scene_.image = testImage(64, 48);
    scene_.width = 48;
    scene_.height = 64;
    scene_.firstBlur = scene_.pepper = true;
    scene_.overlayImage = testImage(64, 48, 2);
    scene_.overlays = {{{0x8000FF00U, 0x80FF0000U}, 0.0, 1.0}};
    apply(scene_, renderer_);
  }

  Picture draw() const { return stage_.frame(scene_.width, scene_.height); }
  void expectScene() const { EXPECT_TRUE(agree(draw(), referencePicture(scene_))); }

  // The whole life of a renderer after a fault, and nothing left behind.
  void expectRecovery(GlSpy& spy) const {
    initDisplayRendering(renderer_);
    expectScene();
    EXPECT_EQ(pendingError(), "(none)");
    uninitDisplayRendering(renderer_);
    beginOffscreenFrame(stage_.target, 1, 1);
    EXPECT_EQ(spy.liveObjects(), 3U) << "more than the target's framebuffer and its two renderbuffers";
  }

  Scene scene_;
  const DisplayStage stage_;
  const DisplayRenderingHandle renderer_ = stage_.renderer;
};

struct Fault {
  const char* function;
  std::string message;
};

TEST_F(DisplayFaultGLTest, InitFails) {
  const std::string invalidValue =
      "A numeric argument is out of range. The offending command is ignored and has no other side effect "
      "than to set the error flag. (GL_INVALID_VALUE)\n";
  const Fault faults[] = {
      {"glCompileShader", "Vertex shader compilation failed"},
      {"glCreateShader", "Vertex shader compilation failed"},
      {"glLinkProgram", ""},
      {"glCreateProgram", "An OpenGL error in BinaryShader::load_to_program occured: " + invalidValue},
      {"glProgramBinary", "An OpenGL error in BinaryShader::load_to_program occured: " + outOfMemory},
      {"glGenBuffers", "Could not create OpenGL buffer. "},
      {"glBufferData", "An OpenGL error in AbstractOpenGLFilter::init occured: " + outOfMemory},
  };
  for (const Fault& fault : faults) {
    GlSpy spy;
    // A driver that holds no executable for a binary makes the library compile again.
    if (fault.message.find("An OpenGL error") != 0) spy.answer(GL_PROGRAM_BINARY_LENGTH, 0);
    spy.failNext(fault.function);
    initDisplayRendering(renderer_);
    EXPECT_EQ(pendingError(), fault.message) << fault.function;
    EXPECT_GE(spy.calls(fault.function), 1);
    clearGLErrors();
    renderDisplay(renderer_);  // not initialised: skipped
    EXPECT_EQ(pendingError(), "(none)") << fault.function;
    EXPECT_EQ(spy.liveObjects(), 0U) << fault.function;
  }
  GlSpy spy;
  expectRecovery(spy);
}

TEST_F(DisplayFaultGLTest, RenderFails) {
  const Fault faults[] = {
      {"glTexImage1D", "An OpenGL error in render: colormap changed occured: " + outOfMemory},
      {"glTexImage2D", "An OpenGL error in SimpleDataProvider::resize occured: " + outOfMemory},
      {"glTexSubImage2D",
       "An OpenGL error in SimpleDataProvider::LockedTexture::glTexSubImage2D occured: " + outOfMemory},
      {"glFramebufferTexture2D", "An OpenGL error in AbstractOpenGLFilter::draw occured: " + outOfMemory},
  };
  for (const Fault& fault : faults) {
    SCOPED_TRACE(fault.function);
    GlSpy spy;
    initDisplayRendering(renderer_);
    spy.failNext(fault.function);
    draw();
    EXPECT_EQ(pendingError(), fault.message) << fault.function;
    clearGLErrors();
    apply(scene_, renderer_);
    expectScene();
    EXPECT_EQ(pendingError(), "(none)");
    uninitDisplayRendering(renderer_);
    expectRecovery(spy);
  }
}

TEST_F(DisplayFaultGLTest, FilterTextureFails) {
  GlSpy spy;
  initDisplayRendering(renderer_);
  setDisplayBlur(renderer_, 0, 0);
  setDisplayPepperFilter(renderer_, 0);
  draw();  // now the image has its texture and only the filters lack theirs
  apply(scene_, renderer_);
  spy.failNext("glTexImage2D");
  draw();
  EXPECT_EQ(pendingError(), "An OpenGL error in AbstractOpenGLFilter::resize occured: " + outOfMemory);
  expectScene();
  uninitDisplayRendering(renderer_);
  expectRecovery(spy);
}

TEST_F(DisplayFaultGLTest, NoTextureName) {
  GlSpy spy;
  initDisplayRendering(renderer_);
  setDisplayColormap(renderer_, scene_.colormap.data(), static_cast<int>(scene_.colormap.size()));
  setDisplayNumberOverlays(renderer_, 0, 0);
  draw();
  const float sample = 1.0F;
  setDisplayData(renderer_, 1, 1, &sample);
  spy.failNext("glGenTextures");
  draw();
  EXPECT_EQ(pendingError(), "Invalid texture for rendering....");
  apply(scene_, renderer_);
  expectScene();
  uninitDisplayRendering(renderer_);
}

TEST_F(DisplayFaultGLTest, HalfPrecisionWhenFloatDoesNotFit) {
  GlSpy spy;
  initDisplayRendering(renderer_);
  scene_.firstBlur = scene_.pepper = false;
  scene_.overlays.clear();
  apply(scene_, renderer_);
  spy.failNext("R32F proxy");
  // Half floats keep 11 bits of the sample, less than a level around the boundaries 0 and 1.
  expectScene();
  EXPECT_EQ(spy.calls("R16F texture"), 1);
  EXPECT_EQ(pendingError(), "(none)");

  const float sample = 1.0F;
  setDisplayData(renderer_, 1, 1, &sample);
  spy.failNext("R32F proxy");
  spy.failNext("R16F proxy");
  draw();
  EXPECT_EQ(pendingError(), "Cannot generate a texture of the required size. ");
  draw();
  EXPECT_EQ(pendingError(), "(none)");
  uninitDisplayRendering(renderer_);
}

TEST_F(DisplayFaultGLTest, StaleErrorOfTheClientIsReportedFirst) {
  initDisplayRendering(renderer_);
  beginOffscreenFrame(stage_.target, 8, 8);
  glEnable(GL_TEXTURE_BUFFER + 12345);
  renderDisplay(renderer_);
  EXPECT_EQ(pendingError().find("An OpenGL error in render: init occured: An unacceptable value"), 0U);
  uninitDisplayRendering(renderer_);
}

TEST_F(DisplayFaultGLTest, IncompleteOffscreenFramebuffer) {
  GlSpy spy;
  spy.failNext("glCheckFramebufferStatus", 1, GL_FRAMEBUFFER_UNSUPPORTED);
  beginOffscreenFrame(stage_.target, 8, 8);
  EXPECT_EQ(pendingError(), "The offscreen framebuffer is not complete: GL_FRAMEBUFFER_UNSUPPORTED");
  Picture picture(8, 8);
  finishOffscreenFrame(stage_.target, picture.bytes.data());
  EXPECT_EQ(pendingError(), "No offscreen frame has been begun. ");
  spy.failNext("glRenderbufferStorage");
  beginOffscreenFrame(stage_.target, 8, 8);
  EXPECT_EQ(pendingError(), "An OpenGL error in beginOffscreenFrame occured: " + outOfMemory);
  beginOffscreenFrame(stage_.target, 8, 8);
  EXPECT_EQ(pendingError(), "(none)");
}

}  // namespace
}  // namespace oct::test
