#include <windows.h>
// After windows.h, which it needs.
#include <algorithm>
#include <stdexcept>
#include <vector>

#include <psapi.h>
#include <tlhelp32.h>

#include "support/process_memory.h"

namespace oct::test {

std::size_t resident_memory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

std::size_t thread_count() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  std::size_t count = 0;
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  }
  CloseHandle(snapshot);
  return count;
}

// From the system's table of handles: Wine answers GetProcessHandleCount with 0.
std::size_t handle_count() {
  struct Entry {
    void* object;
    ULONG_PTR process;
    ULONG_PTR handle;
    ULONG access;
    USHORT trace, type;
    ULONG attributes, reserved;
  };
  struct Table {
    ULONG_PTR count, reserved;
  };
  constexpr int extended_handle_information = 64;
  using Query = LONG(WINAPI*)(int, void*, ULONG, ULONG*);
  const auto query = reinterpret_cast<Query>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
  std::vector<char> buffer(std::size_t{1} << 20);
  while (query(extended_handle_information, buffer.data(), static_cast<ULONG>(buffer.size()), nullptr) < 0) {
    if (buffer.size() > std::size_t{1} << 28)
      throw std::runtime_error("the system does not tell its handles");
    buffer.resize(buffer.size() * 2);
  }
  const auto* const entries = reinterpret_cast<const Entry*>(buffer.data() + sizeof(Table));
  return static_cast<std::size_t>(
      std::count_if(entries, entries + reinterpret_cast<const Table*>(buffer.data())->count,
                    [](const Entry& entry) { return entry.process == GetCurrentProcessId(); }));
}

}  // namespace oct::test
