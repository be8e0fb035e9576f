// Owner of an OpenGL context on a hidden window.
#pragma once

#include "gl/context/opengl_window.h"

namespace oct::gl {

// Creates the context; the window must outlive it. The destructor releases it from the calling thread, which
// must be the one that used it, and deletes it.
class OpenGLContext {
 public:
  explicit OpenGLContext(OpenGLWindow& window) : window_(window), handle_(window.createContext()) {}
  ~OpenGLContext();
  OpenGLContext(const OpenGLContext&) = delete;
  OpenGLContext& operator=(const OpenGLContext&) = delete;

  void makeCurrent() { window_.makeCurrent(handle_); }

 private:
  OpenGLWindow& window_;
  ContextHandle handle_;
};

}  // namespace oct::gl
