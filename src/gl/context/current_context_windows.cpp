#include "gl/context/current_context.h"

#include <windows.h>

namespace oct::gl {

void* current_context() {
  return wglGetCurrentContext();
}

bool is_context_current() {
  return wglGetCurrentContext() != nullptr;
}

CurrentContext::CurrentContext()
    : display_(wglGetCurrentDC()), context_(current_context()), identity_(current_identity()) {}

bool CurrentContext::is_current() const {
  return current_context() == context_ && wglGetCurrentDC() == display_;
}

bool CurrentContext::make_current() const {
  return wglMakeCurrent(static_cast<HDC>(display_), static_cast<HGLRC>(context_)) != FALSE;
}

void CurrentContext::release_current() {
  wglMakeCurrent(nullptr, nullptr);
}

}  // namespace oct::gl
