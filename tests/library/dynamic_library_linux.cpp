#include "library/dynamic_library.h"

#include <cstdlib>
#include <stdexcept>

#include <dlfcn.h>

namespace oct::test {

namespace {

// The library never terminates its EGL display, which others may be using; EGL keeps it for the next load. Where EGL
// goes with the library, the display is lost.
void keep_egl() {
  static void* const egl = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
  if (!egl) throw std::runtime_error(dlerror());
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::string& file)
    : handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!handle_) throw std::runtime_error(dlerror());
  keep_egl();
}

DynamicLibrary::~DynamicLibrary() {
  dlclose(handle_);
}

void* DynamicLibrary::symbol(const char* name) const {
  return dlsym(handle_, name);
}

void set_environment(const char* name, const char* value) {
  value ? setenv(name, value, 1) : unsetenv(name);
}

}  // namespace oct::test
