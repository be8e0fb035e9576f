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

const struct {
  GLenum code;
  std::string text, name;
} texts[] = {
    {0x0500, "An unacceptable value is specified for an enumerated argument." + ignored, "GL_INVALID_ENUM"},
    {0x0501, "A numeric argument is out of range." + ignored, "GL_INVALID_VALUE"},
    {0x0502, "The specified operation is not allowed in the current state." + ignored,
     "GL_INVALID_OPERATION"},
    {0x0503, internal + "overflow.", "GL_STACK_OVERFLOW"},
    {0x0504, internal + "underflow.", "GL_STACK_UNDERFLOW"},
    {0x0505,
     "There is not enough memory left to execute the command. The state of the GL is undefined, except for "
     "the state of the error flags, after this error is recorded.",
     "GL_OUT_OF_MEMORY"},
    {0x0506, "The framebuffer object is not complete." + ignored, "GL_INVALID_FRAMEBUFFER_OPERATION"},
};

TEST_F(OpenGLErrorGLTest, TextOfEveryCode) {
  GlSpy spy;
  for (const auto& [code, text, name] : texts) {
    const std::string expected = "An OpenGL error in some place occured: " + text + " (" + name + ")\n";
    spy.queue_error(code);
    EXPECT_EQ(thrown_by("some place"), expected);
    spy.queue_error(code);
    testing::internal::CaptureStderr();
    gl::printGLError("some place");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
  }
  for (const GLenum other : {0x04FFU, 0x0507U, 1U, 0xFFFFFFFFU}) {
    spy.queue_error(other);
    EXPECT_EQ(thrown_by("x"), "An OpenGL error in x occured: Unknown OpenGL Error\n");
  }
}

TEST_F(OpenGLErrorGLTest, OneErrorPerCheckpoint) {
  GlSpy spy;
  for (const GLenum error : {GL_INVALID_VALUE, GL_INVALID_OPERATION}) spy.queue_error(error);
  glEnable(0x1234);  // OpenGL's own comes after them
  for (const char* name : {"GL_INVALID_VALUE", "GL_INVALID_OPERATION", "GL_INVALID_ENUM"}) {
    EXPECT_TRUE(contains(thrown_by("a"), name));
  }
  EXPECT_EQ(thrown_by("b"), "(none)");
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
