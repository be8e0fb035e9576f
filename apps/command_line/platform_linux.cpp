#include <unistd.h>

#include "command_line/platform.h"

namespace oct::app {

std::vector<std::string> commandLineArguments(int argc, char** argv) {
  return argc < 1 ? std::vector<std::string>() : std::vector<std::string>(argv + 1, argv + argc);
}

bool errorStreamIsTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

}  // namespace oct::app
