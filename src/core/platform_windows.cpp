#include "core/platform.h"

#include <memory>

#include <windows.h>

namespace oct {

std::uint32_t current_thread_id() {
  return GetCurrentThreadId();
}

bool is_switched_on(const char* variable) {
  char value[2] = "";
  // What does not fit has a length above 1 and leaves the buffer undefined.
  const DWORD length = GetEnvironmentVariableA(variable, value, sizeof value);
  return length > 1 || (length == 1 && value[0] != '0');
}

bool is_quiet_program() {
  if (is_switched_on("OCT_RENDERING_QUIET")) return true;
  const auto mark =
      reinterpret_cast<const int*>(GetProcAddress(GetModuleHandleA(nullptr), "oct_rendering_quiet"));
  return mark && *mark != 0;
}

std::uint32_t current_process_id() {
  return GetCurrentProcessId();
}

// Windows has names of threads since 10, version 1607.
std::string system_thread_name() {
  using GetDescription = HRESULT(WINAPI*)(HANDLE, PWSTR*);
  const HMODULE kernel = GetModuleHandleA("kernel32.dll");
  const auto get = reinterpret_cast<GetDescription>(
      reinterpret_cast<void*>(GetProcAddress(kernel, "GetThreadDescription")));
  PWSTR text = nullptr;
  if (!get || FAILED(get(GetCurrentThread(), &text))) return {};
  const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(text, &LocalFree);
  char name[256] = "";
  return WideCharToMultiByte(CP_UTF8, 0, text, -1, name, sizeof name, nullptr, nullptr) > 0 ? name : "";
}

std::string system_error_text() {
  char* text = nullptr;
  const DWORD length = FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      GetLastError(), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&text), 0, nullptr);
  if (length == 0) return "Error text could not be obtained.";
  const std::unique_ptr<char, decltype(&LocalFree)> owner(text, &LocalFree);
  return std::string(text, length);
}

}  // namespace oct
