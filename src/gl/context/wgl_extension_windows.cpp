#include "gl/context/wgl_extension_windows.h"

#include <sstream>
#include <string>

#include "gl/gl.h"
// After gl.h, which it needs.
#include <GL/wglew.h>

namespace oct::gl {

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
