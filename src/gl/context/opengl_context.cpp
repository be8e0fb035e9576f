#include "gl/context/opengl_context.h"

#include <exception>

#include "core/console.h"
#include "gl/context/current_context.h"

namespace oct::gl {

OpenGLContext::~OpenGLContext() {
  try {
    if (currentContext() == handle_) window_.makeUncurrent();
    window_.deleteContext(handle_);
  } catch (const std::exception& error) {
    writeError(error.what());
  }
}

}  // namespace oct::gl
