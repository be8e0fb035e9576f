#include <dlfcn.h>

#include "scene/device_error.h"
#include "scene/shared_library.h"

namespace oct::app {
namespace {

std::string fileName(const std::string& nameOrPath) {
  const bool complete =
      nameOrPath.find('/') != std::string::npos || nameOrPath.find(".so") != std::string::npos;
  return complete ? nameOrPath : "lib" + nameOrPath + ".so";
}

}  // namespace

SharedLibrary::SharedLibrary(const std::string& nameOrPath)
    : handle_(dlopen(fileName(nameOrPath).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)) {
  if (!handle_) throw DeviceError("the device library '" + nameOrPath + "' cannot be loaded: " + dlerror());
}

void* SharedLibrary::symbol(const char* name) const {
  return dlsym(handle_, name);
}

}  // namespace oct::app
