#include "gl/context/opengl_context.h"

#include <exception>

#include "core/console.h"
#include "gl/context/current_context.h"

namespace oct::gl {

OpenGLContext::~OpenGLContext() {
  try {
    if (current_context() == handle_) window_.makeUncurrent();
    window_.deleteContext(handle_);
  } catch (const std::exception& error) {
    write_error(error.what());
  }
}

}  // namespace oct::gl
