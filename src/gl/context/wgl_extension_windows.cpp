#include "gl/context/wgl_extension_windows.h"

#include <sstream>
#include <string>

#include "gl/gl.h"
// After gl.h, which it needs.
#include <GL/wglew.h>

#include "gl/context/current_context.h"

namespace oct::gl {
namespace {

// The extension is asked for in a context, for which any will do.
class AnyContext {
 public:
  explicit AnyContext(HDC device_context) : context_(wglCreateContext(device_context)) {
    if (context_) wglMakeCurrent(device_context, context_);
  }
  ~AnyContext() {
    if (context_) wglMakeCurrent(nullptr, nullptr), wglDeleteContext(context_);
  }
  AnyContext(const AnyContext&) = delete;
  AnyContext& operator=(const AnyContext&) = delete;

 private:
  const RestoreCurrent before_;
  const HGLRC context_;
};

}  // namespace

HGLRC create_debug_context(HDC device_context) {
  const AnyContext any(device_context);
  const auto create = reinterpret_cast<PFNWGLCREATECONTEXTATTRIBSARBPROC>(
      reinterpret_cast<void*>(wglGetProcAddress("wglCreateContextAttribsARB")));
  if (!create) return nullptr;
  constexpr int attributes[] = {WGL_CONTEXT_MAJOR_VERSION_ARB,
                                3,
                                WGL_CONTEXT_MINOR_VERSION_ARB,
                                3,
                                WGL_CONTEXT_PROFILE_MASK_ARB,
                                WGL_CONTEXT_CORE_PROFILE_BIT_ARB,
                                WGL_CONTEXT_FLAGS_ARB,
                                WGL_CONTEXT_DEBUG_BIT_ARB,
                                0};
  return create(device_context, nullptr, attributes);
}

bool has_wgl_extension(const char* name) {
  const char* list = nullptr;
  if (wglGetExtensionsStringARB) {
    list = wglGetExtensionsStringARB(wglGetCurrentDC());
  } else if (wglGetExtensionsStringEXT) {
    list = wglGetExtensionsStringEXT();
  }
  std::istringstream words(list ? list : "");
  for (std::string word; words >> word;) {
    if (word == name) return true;
  }
  return false;
}

}  // namespace oct::gl
