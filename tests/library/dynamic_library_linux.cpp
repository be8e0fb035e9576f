#include "library/dynamic_library.h"

#include <stdexcept>

#include <dlfcn.h>

namespace oct::test {

DynamicLibrary::DynamicLibrary(const std::string& file)
    : handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!handle_) throw std::runtime_error(dlerror());
}

DynamicLibrary::~DynamicLibrary() {
  dlclose(handle_);
}

void* DynamicLibrary::symbol(const char* name) const {
  return dlsym(handle_, name);
}

}  // namespace oct::test
