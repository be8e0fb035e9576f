// Which API the EGL calls of a thread are about.
#pragma once

#include <EGL/egl.h>

namespace oct::gl {

// OpenGL, until the end of the scope; then again what the thread had chosen, which may be the client's.
class OpenGLApi {
 public:
  OpenGLApi() : before_(eglQueryAPI()), bound_(eglBindAPI(EGL_OPENGL_API) == EGL_TRUE) {}
  ~OpenGLApi() {
    if (before_ != EGL_NONE) eglBindAPI(before_);
  }
  OpenGLApi(const OpenGLApi&) = delete;
  OpenGLApi& operator=(const OpenGLApi&) = delete;

  explicit operator bool() const { return bound_; }

 private:
  const EGLenum before_;
  const bool bound_;
};

}  // namespace oct::gl
