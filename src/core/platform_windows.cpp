#include "core/platform.h"

#include <windows.h>

#include <memory>

namespace oct {

std::uint32_t currentThreadId() {
  return GetCurrentThreadId();
}

std::string systemErrorText() {
  char* text = nullptr;
  const DWORD length = FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      GetLastError(), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&text), 0, nullptr);
  if (length == 0) return "Error text could not be obtained.";
  const std::unique_ptr<char, decltype(&LocalFree)> owner(text, &LocalFree);
  return std::string(text, length);
}

}  // namespace oct
