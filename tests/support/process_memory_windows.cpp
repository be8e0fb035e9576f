#include <windows.h>
// After windows.h, which it needs.
#include <psapi.h>

#include "support/process_memory.h"

namespace oct::test {

std::size_t residentMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PagefileUsage;
}

}  // namespace oct::test
