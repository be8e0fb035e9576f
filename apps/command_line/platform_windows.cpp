#include "command_line/platform.h"

#include <filesystem>

#include <windows.h>
#include <io.h>
#include <shellapi.h>

#include "command_line/shell_words.h"
#include "data/file_errors.h"

namespace oct::app {

// argv would have lost every character that the code page of the machine lacks.
std::vector<std::string> command_line_arguments(int, char**) {
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(to_utf8(wide[i]));
  LocalFree(wide);
  return arguments;
}

bool error_stream_is_terminal() {
  return _isatty(2) != 0;
}

std::uint64_t physical_memory() {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : 0;
}

std::string native_shell_words(const std::vector<std::string>& words) {
  return windows_shell_words(words);
}

}  // namespace oct::app
