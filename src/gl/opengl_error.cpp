#include "gl/opengl_error.h"

#include <array>
#include <string>

#include "core/console.h"
#include "core/exception.h"
#include "gl/context/current_context.h"

namespace oct::gl {
namespace {

#define OCT_GL_IGNORED \
  "The offending command is ignored and has no other side effect than to set the error flag."

// Indexed by code - GL_INVALID_ENUM (0x0500).
constexpr std::array<const char*, 7> error_texts{
    "An unacceptable value is specified for an enumerated argument. " OCT_GL_IGNORED " (GL_INVALID_ENUM)",
    "A numeric argument is out of range. " OCT_GL_IGNORED " (GL_INVALID_VALUE)",
    "The specified operation is not allowed in the current state. " OCT_GL_IGNORED " (GL_INVALID_OPERATION)",
    "An attempt has been made to perform an operation that would cause an internal stack to overflow. "
    "(GL_STACK_OVERFLOW)",
    "An attempt has been made to perform an operation that would cause an internal stack to underflow. "
    "(GL_STACK_UNDERFLOW)",
    "There is not enough memory left to execute the command. The state of the GL is undefined, except "
    "for the state of the error flags, after this error is recorded. (GL_OUT_OF_MEMORY)",
    "The framebuffer object is not complete. " OCT_GL_IGNORED " (GL_INVALID_FRAMEBUFFER_OPERATION)",
};

#undef OCT_GL_IGNORED

std::string message(const std::string& where, GLenum code) {
  return "An OpenGL error in " + where + " occured: " + error_text(code);
}

}  // namespace

const char* error_text(GLenum code) {
  const GLenum index = code - GL_INVALID_ENUM;
  return index < error_texts.size() ? error_texts[index] : "Unknown OpenGL Error";
}

ErrorKind kind_of(GLenum code) {
  return code == GL_OUT_OF_MEMORY ? ErrorKind::memory : ErrorKind::opengl;
}

void throwOnGLError(std::string where) {
  const GLenum code = glGetError();
  if (code != GL_NO_ERROR) throw Exception(kind_of(code), message(where, code) + '\n');
}

void printGLError(std::string where) {
  const GLenum code = glGetError();
  if (code != GL_NO_ERROR) write_error(message(where, code));
}

void discard_gl_errors() {
  constexpr int most = 64;  // OpenGL keeps one of each kind, in each part of a distributed one
  if (!is_context_current()) return;
  for (int i = 0; i < most && glGetError() != GL_NO_ERROR; ++i) {
  }
}

const char* framebufferStatusName(GLenum status) {
  switch (status) {
    case GL_FRAMEBUFFER_UNDEFINED:
      return "GL_FRAMEBUFFER_UNDEFINED";
    case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT:
      return "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT";
    case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT:
      return "GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT";
    case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER:
      return "GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER";
    case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER:
      return "GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER";
    case GL_FRAMEBUFFER_UNSUPPORTED:
      return "GL_FRAMEBUFFER_UNSUPPORTED";
    case GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE:
      return "GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE";
    case GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS:
      return "GL_FRAMEBUFFER_INCOMPLETE_LAYER_TARGETS";
    default:
      return "Unknown GLenum.";
  }
}

}  // namespace oct::gl
