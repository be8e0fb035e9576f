#include <dlfcn.h>
#include <link.h>

#include <filesystem>
#include <stdexcept>

#include "live/device_module.h"

namespace oct {
namespace {

std::string fileName(const std::string& nameOrPath) {
  const bool complete =
      nameOrPath.find('/') != std::string::npos || nameOrPath.find(".so") != std::string::npos;
  return complete ? nameOrPath : "lib" + nameOrPath + ".so";
}

// The path of a loaded module with that file name. dlopen finds it by itself only if the module carries the
// name inside, which not every linker call sees to.
std::string loadedPath(const std::string& file) {
  struct Search {
    const std::string& file;
    std::string path;
  } search{file, file};
  dl_iterate_phdr(
      [](dl_phdr_info* module, std::size_t, void* context) {
        auto& wanted = *static_cast<Search*>(context);
        const std::filesystem::path path(module->dlpi_name);
        if (path.filename() != wanted.file) return 0;
        wanted.path = path.string();
        return 1;
      },
      &search);
  return search.path;
}

}  // namespace

DeviceModule::DeviceModule(const std::string& nameOrPath) {
  const std::string file = fileName(nameOrPath);
  handle_ = dlopen(loadedPath(file).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (!handle_) {
    throw std::runtime_error("The device library \"" + nameOrPath + "\" could not be loaded: " + dlerror() +
                             " ");
  }
}

void* DeviceModule::symbol(const char* name) const {
  return dlsym(handle_, name);
}

}  // namespace oct
