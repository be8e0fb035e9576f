#include "gl/context/current_context.h"

#include <EGL/egl.h>

#include "gl/context/egl_api_linux.h"
#include "gl/gl.h"

namespace oct::gl {

void* current_context() {
  return eglGetCurrentContext();
}

// Where EGL knows of none OpenGL is asked, so that a client may bring a context of any window system.
bool is_context_current() {
  return current_context() != nullptr || glGetString(GL_VERSION) != nullptr;
}

CurrentContext::CurrentContext()
    : display_(eglGetCurrentDisplay()),
      draw_(eglGetCurrentSurface(EGL_DRAW)),
      read_(eglGetCurrentSurface(EGL_READ)),
      context_(current_context()),
      identity_(current_identity()) {}

bool CurrentContext::is_current() const {
  return current_context() == context_ && eglGetCurrentSurface(EGL_DRAW) == draw_ &&
         eglGetCurrentSurface(EGL_READ) == read_;
}

bool CurrentContext::make_current() const {
  return eglMakeCurrent(display_, draw_, read_, context_) == EGL_TRUE;
}

void CurrentContext::release_current() {
  const OpenGLApi api;
  const EGLDisplay display = eglGetCurrentDisplay();
  if (display != EGL_NO_DISPLAY) eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

}  // namespace oct::gl
