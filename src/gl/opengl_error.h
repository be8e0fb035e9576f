// Named checkpoints of the OpenGL error flag, and the texts of OpenGL's codes.
#pragma once

#include <string>

#include "core/exception.h"
#include "gl/gl.h"

namespace oct::gl {

// Text of an error code with OpenGL's name for it in parentheses.
const char* error_text(GLenum code);

ErrorKind kind_of(GLenum code);

// Reads the error flag once and throws an Exception of the code's kind when it is set. Further queued errors stay for the
// next checkpoint.
void throwOnGLError(std::string where);

// The same, but writes the text to the standard error stream and returns.
void printGLError(std::string where);

// Forgets what the error flag holds. Ends where no context is current and where the flag never empties, as it does
// with a lost context.
void discard_gl_errors();

const char* framebufferStatusName(GLenum status);

}  // namespace oct::gl
