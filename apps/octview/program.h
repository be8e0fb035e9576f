// The program as a function: reads the command line and shows the window until it is closed.
#pragma once

#include <string>
#include <vector>

namespace oct::app {

// arguments: those behind the program's name. Returns the exit code.
int run_viewer(const std::vector<std::string>& arguments);

}  // namespace oct::app
