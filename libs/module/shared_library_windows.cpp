#include "module/shared_library.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <windows.h>

namespace oct {
namespace {

// Names of files are UTF-8 here, whatever the code page of the machine is.
std::filesystem::path path_of(const std::string& name_or_path) {
  std::filesystem::path path(std::u8string(name_or_path.begin(), name_or_path.end()));
  // The system's loader wants backslashes, and compares whole paths.
  return path.has_parent_path() ? absolute(path).make_preferred() : path;
}

// Only folders that a stranger cannot write to: the application's, the system's, and those that the
// application added. What a library given by its path needs may lie beside it.
HMODULE load(const std::filesystem::path& path) {
  const DWORD beside = path.has_parent_path() ? LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR : 0;
  return LoadLibraryExW(path.c_str(), nullptr, beside | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
}

}  // namespace

SharedLibrary::SharedLibrary(const std::string& name_or_path) {
  const std::filesystem::path path = path_of(name_or_path);
  HMODULE module = nullptr;
  // The flag keeps the module loaded.
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN, path.c_str(), &module)) module = load(path);
  if (!module) {
    std::string reason = std::system_category().message(static_cast<int>(GetLastError()));
    reason.erase(reason.find_last_not_of("\r\n ") + 1);
    throw std::runtime_error(reason);
  }
  handle_ = module;
}

void* SharedLibrary::symbol(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

}  // namespace oct
