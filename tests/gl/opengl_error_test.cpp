#include "gl/opengl_error.h"

#include "support/gl_spy.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

class OpenGLErrorGLTest : public GLTest {};

std::string thrown_by(const std::string& where) {
  return failure_of([&] { gl::throwOnGLError(where); });
}

const std::string ignored =
    " The offending command is ignored and has no other side effect than to set the error flag.";

const std::string internal =
    "An attempt has been made to perform an operation that would cause an internal stack to ";

// From 0x0500 on.
const std::pair<std::string, std::string> texts[] = {
    {"An unacceptable value is specified for an enumerated argument." + ignored, "GL_INVALID_ENUM"},
    {"A numeric argument is out of range." + ignored, "GL_INVALID_VALUE"},
    {"The specified operation is not allowed in the current state." + ignored, "GL_INVALID_OPERATION"},
    {internal + "overflow.", "GL_STACK_OVERFLOW"},
    {internal + "underflow.", "GL_STACK_UNDERFLOW"},
    {"There is not enough memory left to execute the command. The state of the GL is undefined, except for "
     "the state of the error flags, after this error is recorded.",
     "GL_OUT_OF_MEMORY"},
    {"The framebuffer object is not complete." + ignored, "GL_INVALID_FRAMEBUFFER_OPERATION"},
};

TEST_F(OpenGLErrorGLTest, OneTextPerCheckpoint) {
  GlSpy spy;
  GLenum code = 0x0500;
  for (const auto& [text, name] : texts) {
    const std::string expected = "An OpenGL error in some place occured: " + text + " (" + name + ")\n";
    for (int i = 0; i < 2; ++i) spy.queue_error(code);
    EXPECT_EQ(thrown_by("some place"), expected);
    testing::internal::CaptureStderr();
    gl::printGLError("some place");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
    ++code;
  }
  for (const GLenum other : {0x04FFU, code, 1U, 0xFFFFFFFFU}) {
    spy.queue_error(other);
    EXPECT_EQ(thrown_by("x"), "An OpenGL error in x occured: Unknown OpenGL Error\n");
  }
  glEnable(0x1234);
  EXPECT_TRUE(contains(thrown_by("a"), "GL_INVALID_ENUM"));
  EXPECT_EQ(thrown_by("b"), "(none)");
}

// A lost context, and some drivers without one, report an error each time they are asked.
TEST_F(OpenGLErrorGLTest, AnErrorFlagThatNeverEmptiesHoldsNobodyUp) {
  GlSpy spy;
  for (const int errors : {0, 1, 5}) {
    for (int i = 0; i < errors; ++i) spy.queue_error(GL_OUT_OF_MEMORY);
    gl::discard_gl_errors();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  }
  for (int i = 0; i < 1000; ++i) spy.queue_error(GL_INVALID_OPERATION);
  gl::discard_gl_errors();
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_OPERATION));
}

TEST_F(OpenGLErrorGLTest, FramebufferStatusNames) {
  const std::pair<GLenum, const char*> names[] = {
      {0x8219, "GL_FRAMEBUFFER_UNDEFINED"},
      {0x8CD6, "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT"},
      {0x8CD7, "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT"},
      {0x8CDB, "GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER"},
      {0x8CDC, "GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER"},
      {0x8CDD, "GL_FRAMEBUFFER_UNSUPPORTED"},
      {0x8D56, "GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE"},
      {0x8DA8, "GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS"},
      {GL_FRAMEBUFFER_COMPLETE, "Unknown GLenum."},
      {0, "Unknown GLenum."},
  };
  for (const auto& [status, name] : names) EXPECT_STREQ(gl::framebufferStatusName(status), name);
}

}  // namespace
}  // namespace oct::test
