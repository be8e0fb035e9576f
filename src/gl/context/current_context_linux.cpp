#include <EGL/egl.h>

#include "gl/context/current_context.h"
#include "gl/gl.h"

namespace oct::gl {

void* currentContext() {
  return eglGetCurrentContext();
}

// Asks OpenGL and not EGL, so that a client may bring a context of any window system.
bool isContextCurrent() {
  return glGetString(GL_VERSION) != nullptr;
}

}  // namespace oct::gl
