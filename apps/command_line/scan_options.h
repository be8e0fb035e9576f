// Options that the command lines of several programs have.
#pragma once

#include <map>
#include <string>

#include "data/scan_settings.h"

namespace CLI {
class App;
class Validator;
}  // namespace CLI

namespace oct::app {

// What a simulated device scans. The defaults are what the settings hold.
void add_scan_options(CLI::App& command, ScanSettings& settings);

// Checks of an option, without the parser's own words in the help.
CLI::Validator one_of(const std::map<std::string, int>& names);
CLI::Validator within(double lowest, double highest);

}  // namespace oct::app
