#include <windows.h>

#include <filesystem>
#include <stdexcept>

#include "core/platform.h"
#include "live/device_module.h"

namespace oct {
namespace {

// Only folders that a stranger cannot write to: the application's, the system's, and those that the
// application added.
HMODULE load(const std::filesystem::path& path) {
  if (!path.has_parent_path()) {
    return LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  }
  // What the library needs may lie beside it.
  return LoadLibraryExW(absolute(path).c_str(), nullptr,
                        LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

}  // namespace

DeviceModule::DeviceModule(const std::string& nameOrPath) {
  const std::filesystem::path path(nameOrPath);
  HMODULE module = nullptr;
  // The flag keeps the module loaded.
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN, path.c_str(), &module)) module = load(path);
  if (!module) {
    std::string reason = systemErrorText();
    reason.erase(reason.find_last_not_of("\r\n ") + 1);
    throw std::runtime_error("The device library \"" + nameOrPath + "\" could not be loaded: " + reason +
                             " ");
  }
  handle_ = module;
}

void* DeviceModule::symbol(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

}  // namespace oct
