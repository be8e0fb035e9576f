#include "command_line/platform.h"
#include "oct_rendering/oct_rendering.h"
#include "octrender/program.h"

// Pictures may go to the standard output, and what the verbs print into a pipe.
OCT_QUIET_PROGRAM;

int main(int argc, char** argv) {
  return oct::app::run_program(oct::app::command_line_arguments(argc, argv));
}
