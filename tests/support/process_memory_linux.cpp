#include <unistd.h>

#include <fstream>

#include "support/process_memory.h"

namespace oct::test {

std::size_t residentMemory() {
  std::size_t total = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace oct::test
