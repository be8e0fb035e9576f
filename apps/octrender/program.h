// The program as a function: reads the command line, runs the verb, reports on the error stream.
#pragma once

#include <string>
#include <vector>

namespace oct::app {

// arguments: those behind the program's name. Returns the exit code.
int run_program(const std::vector<std::string>& arguments);

}  // namespace oct::app
