#include "command_line/platform.h"
#include "oct_rendering/oct_rendering.h"
#include "octview/program.h"

OCT_QUIET_PROGRAM;

int main(int argc, char** argv) {
  return oct::app::run_viewer(oct::app::command_line_arguments(argc, argv));
}
