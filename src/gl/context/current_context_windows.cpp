#include <windows.h>

#include "gl/context/current_context.h"

namespace oct::gl {

void* currentContext() {
  return wglGetCurrentContext();
}

bool isContextCurrent() {
  return wglGetCurrentContext() != nullptr;
}

}  // namespace oct::gl
