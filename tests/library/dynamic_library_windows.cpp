#include "library/dynamic_library.h"

#include <cstdlib>
#include <stdexcept>

#include <windows.h>

namespace oct::test {

DynamicLibrary::DynamicLibrary(const std::string& file) : handle_(LoadLibraryA(file.c_str())) {
  if (!handle_) throw std::runtime_error("LoadLibrary failed: " + std::to_string(GetLastError()));
}

DynamicLibrary::~DynamicLibrary() {
  FreeLibrary(static_cast<HMODULE>(handle_));
}

void* DynamicLibrary::symbol(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

void set_environment(const char* name, const char* value) {
  _putenv_s(name, value ? value : "");  // of the C runtime, which tells the system
}

}  // namespace oct::test
