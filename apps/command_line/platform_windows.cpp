#include <windows.h>

#include <shellapi.h>

#include <io.h>

#include <filesystem>

#include "command_line/platform.h"
#include "data/file_errors.h"

namespace oct::app {

// argv would have lost every character that the code page of the machine lacks.
std::vector<std::string> commandLineArguments(int, char**) {
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(toUtf8(wide[i]));
  LocalFree(wide);
  return arguments;
}

bool errorStreamIsTerminal() {
  return _isatty(2) != 0;
}

}  // namespace oct::app
