// The OpenGL entry points. Everything beyond OpenGL 1.1 is a function pointer that initGlew fills.
#pragma once

#include <GL/glew.h>

namespace oct::gl {

// What the current context tells of a name of one number; 0 where it does not know the name.
inline GLint integer(GLenum name) {
  GLint value = 0;
  glGetIntegerv(name, &value);
  return value;
}

}  // namespace oct::gl
