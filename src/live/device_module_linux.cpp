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

// The path under which the process has loaded a file of that name; empty if it has not. dlopen by itself
// finds only modules that carry the name inside.
std::string loadedPath(const std::string& file) {
  struct Search {
    const std::string& file;
    std::string path;
  } search{file, {}};
  dl_iterate_phdr(
      [](dl_phdr_info* module, std::size_t, void* data) {
        auto& wanted = *static_cast<Search*>(data);
        if (std::filesystem::path(module->dlpi_name).filename() != wanted.file) return 0;
        wanted.path = module->dlpi_name;
        return 1;
      },
      &search);
  return search.path;
}

}  // namespace

DeviceModule::DeviceModule(const std::string& nameOrPath) {
  std::string file = fileName(nameOrPath);
  if (const std::string loaded = loadedPath(file); !loaded.empty()) file = loaded;
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
