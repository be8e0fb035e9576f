#include <windows.h>

#include <filesystem>
#include <system_error>

#include "data/file_errors.h"
#include "scene/device_error.h"
#include "scene/shared_library.h"

namespace oct::app {
namespace {

// Only folders that a stranger cannot write to; what a library given by its path needs may lie beside it.
HMODULE load(const std::filesystem::path& path) {
  if (!path.has_parent_path()) {
    return LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  }
  return LoadLibraryExW(absolute(path).make_preferred().c_str(), nullptr,
                        LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

}  // namespace

SharedLibrary::SharedLibrary(const std::string& nameOrPath) : handle_(load(fromUtf8(nameOrPath))) {
  if (handle_) return;
  const auto error = static_cast<int>(GetLastError());
  throw DeviceError("the device library '" + nameOrPath +
                    "' cannot be loaded: " + std::system_category().message(error));
}

void* SharedLibrary::symbol(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

}  // namespace oct::app
