// The verbs of the program. Each function adds one to the command line; a verb that runs reports by throwing.
#pragma once

#include <CLI/CLI.hpp>

namespace oct::app {

void add_bscan_verb(CLI::App& program);
void add_info_verb(CLI::App& program);
void add_live_verb(CLI::App& program);
void add_volume_verb(CLI::App& program);

}  // namespace oct::app
