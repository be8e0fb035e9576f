#include "gl/context/current_context.h"

#include <windows.h>

namespace oct::gl {

void* current_context() {
  return wglGetCurrentContext();
}

bool is_context_current() {
  return wglGetCurrentContext() != nullptr;
}

}  // namespace oct::gl
