#include "support/process_memory.h"

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace oct::test {

std::size_t resident_memory() {
  std::size_t total = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

namespace {

std::size_t entries(const char* folder) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) ++count;
  return count;
}

}  // namespace

std::size_t thread_count() {
  return entries("/proc/self/task");
}
std::size_t handle_count() {
  return entries("/proc/self/fd");
}

}  // namespace oct::test
