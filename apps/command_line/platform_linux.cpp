#include "command_line/platform.h"

#include <unistd.h>

#include "command_line/shell_words.h"

namespace oct::app {

std::vector<std::string> command_line_arguments(int argc, char** argv) {
  return argc < 1 ? std::vector<std::string>() : std::vector<std::string>(argv + 1, argv + argc);
}

bool error_stream_is_terminal() {
  return isatty(STDERR_FILENO) != 0;
}

std::uint64_t physical_memory() {
  const long pages = sysconf(_SC_PHYS_PAGES), page = sysconf(_SC_PAGESIZE);
  return pages > 0 && page > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(page) : 0;
}

std::string native_shell_words(const std::vector<std::string>& words) {
  return shell_words(words);
}

}  // namespace oct::app
