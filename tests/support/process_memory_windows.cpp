#include <windows.h>
// After windows.h, which it needs.
#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "support/process_memory.h"

namespace oct::test {

std::size_t residentMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

std::size_t threadCount() {
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
std::size_t handleCount() {
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
  constexpr int extendedHandleInformation = 64;
  using Query = LONG(WINAPI*)(int, void*, ULONG, ULONG*);
  const auto query = reinterpret_cast<Query>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
  std::vector<char> buffer(std::size_t{1} << 20);
  while (query(extendedHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size()), nullptr) < 0) {
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
