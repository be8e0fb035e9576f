#include "gl/opengl_error.h"

#include <array>
#include <stdexcept>
#include <string>

#include "core/console.h"

namespace oct::gl {
namespace {

constexpr const char* unknownError = "Unknown OpenGL Error";

#define OCT_GL_IGNORED \
  "The offending command is ignored and has no other side effect than to set the error flag."

struct ErrorText {
  const char* named;
  const char* plain;
};

#define OCT_GL_TEXT(text, name) \
  ErrorText {                   \
    text " (" name ")", text    \
  }

// Indexed by code - GL_INVALID_ENUM (0x0500).
constexpr std::array<ErrorText, 7> errorTexts{{
    OCT_GL_TEXT("An unacceptable value is specified for an enumerated argument. " OCT_GL_IGNORED,
                "GL_INVALID_ENUM"),
    OCT_GL_TEXT("A numeric argument is out of range. " OCT_GL_IGNORED, "GL_INVALID_VALUE"),
    OCT_GL_TEXT("The specified operation is not allowed in the current state. " OCT_GL_IGNORED,
                "GL_INVALID_OPERATION"),
    OCT_GL_TEXT(
        "An attempt has been made to perform an operation that would cause an internal stack to overflow.",
        "GL_STACK_OVERFLOW"),
    OCT_GL_TEXT(
        "An attempt has been made to perform an operation that would cause an internal stack to underflow.",
        "GL_STACK_UNDERFLOW"),
    OCT_GL_TEXT(
        "There is not enough memory left to execute the command. The state of the GL is undefined, except "
        "for the state of the error flags, after this error is recorded.",
        "GL_OUT_OF_MEMORY"),
    OCT_GL_TEXT("The framebuffer object is not complete. " OCT_GL_IGNORED,
                "GL_INVALID_FRAMEBUFFER_OPERATION"),
}};

#undef OCT_GL_TEXT
#undef OCT_GL_IGNORED

const ErrorText* find(GLenum code) {
  const GLenum index = code - GL_INVALID_ENUM;
  return index < errorTexts.size() ? &errorTexts[index] : nullptr;
}

std::string message(const std::string& where, GLenum code) {
  return "An OpenGL error in " + where + " occured: " + errorText(code);
}

}  // namespace

const char* errorText(GLenum code) {
  const ErrorText* const text = find(code);
  return text ? text->named : unknownError;
}

const char* plainErrorText(GLenum code) {
  const ErrorText* const text = find(code);
  return text ? text->plain : unknownError;
}

void throwOnGLError(std::string where) {
  const GLenum code = glGetError();
  if (code != GL_NO_ERROR) throw std::runtime_error(message(where, code) + '\n');
}

void printGLError(std::string where) {
  const GLenum code = glGetError();
  if (code != GL_NO_ERROR) writeError(message(where, code));
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
