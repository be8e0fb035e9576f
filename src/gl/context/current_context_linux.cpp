#include "gl/context/current_context.h"

#include <EGL/egl.h>

#include "gl/gl.h"

namespace oct::gl {

void* current_context() {
  return eglGetCurrentContext();
}

// Asks OpenGL and not EGL, so that a client may bring a context of any window system.
bool is_context_current() {
  return glGetString(GL_VERSION) != nullptr;
}

}  // namespace oct::gl
