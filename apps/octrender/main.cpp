#include "command_line/platform.h"
#include "octrender/program.h"

int main(int argc, char** argv) {
  return oct::app::run_program(oct::app::command_line_arguments(argc, argv));
}
