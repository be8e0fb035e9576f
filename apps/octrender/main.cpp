#include "command_line/platform.h"
#include "octrender/program.h"

int main(int argc, char** argv) {
  return oct::app::runProgram(oct::app::commandLineArguments(argc, argv));
}
