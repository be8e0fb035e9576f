// Owner of an OpenGL context on a hidden window.
#pragma once

#include "gl/context/current_context.h"
#include "gl/context/opengl_window.h"

namespace oct::gl {

// Creates the context; the window must outlive it. The destructor releases it from the calling thread, which
// must be the one that used it, and deletes it.
class OpenGLContext {
 public:
  explicit OpenGLContext(OpenGLWindow& window);
  ~OpenGLContext();
  OpenGLContext(const OpenGLContext&) = delete;
  OpenGLContext& operator=(const OpenGLContext&) = delete;

  void makeCurrent() { window_.makeCurrent(handle_); }
  bool is_current() const;  // on the calling thread
  bool is(const CurrentContext& context) const { return context.handle() == handle_; }

 private:
  OpenGLWindow& window_;
  const ContextHandle handle_;
  ContextIdentity identity_ = no_context;
};

}  // namespace oct::gl
