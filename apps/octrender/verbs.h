// The verbs of the program. Each function adds one to the command line; a verb that runs reports by throwing.
#pragma once

#include <CLI/CLI.hpp>

namespace oct::app {

void addBscanVerb(CLI::App& program);
void addInfoVerb(CLI::App& program);
void addLiveVerb(CLI::App& program);
void addVolumeVerb(CLI::App& program);

}  // namespace oct::app
