#include "gl/context/opengl_context.h"

#include <exception>

#include "core/console.h"
#include "gl/trace/gpu_track.h"

namespace oct::gl {

OpenGLContext::OpenGLContext(OpenGLWindow& window) : window_(window), handle_(window.createContext()) {
  try {
    identity_ = register_context(handle_);
  } catch (...) {
    window_.deleteContext(handle_);
    throw;
  }
}

OpenGLContext::~OpenGLContext() {
  try {
    if (is_current()) {
      forget_current_identity();
      collect_gpu_times();
      forget_gpu_track(identity_);
      window_.makeUncurrent();
    } else {
      forget_gpu_track(identity_);
    }
    unregister_context(identity_);
    window_.deleteContext(handle_);
  } catch (const std::exception& error) {
    write_error(error.what());
  }
}

bool OpenGLContext::is_current() const {
  return current_context() == handle_;
}

}  // namespace oct::gl
