#include <dlfcn.h>

#include <stdexcept>

#include "live/device_module.h"

namespace oct {
namespace {

std::string fileName(const std::string& nameOrPath) {
  const bool complete =
      nameOrPath.find('/') != std::string::npos || nameOrPath.find(".so") != std::string::npos;
  return complete ? nameOrPath : "lib" + nameOrPath + ".so";
}

}  // namespace

DeviceModule::DeviceModule(const std::string& nameOrPath) {
  const std::string file = fileName(nameOrPath);
  // dlopen itself finds what is loaded already.
  handle_ = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (!handle_) {
    throw std::runtime_error("The device library \"" + nameOrPath + "\" could not be loaded: " + dlerror() +
                             " ");
  }
}

void* DeviceModule::symbol(const char* name) const {
  return dlsym(handle_, name);
}

}  // namespace oct
